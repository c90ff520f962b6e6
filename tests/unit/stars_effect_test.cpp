#include "effects/stars.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "controls/value_controls.h"
#include "effects/item_shadow.h"
#include "shell/crt_random.h"
#include "shell/packed_dib.h"
#include "tests/support/frame_set_checks.h"

namespace {

constexpr StarsSettings kDefaults = {{0xFF0000, 0x00FF00, 0x00CCFF, 0x0033CC, 0x0066FF},
                                     {0, 1, 1, 1, 1},
                                     1,
                                     255,
                                     4,
                                     20,
                                     10647,
                                     255,
                                     4,
                                     68,
                                     48,
                                     64};

using Stars = PreparedFrameSet<StarsState, StarsSettings, PrepareStarsState, ReleaseStarsState,
                               RenderStarsFrame>;

}  // namespace

TEST(Stars, PreparationDrawsPositionPhaseAndColourOnlyAndSizesStepByStarNumber) {
  struct Case {
    int32_t colours, variable, opacity;
  } cases[] = {{1, 1, 255}, {3, 0, 255}, {2, 1, 0}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.colours * 100 + c.variable * 10 + (c.opacity > 0));
    StarsSettings s = kDefaults;
    for (int i = 1; i < 5; ++i) s.enabled[i] = i < c.colours;
    s.variableSizes = c.variable;
    s.shadowOpacity = c.opacity;
    s.density = 7;
    const std::vector<int> r = RandomSequence(static_cast<uint32_t>(s.seed), 100);
    Stars stars(s, 150, 70);
    ASSERT_EQ(stars.ok, 1);
    const int next = crt::rand();
    size_t k = 0;
    int32_t last = -1;
    const int32_t steps[5] = {100, 90, 75, 60, 50};
    for (int32_t i = 0; i < 7; ++i) {
      const StarItem& star = stars.state.stars[i];
      EXPECT_EQ(star.x, r[k] % 150);
      EXPECT_EQ(star.y, r[k + 1] % 70);
      EXPECT_EQ(star.phase, static_cast<float>(r[k + 2] % 360));
      k += 3;
      int32_t index = 0;
      for (int tries = 0; c.colours > 1 && tries < 16; ++tries)
        if ((index = r[k++] % c.colours) != last) break;
      last = index;
      EXPECT_EQ(star.color, kDefaults.colors[index]);
      EXPECT_EQ(star.size, 48);
      const int32_t side = c.variable ? steps[i % 5] * 48 / 100 : 48;
      EXPECT_EQ(PictureWidth(star.image), side);
      EXPECT_EQ(PictureWidth(star.shadow), c.opacity ? side + ItemShadowPad(4, 20) : -1);
    }
    EXPECT_EQ(next, r[k]) << "no other call was made";
  }
}

TEST(Stars, StarIsAFilledPentagramClippedAtItsTips) {
  for (int32_t level : {255, 100}) {
    ScopedBlock star(DrawStar(40, level));
    ScopedLock p(star.handle);
    ASSERT_TRUE(p);
    EXPECT_EQ(ReadDibPixel(p.bytes, 20, 20), static_cast<uint32_t>(level * 0x010101))
        << "winding fill paints the centre";
    EXPECT_GT(ReadDibPixel(p.bytes, 20, 0) & 0xFF, 0u) << "the top tip passes the edge";
    EXPECT_EQ(ReadDibPixel(p.bytes, 0, 39), 0u);
    EXPECT_EQ(ReadDibPixel(p.bytes, 20, 37), 0u) << "between the lower tips";
  }
}

TEST(Stars, StarsOfEverySizeShareTheirSlotsCornerAndShadowsAreBlack) {
  // Opacity 0: no shadows, and each star's box starts at x - Size / 2, y - H + 1 - Size / 2.
  StarsSettings s = kDefaults;
  s.enabled[1] = s.enabled[2] = s.enabled[3] = s.enabled[4] = 0;
  s.density = 5;
  s.drift = 0;
  s.shadowOpacity = 0;
  Stars stars(s, 100, 100);
  ASSERT_EQ(stars.ok, 1);
  for (int32_t i = 0; i < 5; ++i) {
    for (int32_t j = 0; j < 5; ++j) stars.state.stars[j].opacity = j == i ? 255 : 0;  // hidden
    stars.state.stars[i].x = 50;
    stars.state.stars[i].y = 149;
    const std::vector<uint32_t> frame = stars.Frame(0);
    int32_t left = 100, top = 100, right = -1, bottom = -1;
    for (int32_t y = 0; y < 100; ++y)
      for (int32_t x = 0; x < 100; ++x) {
        const uint32_t p = frame[static_cast<size_t>(y * 100 + x)];
        ASSERT_NE(p, 0u) << "no shadow";
        if (p == 0xFFFFFF) continue;
        left = std::min(left, x), top = std::min(top, y);
        right = std::max(right, x), bottom = std::max(bottom, y);
      }
    const int32_t side = PictureWidth(stars.state.stars[i].image);
    EXPECT_EQ(left, 26) << i;
    EXPECT_EQ(top, 26) << i;
    EXPECT_LE(right - left + 1, side);
    EXPECT_GE(right - left + 1, side - 1);
  }
  // With a sharp shadow the black shows below and right of the star.
  s.shadowOpacity = 255;
  s.softness = 0;
  s.density = 1;
  Stars shadowed(s, 100, 100);
  ASSERT_EQ(shadowed.ok, 1);
  const std::vector<uint32_t> frame = shadowed.Frame(0);
  EXPECT_NE(std::count(frame.begin(), frame.end(), 0u), 0);
}

TEST(StarsPage, BuildsThePagesLoopAndTheSampleIsItsFirstFrame) {
  WindowHandle dialog = CreateFramePageDialog();
  ASSERT_NE(dialog, nullptr);
  EXPECT_EQ(StarsEffectKeyColour(dialog, 0), 0xFFFFFF);
  StarsSettings read;
  ReadStarsSettings(dialog, &read);
  EXPECT_EQ(read.shadowOpacity, 255) << "keyless controls start from the page's defaults";
  EXPECT_EQ(read.softness, 20);
  EXPECT_EQ(read.shadowOffset, 4);
  SetDialogItemInt(dialog, 250, 12, 0);
  CheckFramePage(dialog,
                 {StarsEffectBuild, StarsEffectPreview, &kStarsFrameSet, 64, 252, 250, 248});
  DialogDestroy(dialog);
}
