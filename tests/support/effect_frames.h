// What an effect's build appended, read out for checking, and a dialog at the default settings
// on which an effect's own procedures run.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <utility>
#include <vector>

#include "shell/effect_table.h"
#include "tests/support/test_images.h"

struct BuiltFrames {
  int ok = 0;
  std::vector<PictureValues> frames;
  std::vector<int32_t> delays;
};

// Reads every frame of `list` and frees the list; `ok` is what the build returned.
BuiltFrames TakeFrames(FrameList* list, int ok);

// The cyclic shift s of the rows (columns with `columns`) [first, first + count) of `frame`
// against `home`: the pixel at distance d along the band shows home's pixel at d - s, wrapped, so
// s > 0 means moved right or down. -1 when no shift fits the whole band.
int FindBandShift(const PictureValues& frame, const PictureValues& home, bool columns, int first,
                  int count);

// Every control at the default settings (which it restores again when it ends), with material
// records in the material buttons `materials`.
struct PageDialog {
  WindowHandle dialog;
  std::vector<int32_t> materials;
  explicit PageDialog(std::initializer_list<int32_t> materialButtons);
  ~PageDialog();
  // Sets each control (id, value) in turn, then runs `build` from a fresh generator.
  BuiltFrames Build(EffectBuild build, std::initializer_list<std::pair<int32_t, int32_t>> values);
  // The sample picture.
  PictureValues Preview(EffectPreview preview);
};
