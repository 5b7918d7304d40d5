#include "FuzzSupport.h"

#include <iconv.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>

namespace tvk::fuzz {

namespace {

std::tm fixedTime() {
    std::tm t{};
    t.tm_year = 121;
    t.tm_mon = 9;
    t.tm_mday = 15;
    return t;
}

std::filesystem::path makeScratch() {
    // Memory-backed when there is one: the harnesses write a file for every input.
    const char* base = std::getenv("TVK_FUZZ_TMP");
    std::string pattern = base ? std::string(base)
                          : access("/dev/shm", W_OK) == 0
                              ? std::string("/dev/shm")
                              : std::filesystem::temp_directory_path().string();
    pattern += "/tvk-fuzz-XXXXXX";
    if (!mkdtemp(pattern.data())) {
        std::perror("mkdtemp");
        std::abort();
    }
    return pattern;
}

}  // namespace

Answer CountingInteraction::message(const Message& box) {
    ++boxes;
    lastText = box.text;
    if (box.buttons == Buttons::AbortRetryIgnore) {
        ++errorBoxes;
        return Answer::Ignore;
    }
    return box.defaultAnswer();
}

FuzzContext::FuzzContext() : scratch(makeScratch()), trace(&fixedTime) {
    paths.libraryRoot = scratch / "library";
    paths.programFolder = scratch / "program";
    std::filesystem::create_directories(paths.libraryRoot);
    std::filesystem::create_directories(paths.programFolder);
    system.documents = scratch;
    system.current = scratch;
}

FuzzContext::~FuzzContext() {
    std::error_code ignored;
    std::filesystem::remove_all(scratch, ignored);
}

Context FuzzContext::ctx() {
    return Context{trace, settings, ui, system, paths, state, nullptr};
}

std::filesystem::path FuzzContext::file(std::string_view name, std::string_view bytes) const {
    const auto path = scratch / name;
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    check(static_cast<bool>(out), "cannot write the scratch file");
    return path;
}

FuzzContext& fuzzContext() {
    static FuzzContext context;
    return context;
}

std::string_view asText(const std::uint8_t* data, std::size_t size) {
    return {reinterpret_cast<const char*>(data), size};
}

std::size_t utf8Characters(std::string_view text) {
    std::size_t n = 0;
    for (const char c : text) n += (static_cast<unsigned char>(c) & 0xC0) != 0x80;
    return n;
}

bool isValidUtf8(std::string_view text) {
    // iconv is the judge, so the check does not share the program's own decoding.
    static const iconv_t converter = iconv_open("UTF-8", "UTF-8");
    check(converter != reinterpret_cast<iconv_t>(-1), "no UTF-8 converter");
    iconv(converter, nullptr, nullptr, nullptr, nullptr);
    std::string in(text), out(text.size() + 4, '\0');
    char* from = in.data();
    char* to = out.data();
    std::size_t left = in.size(), room = out.size();
    return iconv(converter, &from, &left, &to, &room) != static_cast<std::size_t>(-1);
}

void check(bool condition, const char* what) {
    if (condition) return;
    std::fprintf(stderr, "PROPERTY VIOLATED: %s\n", what);
    std::abort();
}

void checkBalanced(const FuzzContext& f) {
    check(f.trace.depth() == 0, "the routine stack is not balanced");
}

}  // namespace tvk::fuzz
