#pragma once
// The copy engine's entry point: copies MainState::batch with one of the modes "LEFT",
// "RIGHT", "DIFF" or a list's name.

#include <string>

#include "app/Context.h"

namespace tvk {

void Copyfiles(Context& ctx, const std::string& mode);

}  // namespace tvk
