#pragma once

#include <string>
#include <vector>

#include <benchmarks/walk/Walk.h>
#include <benchmarks/walk/WalkStudy.h>

/// Does everything a person can do with \p study once in the window of \p walk, with views of \p kinds; without any, with
/// those that the study opens with and one of each kind.
void doEveryAction(Walk& walk, const WalkStudy& study, const std::vector<std::string>& kinds);
