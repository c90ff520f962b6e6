#include "effects/candy.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "controls/value_controls.h"
#include "effects/confetti.h"
#include "effects/item_shadow.h"
#include "shell/packed_dib.h"
#include "tests/support/frame_set_checks.h"

namespace {

constexpr CandySettings kDefaults = {{0xFF0000, 0x00FF00, 0x00CCFF, 0x0033CC, 0x0066FF},
                                     {0, 1, 1, 1, 1},
                                     0x4C4C4C,
                                     255,
                                     4,
                                     40,
                                     60,
                                     10646,
                                     255,
                                     2,
                                     4,
                                     64,
                                     28,
                                     64};

using Candy = PreparedFrameSet<CandyState, CandySettings, PrepareCandyState, ReleaseCandyState,
                               RenderCandyFrame>;

}  // namespace

TEST(Candy, ItemsAreConfettisAndTheirBlobsGrowByTheWarpMargin) {
  // The same seed and page give Candy Confetti's places, phases and colours; the blob is the disc
  // with the margin of softness Warp at offset 0, and there are no item shadows.
  struct Case {
    int32_t size, warp, side;
  } cases[] = {{28, 60, 28 + 61}, {10, 30, 10 + 7}, {128, 120, 128 + 601}, {12, 45, 12 + 46}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.warp);
    CandySettings s = kDefaults;
    s.size = c.size;
    s.warp = c.warp;
    s.density = c.size == 128 ? 1 : 5;
    ConfettiSettings t = {};
    std::copy(s.colors, s.colors + 5, t.colors);
    std::copy(s.enabled, s.enabled + 5, t.enabled);
    t.seed = s.seed;
    t.density = s.density;
    t.size = s.size;
    t.frames = s.frames;
    t.fillOpacity = s.fillOpacity;
    Candy candy(s, 70, 45);
    ASSERT_EQ(candy.ok, 1);
    ConfettiState confetti;
    ASSERT_EQ(PrepareConfettiState(&confetti, &t, 70, 45, nullptr), 1);
    for (int32_t i = 0; i < s.density; ++i) {
      const CandyItem& a = candy.state.items[i];
      const ConfettiItem& b = confetti.items[i];
      EXPECT_EQ(a.x, b.x);
      EXPECT_EQ(a.y, b.y);
      EXPECT_EQ(a.phase, b.phase);
      EXPECT_EQ(a.color, b.color);
      EXPECT_EQ(a.size, c.size);
      EXPECT_EQ(PictureWidth(a.image), c.side);
    }
    ReleaseConfettiState(&confetti);
  }
}

TEST(Candy, BlobsScrollTheChosenWayAndSwayWithTheDrift) {
  // One blob of speed 1, 4 frames on 40 by 40: a frame moves it 10 pixels; any scroll value
  // outside 0 to 3 moves it as 0 does, up.
  CandySettings s = kDefaults;
  s.density = 1;
  s.size = 8;
  s.warp = 30;
  s.frames = 4;
  s.drift = 0;
  Candy a(s, 40, 40);
  ASSERT_EQ(a.ok, 1);
  const struct {
    int32_t scroll, dx, dy;
  } moves[] = {{0, 0, -10}, {1, 10, 0}, {2, -10, 0}, {3, 0, 10}, {7, 0, -10}};
  for (const auto& m : moves) {
    a.state.scroll = m.scroll;
    const std::vector<uint32_t> first = a.Frame(0);
    EXPECT_EQ(a.Frame(1), RolledPixels(first, 40, m.dx, m.dy)) << m.scroll;
    EXPECT_EQ(a.Frame(4), first) << "the loop closes";
  }
  // Drift 10 on 40: the sway of 4 at phase 90 is subtracted from the place.
  s.drift = 10;
  Candy b(s, 40, 40);
  ASSERT_EQ(b.ok, 1);
  for (int32_t scroll = 0; scroll < 4; ++scroll) {
    a.state.scroll = b.state.scroll = scroll;
    a.state.items[0].phase = b.state.items[0].phase = 90;
    const bool vertical = scroll == 0 || scroll == 3;
    EXPECT_EQ(b.Frame(0), RolledPixels(a.Frame(0), 40, vertical ? -4 : 0, vertical ? 0 : -4))
        << scroll;
  }
}

TEST(CandyPage, BuildsThePagesLoopWithTheSoftnessClampedToItsRange) {
  WindowHandle dialog = CreateFramePageDialog();
  ASSERT_NE(dialog, nullptr);
  EXPECT_EQ(CandyEffectKeyColour(dialog, 0), 0xFFFFFF);
  CandySettings read;
  ReadCandySettings(dialog, &read);
  EXPECT_EQ(read.softness, 40) << "the stored 60 is read within the control's 0 to 40";
  EXPECT_EQ(read.scroll, 2);
  EXPECT_EQ(read.warp, 60);
  SetDialogItemInt(dialog, 850, 12, 0);
  CheckFramePage(dialog,
                 {CandyEffectBuild, CandyEffectPreview, &kCandyFrameSet, 64, 852, 850, 848});
  DialogDestroy(dialog);
}
