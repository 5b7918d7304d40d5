// tvk with the names users give their files: accents, the look-alike characters
// CheckName puts in for those Windows refuses, and the library folders that begin with a
// no-break space. They must reach tvk as typed and come back on its output as typed, on
// Windows as on Linux.

#include <gtest/gtest.h>

#include "app/Text.h"
#include "support/TempTree.h"

namespace tvk {
namespace {

const std::string kPool = "\u00A0Preset Pool";

// A preset whose 16-character inside name is given in the organ's Windows-1252 bytes.
std::string preset(const std::string& cp1252Name) {
    std::string name = cp1252Name;
    name.resize(16, ' ');
    return std::string("\x5A\xA5\x16\x5F") + "    S\\      TAVRN SEQ Ver3.0" + name +
           std::string(1500, '\0');
}

TEST(TvkUnicode, ArgumentsAndOutputKeepEveryCharacter) {
    test::TempTree tree;
    const auto inPool = [&](const std::string& name) {
        return pathToUtf8(tree.path(kPool) / pathFromUtf8(name));
    };
    tree.write(kPool + "/Café Waltz_#12.EPG", preset("Se\xF1or \xD1"
                                                     "and\xFA"));
    tree.write(kPool + "/Jazz\u00A8 \u00D8\u00ABLive\u00BB\u00A6_#140.APG",
               preset("No\xEBl \xBFQu\xE9?"));
    tree.write(kPool + "/\u00D1and\u00FA \u00A4\u00BA.mp3",
               std::string("\xFF\xFB\x90\x00", 4) + std::string(160000, '\0'));
    const std::string made = "FAKEPRFILES - Café Ñ¿«»";

    struct Case {
        std::vector<std::string> args;
        std::vector<std::string> lines;  // each must be a whole line of the output
    };
    const Case cases[] = {
        {{"classify", "Café Waltz_#12.EPG", "ESONG012.EMR", kPool},
         {"Café Waltz_#12.EPG\tpreset\tE\tNAME\t", "ESONG012.EMR\trecording\tE\tSONG\t12",
          kPool + "\tother\t\tOTHER\t"}},
        {{"info", inPool("Café Waltz_#12.EPG"),
          inPool("Jazz\u00A8 \u00D8\u00ABLive\u00BB\u00A6_#140.APG")},
         {"Preset Name: Señor Ñandú", "Preset Name: Noël ¿Qué?"}},
        {{"mp3", inPool("\u00D1and\u00FA \u00A4\u00BA.mp3")},
         {"ValidMP3: True", "BitRate: 128", "Frequency: 44100"}},
        {{"make-files", pathToUtf8(tree.path(kPool)), "--presets", "1", "--songs", "0", "--suffix",
          "Café Ñ¿«»"},
         {"3 files written to " + inPool(made)}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.args[0]);
        const auto run = test::runTvk(c.args);
        EXPECT_EQ(run.exitCode, 0) << run.output;
        for (const auto& line : c.lines)
            EXPECT_NE(("\n" + run.output).find("\n" + line + "\n"), std::string::npos)
                << line << "\n---\n"
                << run.output;
    }
    EXPECT_EQ(tree.list(kPool + "/" + made),
              (std::vector<std::string>{"APSET001.LPG", "EPSET001.EPG", "SUPSET01.LPG"}));
}

}  // namespace
}  // namespace tvk
