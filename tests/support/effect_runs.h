// Effects run from a dialog for their tests: a dialog holding every control, with a short text and
// material records on the page's buttons, and an effect's build or sample read back as pictures.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <vector>

#include "shell/effect_table.h"
#include "tests/support/test_images.h"

// Every control of the main dialog and the pages, the text `text` at `size` pixels, Delay 7, and
// a record made from `colour` on each of `materialButtons`. Free with DialogDestroy.
WindowHandle CreateEffectDialog(const char* text, int32_t size,
                                std::initializer_list<int32_t> materialButtons, uint32_t colour);
// Sets the kind and Simple colour of a material button's record.
void SetButtonMaterial(WindowHandle dialog, int32_t id, int32_t kind, uint32_t colour);

struct EffectRun {
  int ok = 0;
  std::vector<PictureValues> frames;
  std::vector<int32_t> delays;
};
// Runs `build` and reads back the frames it appended, freeing them.
EffectRun RunBuild(EffectBuild build, WindowHandle dialog);
// Runs `preview` and reads back the sample, freeing it; empty when there is none.
PictureValues RunPreview(EffectPreview preview, WindowHandle dialog);
