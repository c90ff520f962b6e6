// A small Snow frame set drawn the same way on both platforms, for the comparison of the Windows
// build's flakes (drawn through GDI) with native ones (drawn through Cairo): no text, only the fill
// images of the set, each flake stamped with wrap.
#pragma once

#include <vector>

#include "platform/memory.h"

constexpr int kSnowSceneFrames = 4;

// Renders the set's frames in order into `frames`, which then owns them. Returns 1, or 0 with
// nothing left allocated.
int RenderSnowScene(std::vector<MovableHandle>* frames);
