#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>

#include "app/Text.h"
#include "support/TempTree.h"

namespace tvk::test {

std::filesystem::path makeTempFolder(std::string_view prefix) {
    std::string templ =
        pathToUtf8(std::filesystem::temp_directory_path() / (std::string(prefix) + "XXXXXX"));
    if (!mkdtemp(templ.data())) throw std::runtime_error("mkdtemp failed");
    return pathFromUtf8(templ);
}

void setEnv(const std::string& name, const std::string& value) {
    setenv(name.c_str(), value.c_str(), 1);
}

void unsetEnv(const std::string& name) {
    unsetenv(name.c_str());
}

int runCommand(const std::string& command, std::string* output) {
    std::FILE* p = popen((command + " 2>&1").c_str(), "r");
    if (!p) return -1;
    std::array<char, 4096> buf{};
    std::string out;
    std::size_t n;
    while ((n = std::fread(buf.data(), 1, buf.size(), p)) > 0) out.append(buf.data(), n);
    const int status = pclose(p);
    if (output) *output = out;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

bool haveTool(const std::string& tool) {
    return runCommand("command -v " + tool + " >/dev/null") == 0;
}

ProgramRun runProgram(const std::filesystem::path& program, const std::vector<std::string>& args,
                      const ProgramOptions& options) {
    std::vector<std::string> argv{pathToUtf8(program)};
    argv.insert(argv.end(), args.begin(), args.end());
    std::vector<char*> argp;
    for (auto& a : argv) argp.push_back(a.data());
    argp.push_back(nullptr);
    std::string homeVar = options.home ? "HOME=" + pathToUtf8(*options.home) : std::string();
    std::string pathVar = "PATH=/usr/bin:/bin";
    // The machine's own folders stay out too: an installed package's machine-wide
    // record under /etc/xdg would otherwise stand in for the test's.
    std::string configDirsVar =
        options.home ? "XDG_CONFIG_DIRS=" + pathToUtf8(*options.home / ".xdg") : std::string();
    char* cleanEnv[] = {pathVar.data(), homeVar.data(), configDirsVar.data(), nullptr};

    int in[2], out[2];
    if (pipe(in) != 0 || pipe(out) != 0) return {};
    const pid_t pid = fork();
    if (pid == 0) {
        dup2(in[0], 0);
        dup2(out[1], 1);
        dup2(out[1], 2);
        for (int fd : {in[0], in[1], out[0], out[1]}) close(fd);
        if (options.home)
            execve(argp[0], argp.data(), cleanEnv);
        else
            execv(argp[0], argp.data());
        _exit(127);
    }
    close(in[0]);
    close(out[1]);
    // Inputs are a few answers: they fit in the pipe, so writing first cannot block.
    if (!options.input.empty() && write(in[1], options.input.data(), options.input.size())) {
    }
    close(in[1]);
    ProgramRun run;
    std::array<char, 4096> buf{};
    for (ssize_t n; (n = read(out[0], buf.data(), buf.size())) > 0;)
        run.output.append(buf.data(), static_cast<std::size_t>(n));
    close(out[0]);
    int status = 0;
    waitpid(pid, &status, 0);
    run.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return run;
}

void forgetInstallationRecord() {}

ExclusiveHold::ExclusiveHold(const std::filesystem::path&) {}
ExclusiveHold::~ExclusiveHold() = default;

}  // namespace tvk::test
