// Text masks drawn the same way on both platforms, for the comparison of the Windows build's GDI+
// text (under Wine) with the native engine. Each scene measures every character alone as a drawn
// box (advance plus the fixed padding) and lays the mask out with one cell height per character,
// so that boxes and ink are compared without drift from one character to the next.
#pragma once

#include <cstdint>

#include "platform/memory.h"

struct MaskScene {
  const char* name;
  const char* text;
  int32_t size, bold;
  double coverageBound;  // on (other - native) / native of the coverage sums
  double pixelBound;     // on the summed pixel differences over the native coverage
};

extern const MaskScene kMaskScenes[];
extern const int32_t kMaskSceneCount;

// A glyph box may differ by one pixel (the same padding added to advances that round apart), and
// the cell height by one (ascent and descent round differently at some sizes).
constexpr int32_t kMaskBoxBound = 1;
constexpr int32_t kMaskHeightBound = 1;

// The scene's mask (8 bits, cell height high) and its measurements: a 32-bit picture as wide as
// the text with the boxes in row 0 and MeasureText's advances in row 1, so that both travel as
// parity files. Returns 1, or 0 with nothing left.
int RenderMaskScene(const MaskScene* scene, MovableHandle* mask, MovableHandle* measures);

// Starts the drawing layer for a test program that has no other session.
void StartDrawingForTests();
