#pragma once
// The routine stack and the trace file. Every routine pushes its qualified name
// ("frmMain.ScanForUSBs") on entry and writes ENTER and EXIT lines when tracing; the
// trace file doubles as the error log. Use it through Routine (Routine.h).

#include <array>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <string_view>

namespace tvk {

class Trace {
  public:
    using Clock = std::function<std::tm()>;
    static std::tm localNow();

    explicit Trace(Clock clock = &Trace::localNow);

    bool debug = false;     // "+DEBUG": trace on
    bool errorTrap = true;  // "-ERROR": errors take the runtime's default path

    static constexpr int kMaxDepth = 1000;

    // Opens the trace file for output (emptying it) and writes its header.
    // Throws RuntimeError when it cannot be created.
    void open(const std::filesystem::path& file);
    const std::filesystem::path& file() const { return file_; }
    bool isOpen() const { return out_.is_open(); }

    // Writes one line ended by CR LF when tracing. Throws RuntimeError 52 once the file's
    // handle has been closed by a settings write (see closeAllFiles).
    void write(std::string_view line);
    void enterLine(const std::string& entry);  // stamp + "- " + entry + " - ENTER"
    void exitLine(const std::string& entry);   // stamp + "- " + entry + " - EXIT"

    // The settings writer closes every open file, this one included, then reopens the
    // log for appending under a second handle that no trace write uses. Trace writes
    // after that fail with "Bad file name or number"; this is how the program has
    // always behaved, and support reads logs with that in mind.
    void closeAllFiles();
    void reopenForAppend();

    // "yymmdd.hhmmss"
    std::string stamp() const;
    std::tm now() const { return clock_(); }

    // Routine stack: index 0 is never used. push throws RuntimeError 9 above 1000
    // entries (the depth still counts) and 6 when the 16-bit depth would overflow.
    std::string push(std::string_view qualifiedName);
    void pop();
    int depth() const { return depth_; }
    std::string entry(int index) const;
    static std::string makeEntry(int depth, std::string_view qualifiedName);

    // Set when the program is ending at once: nothing more is written.
    bool ending = false;

  private:
    Clock clock_;
    std::filesystem::path file_;
    std::ofstream out_;        // handle 256: every trace write
    std::ofstream appendOut_;  // handle 9: reopened after a settings write, never written
    bool handleClosed_ = false;
    int depth_ = 0;
    std::array<std::string, kMaxDepth + 1> stack_;
};

}  // namespace tvk
