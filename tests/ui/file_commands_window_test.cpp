// The File and Edit commands in the window, and the lists' context menu forwarding to
// them, on the offscreen platform.

#include "ui/ContextMenu.h"
#include "ui/FolderTree.h"
#include "ui/QtText.h"
#include "ui/WindowFixture.h"

namespace tvk::test {
namespace {

using FileCommandsWindow = WindowFixture;

TEST_F(FileCommandsWindow, ContextMenuForwardsToTheMainCommands) {
    auto* menu = window->findChild<ui::ContextMenu*>("frmContext");
    ASSERT_NE(menu, nullptr);
    QStringList captions;
    for (QAction* a : menu->actions())
        if (!a->isSeparator()) captions << a->objectName() + " " + a->text();
    EXPECT_EQ(captions, (QStringList{"mnuFLBCopy &Copy", "mnuFLBPaste &Paste",
                                     "mnuFLBRename Re&name", "mnuFLBDelete &Delete",
                                     "mnuFLBNewFolder Ne&w Folder", "mnuFLBEmpty Empty &Bin"}));

    // Rename on the library list: the inside-name flow.
    libraryFile("Waltz.SPG", organFile(Series::SU, FileKind::Preset, "Waltz"));
    window->refreshAll();
    auto* docs = list("flbDocs");
    ASSERT_TRUE(docs->selectName("Waltz.SPG"));
    ui.expectPrompt("RENAME FILE", "Tango");
    menu->choose(docs, "mnuFLBRename");
    EXPECT_EQ(names("flbDocs"), (QStringList{"Tango.SPG", "TVK.ini"}));

    // Delete on the stick list: into the program's bin.
    const auto tavrin = acceptStick();
    writeFile(tavrin / "SUPSET07.LPG", "7");
    window->refreshAll();
    auto* usb = list("flbUSB");
    ASSERT_TRUE(usb->selectName("SUPSET07.LPG"));
    ui.expect("DELETE FILE", Answer::Yes);
    menu->choose(usb, "mnuFLBDelete");
    EXPECT_TRUE(names("flbUSB").isEmpty());
    EXPECT_EQ(readFile(library() / pathFromUtf8(kFolderRecycleBin) / "SUPSET07.LPG"), "7");

    // New Folder from the tree, then Empty Bin.
    auto* tree = find<ui::FolderTree>("dirDocs");
    ui.expectPrompt("CREATE NEW FOLDER", "Old Songs");
    menu->choose(tree, "mnuFLBNewFolder");
    EXPECT_TRUE(std::filesystem::is_directory(library() / "Old Songs"));
    ui.expect("EMPTY RECYCLE BIN", Answer::Yes);
    menu->choose(usb, "mnuFLBEmpty");
    ASSERT_EQ(system->recycled.size(), 1u);
    EXPECT_EQ(fileNameUtf8(system->recycled.front()), "SUPSET07.LPG");
    EXPECT_TRUE(ui.done());
    EXPECT_EQ(window->session().state.activeList, ListControl::flbUSB);
}

TEST_F(FileCommandsWindow, ConvertAndPrintWorkOnTheLibraryList) {
    libraryFile(std::string(kFolderPresetPool) + "/Waltz_#012.EPG");
    libraryFile(std::string(kFolderPresetPool) + "/Polka_#003.SPG");
    window->session().state.docsFolder = library() / pathFromUtf8(kFolderPresetPool);
    window->refreshAll();
    ui.expect("CONVERT FILENAMES", Answer::Yes);
    action("mnuFileConvert")->trigger();
    EXPECT_EQ(names("flbDocs"), (QStringList{"Polka.SPG", "Waltz.EPG"}));
    ui.expect("PRINT PRESETS");
    action("mnuFilePrint")->trigger();
    EXPECT_EQ(names("flbDocs"), (QStringList{"ListOfPresets.txt", "Polka.SPG", "Waltz.EPG"}));
    EXPECT_EQ(readFile(library() / pathFromUtf8(kFolderPresetPool) / "ListOfPresets.txt"),
              "\"Polka.SPG\"\r\n\"Waltz.EPG\"\r\n");
    EXPECT_TRUE(ui.done());
}

}  // namespace
}  // namespace tvk::test
