#include "support/TestContext.h"

namespace tvk::test {

std::tm fixedTime() {
    std::tm t{};
    t.tm_year = 121;
    t.tm_mon = 9;
    t.tm_mday = 15;
    t.tm_hour = 14;
    t.tm_min = 30;
    t.tm_sec = 12;
    return t;
}

TestContext::TestContext(std::unique_ptr<System> sys) {
    if (!sys) {
        auto f = std::make_unique<FakeSystem>();
        fake = f.get();
        f->documents = tree.path("home/Documents");
        f->current = tree.path("current");
        sys = std::move(f);
    }
    system = std::move(sys);
    paths.libraryRoot = tree.mkdir("home/Documents/Tavrin File Manager");
    paths.programFolder = tree.mkdir("prog");
}

Context TestContext::ctx() {
    return Context{trace, settings, ui, *system, paths, state, nullptr};
}

std::filesystem::path TestContext::traceToFile() {
    trace.debug = true;
    trace.open(paths.traceFile());
    return paths.traceFile();
}

std::string TestContext::traceText() const {
    return readFile(paths.traceFile());
}

}  // namespace tvk::test
