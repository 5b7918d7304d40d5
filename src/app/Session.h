#pragma once
// Owns one run's state and services and hands out the Context commands receive. The
// window and tvk each make one.

#include <memory>

#include "app/Context.h"

namespace tvk {

struct Session {
    Session(std::unique_ptr<System> system, Interaction& ui) : system(std::move(system)), ui(&ui) {}

    Trace trace;
    Settings settings;
    Paths paths;
    MainState state;
    std::unique_ptr<System> system;
    Interaction* ui;
    std::shared_ptr<Volumes> volumes;  // set by whoever attaches the drive services

    Context context() {
        return Context{trace, settings, *ui, *system, paths, state, volumes.get()};
    }
};

}  // namespace tvk
