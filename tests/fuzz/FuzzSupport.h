#pragma once
// What the fuzz harnesses share: a complete Context over a scratch folder whose error
// box is answered Ignore, a check that aborts with a message (libFuzzer then keeps the
// input), and the input as a file.

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

#include "app/Context.h"
#include "support/FakeSystem.h"

namespace tvk::fuzz {

// Every box is counted; the error box gets Ignore so a step is never repeated.
class CountingInteraction : public SilentInteraction {
  public:
    Answer message(const Message& box) override;
    int boxes = 0;
    int errorBoxes = 0;
    std::string lastText;
};

struct FuzzContext {
    FuzzContext();
    ~FuzzContext();
    std::filesystem::path scratch;  // a private folder, removed at exit
    CountingInteraction ui;
    Trace trace;
    Settings settings;
    Paths paths;
    MainState state;
    test::FakeSystem system;
    Context ctx();
    // Writes `bytes` to a file in the scratch folder and returns its path.
    std::filesystem::path file(std::string_view name, std::string_view bytes) const;
};

// One context for the whole run (libFuzzer calls the harness in one process).
FuzzContext& fuzzContext();

std::string_view asText(const std::uint8_t* data, std::size_t size);

// Counts characters as UTF-8 does: every byte that does not continue a sequence.
std::size_t utf8Characters(std::string_view text);
bool isValidUtf8(std::string_view text);

// Aborts with `what` when `condition` is false.
void check(bool condition, const char* what);
// The routine stack is back where it was: every routine popped what it pushed.
void checkBalanced(const FuzzContext& f);

}  // namespace tvk::fuzz
