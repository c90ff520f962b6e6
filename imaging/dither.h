// Turning a picture into an indexed picture of a given palette: Floyd-Steinberg dithering (a
// colour path and a bi-level path), plain remapping, and putting a key index back where a key
// colour stood. Each returns a new Packed DIB, unlocked and owned by the caller, or 0 after
// freeing what it made; inputs are never changed or freed.
#pragma once

#include <cstdint>

#include "platform/memory.h"

struct ColourMatcher;

// The three configuration values that steer these operations.
struct RemapSettings {
  int32_t fastRemap;         // nonzero: exact match, else the colour's coarse cell
  int32_t ditherBrightness;  // offset of the bi-level tone map
  int32_t ditherContrast;    // slope of the bi-level tone map
};
constexpr RemapSettings kDefaultRemapSettings = {0, 20, 20};

// Dithers a picture of 4, 8 or 24 bits to `palette` (its first `count` entries). `bits` is the
// target's depth, 1 to 8: 1 makes a bi-level picture, 2 to 4 a 4-bit one, 5 to 8 an 8-bit one.
// `shared`, when given, is an open matcher that the caller keeps for all frames of one palette:
// its colour lists then serve every frame. It is used only when it fits the palette and count;
// results are the same with or without it.
MovableHandle DitherToPalette(MovableHandle image, const uint8_t* palette, int32_t bits,
                              int32_t count, const RemapSettings& settings = kDefaultRemapSettings,
                              ColourMatcher* shared = nullptr);

// Maps each pixel of a picture of 1, 4, 8 or 24 bits to a palette index without spreading error.
// Arguments as for DitherToPalette.
MovableHandle RemapToPalette(MovableHandle image, const uint8_t* palette, int32_t bits,
                             int32_t count, const RemapSettings& settings = kDefaultRemapSettings,
                             ColourMatcher* shared = nullptr);

// A copy of `indexed` in which every pixel whose place in `unreduced` holds `keyColour` (low 24
// bits compared) has the value `index`. Both pictures must be of the same size.
MovableHandle ReplaceKeyColour(MovableHandle indexed, MovableHandle unreduced, uint32_t keyColour,
                               int32_t index);

// The bi-level tone map for the given brightness and contrast.
void BuildToneMap(uint8_t* map, int32_t brightness, int32_t contrast);
