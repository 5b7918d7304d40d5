#include "drive/Process.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

extern char** environ;

namespace tvk {

ProcessResult runProcess(const std::vector<std::string>& argv) {
    ProcessResult result;
    if (argv.empty()) return result;
    // Output goes to a scratch file, not a pipe: FUSE drivers leave a daemon behind that
    // would hold a pipe open for as long as the mount lasts.
    char scratch[] = "/tmp/tvk-process-XXXXXX";
    const int outFd = mkstemp(scratch);
    if (outFd < 0) return result;
    unlink(scratch);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, outFd, 1);
    posix_spawn_file_actions_adddup2(&actions, outFd, 2);
    std::vector<char*> args;
    for (const auto& a : argv) args.push_back(const_cast<char*>(a.c_str()));
    args.push_back(nullptr);
    pid_t pid = 0;
    const int rc = posix_spawnp(&pid, args[0], &actions, nullptr, args.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (rc != 0) {
        close(outFd);
        result.output = argv[0] + ": cannot be started";
        return result;
    }
    int status = 0;
    while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {
    }
    result.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    char buffer[4096];
    for (off_t at = 0;;) {
        const ssize_t n = pread(outFd, buffer, sizeof buffer, at);
        if (n <= 0) break;
        result.output.append(buffer, static_cast<std::size_t>(n));
        at += n;
        if (result.output.size() > (1u << 20)) break;
    }
    close(outFd);
    return result;
}

}  // namespace tvk
