#include "effects/rattle.h"

#include <gtest/gtest.h>

#include "controls/value_controls.h"
#include "materials/material_button.h"
#include "tests/support/alloc_sweep.h"
#include "tests/support/effect_runs.h"

namespace {

struct Settings {
  int32_t frames, seed, mode, h, v;
};

// A short text, no blur, white background and a slanted gradient fill, so that a fill that fails
// to move with the text shows.
struct RattlePage {
  WindowHandle dialog = CreateEffectDialog("Ab", 28, {884, 886, 888}, 0x3060C0);
  explicit RattlePage(Settings s) {
    SetDialogItemInt(dialog, 898, 0, 0);  // Softness
    SetButtonMaterial(dialog, 888, kMaterialSimple, 0xFFFFFF);
    ScopedLock fill(ButtonMaterialHandle(DialogItem(dialog, 884)));
    Material* m = reinterpret_cast<Material*>(fill.bytes);
    m->kind = kMaterialGradient;
    m->gradient.rotation = 30;  // changes along both axes
    m->gradient.startColour = 0x0000FF;
    Set(s);
  }
  ~RattlePage() { DialogDestroy(dialog); }
  void Set(Settings s) {
    const int32_t values[] = {s.frames, s.seed, s.h, s.v};
    const int32_t ids[] = {896, 906, 908, 910};
    for (int i = 0; i < 4; ++i) SetDialogItemInt(dialog, ids[i], values[i], 0);
    DialogSetSelection(DialogItem(dialog, 912), s.mode);
  }
  std::vector<DisplacementEntry> Table() {
    RattleParams p{};
    ScopedBlock table(MakeRattleTable(dialog, &p));
    ScopedLock lock(table.handle);
    const DisplacementEntry* e = reinterpret_cast<const DisplacementEntry*>(lock.bytes);
    return std::vector<DisplacementEntry>(e, e + ReadDlgValue(dialog, 896));
  }
  // A build's frame at rest, drawn with the margin.
  PictureValues Rest() {
    RattleParams p{0, 0, nullptr, ReadDlgValue(dialog, 908), ReadDlgValue(dialog, 910), nullptr};
    BuildContext context{};
    context.dialog = dialog;
    context.params = &p;
    return TakePicture(RenderRattleFrame(&context));
  }
};

// Pixels of `f` that differ from `rest` read (dx, dy) back, where that lies in both pictures.
// The canvas's edge pixels are left out: there the outline of text cut by the edge ends.
int Mismatches(const PictureValues& f, const PictureValues& rest, int32_t dx, int32_t dy) {
  int n = 0;
  for (int32_t y = 1; y + 1 < f.height; ++y)
    for (int32_t x = 1; x + 1 < f.width; ++x) {
      const int32_t sx = x - dx, sy = y - dy;
      if (sx >= 0 && sy >= 0 && sx < rest.width && sy < rest.height)
        n += f.At(x, y) != rest.At(sx, sy);
    }
  return n;
}

}  // namespace

// Every frame is the frame at rest, with its margin, moved by its table entry: text, shadow and
// fill together. Builds repeat byte for byte, and only Delay times them.
TEST(RattleEffect, FramesAreOnePictureDisplacedOnACanvasGrownByTheReach) {
  RattlePage page({64, 19374, 0, 9, 9});
  const PictureValues sample = RunPreview(PreviewRattle, page.dialog);
  for (Settings s : {Settings{64, 19374, 0, 9, 9}, Settings{5, 1017, 3, 3, 12},
                     Settings{12, 4321, 1, 5, 8}, Settings{8, 100, 5, 4, 2}}) {
    SCOPED_TRACE(s.frames);
    page.Set(s);
    const PictureValues rest = page.Rest();
    const std::vector<DisplacementEntry> table = page.Table();
    const EffectRun b = RunBuild(BuildRattle, page.dialog),
                    again = RunBuild(BuildRattle, page.dialog);
    ASSERT_EQ(b.frames.size(), static_cast<size_t>(s.frames));
    EXPECT_EQ(b.delays, std::vector<int32_t>(s.frames, 7)) << "no pause anywhere";
    EXPECT_EQ(rest.width, sample.width + 2 * s.h);
    EXPECT_EQ(rest.height, sample.height + 2 * s.v);
    int moved = 0;
    for (size_t i = 0; i < table.size(); ++i) {
      EXPECT_EQ(Mismatches(b.frames[i], rest, table[i].x, table[i].y), 0) << "frame " << i;
      EXPECT_EQ(b.frames[i].values, again.frames[i].values) << i;
      moved += b.frames[i].values != rest.values;
    }
    EXPECT_GT(moved, 0);
  }
  EXPECT_EQ(RattleBackground(page.dialog, 0), 0xFFFFFF);
  EXPECT_EQ(RattleBackground(page.dialog, 1), -1);
}

TEST(RattleEffect, SeedDecidesTheFramesAndTheSampleIsTheRestFrameWithoutMargin) {
  RattlePage page({6, 2000, 0, 5, 8});
  const EffectRun first = RunBuild(BuildRattle, page.dialog);
  page.Set({6, 2001, 0, 5, 8});
  const EffectRun other = RunBuild(BuildRattle, page.dialog);
  int differing = 0;
  for (size_t i = 0; i < 6; ++i)
    differing += other.frames.at(i).values != first.frames.at(i).values;
  EXPECT_GT(differing, 0);

  // With plain colours the sample is the rest frame cut out of its margin. The text stands the
  // vertical reach (8) across and the horizontal one (5) down from the margin's corner.
  SetButtonMaterial(page.dialog, 884, kMaterialSimple, 0x3060C0);
  EXPECT_EQ(Mismatches(page.Rest(), RunPreview(PreviewRattle, page.dialog), 8, 5), 0);

  // A failed roll keeps the fill unrolled and the frame is still made, so the sweep runs on a
  // table that never moves: no row selected leaves it at zero.
  page.Set({2, 100, -1, 2, 2});
  SetDialogItemInt(page.dialog, 57, 10, 0);
  EXPECT_TRUE(SweepAllocationFailures([&] { return RunBuild(BuildRattle, page.dialog).ok; }));
}
