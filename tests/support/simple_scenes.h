// A small Simple build drawn the same way on both platforms, for the comparison of the Windows
// build's frames with native ones: scrolling text with a shadow, an outline and a gradient fill.
#pragma once

#include <cstdint>
#include <vector>

#include "platform/memory.h"

struct SimpleSceneFrame {
  MovableHandle image;  // owned by the caller
  int32_t delay;
};

// Renders the scene's frames in order. Returns 1, or 0 with nothing left allocated.
int RenderSimpleScene(std::vector<SimpleSceneFrame>* frames);
