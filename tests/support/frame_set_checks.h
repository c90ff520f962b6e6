// Checks shared by the tests of the frame-set effects: a build or a preview through the effect's
// own procedures, read back as pixels, and the checks every frame-set page must pass.
#pragma once

#include <cstdint>
#include <vector>

#include "effects/frame_set.h"
#include "platform/dialog.h"
#include "shell/effect_table.h"

// A picture's pixels, row by row from the top; empty for a null or unlockable handle.
std::vector<uint32_t> PicturePixels(MovableHandle image);
// A picture's width, or -1.
int32_t PictureWidth(MovableHandle image);

struct BuiltFrames {
  int ok;
  uint32_t flags;
  std::vector<std::vector<uint32_t>> frames;
  std::vector<int32_t> delays;
};

typedef int (*EffectProcedure)(BuildContext* context);

BuiltFrames BuildThroughPage(WindowHandle dialog, EffectProcedure build);
std::vector<uint32_t> PreviewThroughPage(WindowHandle dialog, EffectProcedure preview);

// A page dialog with every control at its default, the material buttons made, and a small font.
WindowHandle CreateFramePageDialog();

struct FramePageCase {
  EffectProcedure build, preview;
  const FrameSetEffect* effect;
  int32_t frames;      // the page's default Frames
  int32_t seedId;      // the Seed control
  int32_t densityId;   // the Density control
  int32_t sizeId;      // the Size control, set to its minimum for the sweep
};

// The default build's frame count, delays and one canvas for all frames; the sample equals frame
// 0; the same settings give the same bytes; Frames 2, a Delay and animate off change the count
// and delays as they should and keep frame 0; another Seed changes frame 0; and an allocation
// failure sweep over a two-frame build of two items.
void CheckFramePage(WindowHandle dialog, const FramePageCase& c);
