// Whole builds and samples of one effect through its table procedures on a value dialog, with
// every frame's pixels and delay kept for comparison.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <vector>

#include "platform/dialog.h"
#include "platform/memory.h"
#include "shell/effect_table.h"

typedef std::vector<uint32_t> Pixels;

struct BuiltFrames {
  int ok;
  uint32_t flags;
  std::vector<Pixels> frames;
  std::vector<int32_t> delays;
  int32_t width, height;  // of the first frame
};

// The pixels of a picture row by row, top first; empty for a null handle.
Pixels PicturePixels(MovableHandle image);
BuiltFrames BuildEffectFrames(EffectBuild build, WindowHandle dialog);
// The sample's pixels; the preview must return 1 and set only the preview flag.
Pixels PreviewEffectPixels(EffectPreview preview, WindowHandle dialog);
// A value dialog on default settings whose material buttons `materials` hold solid materials (`colours` in turn) and
// whose font is small, so that builds stay quick. Null on failure.
WindowHandle SmallEffectDialog(std::initializer_list<int32_t> materials,
                               std::initializer_list<uint32_t> colours);
// Selects row `row` of combo `id`; the control's text becomes that row's.
void SelectComboRow(WindowHandle dialog, int32_t id, int row);
