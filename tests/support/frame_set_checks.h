// Checks shared by the tests of the frame-set effects: a build or a preview through the effect's
// own procedures, read back as pixels, and the checks every frame-set page must pass.
#pragma once

#include <cstdint>
#include <vector>

#include "effects/frame_set.h"
#include "materials/material_button.h"
#include "platform/dialog.h"
#include "shell/effect_table.h"
#include "tests/support/effect_builds.h"

// A picture's width, or -1.
int32_t PictureWidth(MovableHandle image);

// `pixels` of a `width`-wide picture moved by (dx, dy), wrapped at the edges.
std::vector<uint32_t> RolledPixels(const std::vector<uint32_t>& pixels, int32_t width, int32_t dx,
                                   int32_t dy);
// The generator's next `count` results after srand(seed).
std::vector<int> RandomSequence(uint32_t seed, int count);

// An effect's state prepared from `Settings` over a white fill, released at the end of the scope.
template <typename State, typename Settings,
          int (*Prepare)(State*, const Settings*, int32_t, int32_t, Material*),
          void (*Release)(State*), MovableHandle (*Render)(State*, int32_t)>
struct PreparedFrameSet {
  State state{};
  MovableHandle material;
  int ok;
  PreparedFrameSet(const Settings& settings, int32_t width, int32_t height)
      : material(CreateButtonMaterial(0xFFFFFF)) {
    ScopedLock m(material);
    ok = m && Prepare(&state, &settings, width, height, reinterpret_cast<Material*>(m.bytes));
  }
  ~PreparedFrameSet() {
    Release(&state);
    FreeButtonMaterial(material);
  }
  std::vector<uint32_t> Frame(int32_t n) {
    ScopedBlock image(Render(&state, n));
    return PicturePixels(image.handle);
  }
};

typedef int (*EffectProcedure)(BuildContext* context);

// A page dialog with every control at its default, the material buttons made, and a small font.
WindowHandle CreateFramePageDialog();

struct FramePageCase {
  EffectProcedure build, preview;
  const FrameSetEffect* effect;
  int32_t frames;     // the page's default Frames
  int32_t seedId;     // the Seed control
  int32_t densityId;  // the Density control
  int32_t sizeId;     // the Size control, set to its minimum for the sweep
};

// The default build's frame count, delays and one canvas for all frames; the sample equals frame
// 0; the same settings give the same bytes; Frames 2, a Delay and animate off change the count
// and delays as they should and keep frame 0; another Seed changes frame 0; and an allocation
// failure sweep over a two-frame build of two items.
void CheckFramePage(WindowHandle dialog, const FramePageCase& c);
