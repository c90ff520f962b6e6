// The six generators' default pictures, filled through MaterialFill at a wide size (so the
// centred crop takes part), for the comparison of the Windows build's pictures with native ones.
// Perturbation's noise is fixed by the first Perturbation of the process: the scenes are to be
// rendered before any other, which TextureSceneNoiseIsDefault checks.
#pragma once

#include <cstdint>

#include "materials/texture_item.h"
#include "platform/memory.h"

constexpr int32_t kTextureSceneWidth = 240, kTextureSceneHeight = 160;

// The fill of a new material whose texture has the default record with TextureType `type`.
MovableHandle RenderTextureScene(int32_t type);
// Nonzero when Perturbation's noise tables were made from the default record's seed.
int TextureSceneNoiseIsDefault();
