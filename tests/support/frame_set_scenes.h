// Fill pictures of the geometric frame sets, drawn from fixed settings without a dialog, for the
// comparison of the Windows drawing (under Wine) with the native one.
#pragma once

#include <cstdint>

#include "platform/memory.h"

struct FrameSetScene {
  const char* name;
  int32_t tolerance;  // differing pixels allowed between the platforms, as measured
  double meanBound;   // mean channel difference allowed over the differing pixels
};
constexpr int32_t kFrameSetSceneCount = 9;
extern const FrameSetScene kFrameSetScenes[kFrameSetSceneCount];

// Scene `index`'s picture, or null.
MovableHandle RenderFrameSetScene(int32_t index);
