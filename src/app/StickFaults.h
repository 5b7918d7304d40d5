#pragma once
// What a stick can do to a command that writes to it: be write-protected, or be pulled
// out part way.
//
// A stick pulled out during a command. The step that meets it gets the handler's box as
// "Disk not ready" (71), so Retry can repeat it for a user who put the stick back; Ignore,
// or Abort with the trace on, ends the command there instead of failing every remaining
// file, and one box says what was done and what is where.

#include <cstddef>
#include <string>

#include "app/Routine.h"

namespace tvk {

// Thrown out of a command's loop once the user gave up on a pulled stick.
struct StickRemoved {};

// True when the stick the state points at is no longer there.
bool stickGone(const Context& ctx);

// Runs `body`; a failure while the stick is gone becomes "Disk not ready" (71), whatever
// the file system said about the vanished folder (usually "File not found").
template <class F>
void onStick(const Context& ctx, F&& body) {
    whenFailing(body, [&] {
        if (!stickGone(ctx)) throw;
        throw RuntimeError(kErrDiskNotReady, RuntimeError::fromCurrentException().detail());
    });
}

// Runs one step of a command on the stick. False when the user went on without it (as
// step()); throws StickRemoved when the stick is gone and the user did not retry.
template <class F>
bool stickStep(Routine& r, std::string task, F&& body) {
    bool gone = false;
    try {
        const bool done = r.step(std::move(task), [&] {
            gone = false;
            try {
                onStick(r.ctx, body);
            } catch (const RuntimeError& e) {
                gone = e.number() == kErrDiskNotReady;
                throw;
            }
        });
        if (!done && gone) throw StickRemoved{};
        return done;
    } catch (const RoutineAbort&) {
        if (gone) throw StickRemoved{};
        throw;
    }
}

// False, after the "THUMBDRIVE WRITE-PROTECTED" box, when the stick cannot be written; a
// command that writes to the stick asks before it changes anything.
bool stickWritable(Context& ctx, Routine& r);

// stickWritable for a command that has changed nothing yet: a stick pulled meanwhile
// simply ends it, after the handler's box.
bool stickReady(Context& ctx, Routine& r);

// The one box a command ends with after a pulled stick: "N of M files were done." and the
// command's own sentence of what is where.
void showStickRemoved(Context& ctx, std::size_t done, std::size_t total,
                      const std::string& whatIsWhere);

}  // namespace tvk
