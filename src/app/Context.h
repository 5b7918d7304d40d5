#pragma once
// What every command receives: the shared state and the seams to the outside world.

#include "app/Interaction.h"
#include "app/MainState.h"
#include "app/Paths.h"
#include "app/Settings.h"
#include "app/System.h"
#include "app/Trace.h"

namespace tvk {

class Volumes;  // drive/Volumes.h

struct Context {
    Trace& trace;
    Settings& settings;
    Interaction& ui;
    System& system;
    Paths& paths;
    MainState& state;
    Volumes* volumes = nullptr;
};

}  // namespace tvk
