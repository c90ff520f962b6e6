// Small builds of the effects that move the finished picture or draw their own frames, made from a
// value dialog on fixed settings, for the comparison of the Windows build (under Wine) with the
// native one: frame count, delays and sizes, and the pixels, which differ only where glyphs do.
#pragma once

#include <cstdint>
#include <vector>

#include "platform/memory.h"
#include "shell/effect_table.h"

struct MotionScene {
  const char* name;
  EffectBuild build;
  uint32_t materials[8][2];  // material button and its colour; a zero button ends the list
  int32_t frames[2];         // the page's Frames box and its value; a zero box leaves it
  int32_t combo[2];          // a combo box and the row to select; a zero box leaves it
  double glyphShare;         // share of differing pixels allowed in a frame, as measured
};
constexpr int32_t kMotionSceneCount = 6;
extern const MotionScene kMotionScenes[kMotionSceneCount];

struct MotionFrame {
  MovableHandle image;  // owned by the caller
  int32_t delay;
};

// Builds scene `index` and takes its frames in order. Returns what the build returned; on 0 no
// frame is left.
int BuildMotionScene(int32_t index, std::vector<MotionFrame>* frames);
