// Shape scenes drawn through the render-surface port on both platforms, so that the pictures of the
// Windows build (under Wine) can be compared with the native ones. Each scene is a 64 by 64
// surface.
#pragma once

#include <cstdint>

#include "platform/memory.h"

struct ShapeScene {
  const char* name;
  // Pixels that may differ between platforms: 0 for shapes whose pixels are fixed exactly.
  int32_t tolerance;
  void (*draw)(struct RenderSurface* surface);
};

extern const ShapeScene kShapeScenes[];
extern const int32_t kShapeSceneCount;
constexpr int32_t kShapeSceneSize = 64;

// Renders one scene into a new 24-bit Packed DIB, or null.
MovableHandle RenderShapeScene(const ShapeScene* scene);
