#pragma once

#include <benchmarks/walk/Walk.h>
#include <benchmarks/walk/WalkStudy.h>

/// Does everything a person can do with \p study once in the window of \p walk.
void doEveryAction(Walk& walk, const WalkStudy& study);
