#pragma once

#include "scenes.h"

/// Registers what whole processes take for a scene that grows in text: "check/SCENE" and, its peer,
/// "words/SCENE".
void register_processes(const Scene& scene);

/// Registers the processes with scenes of their own: "check/pictures", a scene with six files, beside
/// "stat/pictures"; "check/thousand/jobs:1" and "jobs:2", a thousand scenes; and what grows:
/// "check/scenes/N", "check/findings/N", and "check/sequences/FILES" beside "list/sequences/FILES", a
/// thousand files a sequence.
void register_processes();
