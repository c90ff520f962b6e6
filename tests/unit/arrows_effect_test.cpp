#include "effects/arrows.h"

#include <gtest/gtest.h>

#include <vector>

#include "controls/value_controls.h"
#include "shell/crt_random.h"
#include "shell/packed_dib.h"
#include "tests/support/frame_set_checks.h"

namespace {

// The page's defaults.
constexpr ArrowsSettings kDefaults = {{0xFF0000, 0x00FF00, 0x00CCFF, 0x0033CC, 0x0066FF},
                                      {0, 1, 1, 1, 1},
                                      {1, 1, 0, 0},
                                      255,
                                      4,
                                      20,
                                      11234,
                                      255,
                                      4,
                                      96,
                                      50,
                                      128};

using Arrows = PreparedFrameSet<ArrowsState, ArrowsSettings, PrepareArrowsState, ReleaseArrowsState,
                                RenderArrowsFrame>;

}  // namespace

TEST(Arrows, PreparationDrawsHeadingsLikeColoursAndOnlyWhenThereIsAChoice) {
  // Per arrow: x, y, a dropped call, size, phase, the colour draws, the heading draws; the arrow
  // and its shadow draw none.
  struct Case {
    int32_t boxes[4];
    int32_t opacity;
    std::vector<int32_t> headings;
  } cases[] = {{{0, 0, 0, 0}, 255, {1}},  // all clear: left
               {{0, 0, 0, 1}, 0, {3}},    // one box: no heading draw
               {{1, 0, 1, 1}, 255, {0, 2, 3}}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.headings.size());
    ArrowsSettings s = kDefaults;
    for (int i = 0; i < 4; ++i) s.directions[i] = c.boxes[i];
    s.enabled[2] = s.enabled[3] = s.enabled[4] = 0;  // two colours
    s.density = 5;
    s.shadowOpacity = c.opacity;
    const std::vector<int> r = RandomSequence(static_cast<uint32_t>(s.seed), 200);
    Arrows arrows(s, 120, 60);
    ASSERT_EQ(arrows.ok, 1);
    const int next = crt::rand();
    size_t k = 0;
    int32_t lastColour = -1, lastHeading = -1;
    auto draw = [&r, &k](int32_t count, int32_t* last) {
      int32_t index = 0;
      for (int tries = 0; count > 1 && tries < 16; ++tries)
        if ((index = r[k++] % count) != *last) break;
      return *last = index;
    };
    for (int32_t i = 0; i < 5; ++i) {
      const ArrowItem& a = arrows.state.arrows[i];
      EXPECT_EQ(a.x, r[k] % 120);
      EXPECT_EQ(a.y, r[k + 1] % 60);
      EXPECT_EQ(a.size, 50 - r[k + 3] % 5);
      EXPECT_EQ(a.phase, static_cast<float>(r[k + 4] % 360));
      k += 5;
      EXPECT_EQ(a.color, kDefaults.colors[draw(2, &lastColour)]);
      const int32_t count = static_cast<int32_t>(c.headings.size());
      EXPECT_EQ(a.heading, c.headings[static_cast<size_t>(draw(count, &lastHeading))]);
      EXPECT_EQ(PictureWidth(a.image), a.size);
      EXPECT_EQ(a.shadow != nullptr, c.opacity > 0) << "Opacity 0 makes no shadows";
    }
    EXPECT_EQ(next, r[k]) << "no other call was made";
  }
}

TEST(Arrows, ArrowsPointAlongTheirHeading) {
  // The head is the widest part: its row (or column) lies on the side the arrow points to, and
  // the four headings cover about the same area.
  int32_t areas[4];
  for (int32_t heading = 0; heading < 4; ++heading) {
    ScopedBlock arrow(DrawArrow(40, heading));
    const std::vector<uint32_t> p = PicturePixels(arrow.handle);
    ASSERT_EQ(p.size(), 1600u);
    int32_t rows[40] = {}, columns[40] = {}, area = 0;
    for (int32_t y = 0; y < 40; ++y)
      for (int32_t x = 0; x < 40; ++x) {
        const int32_t on = (p[static_cast<size_t>(y * 40 + x)] & 0xFF) > 127;
        rows[y] += on;
        columns[x] += on;
        area += on;
      }
    areas[heading] = area;
    int32_t widestRow = 0, widestColumn = 0;
    for (int32_t i = 0; i < 40; ++i) {
      if (rows[i] > rows[widestRow]) widestRow = i;
      if (columns[i] > columns[widestColumn]) widestColumn = i;
    }
    SCOPED_TRACE(heading);
    const int32_t widest = heading % 2 == 0 ? widestRow : widestColumn;
    if (heading == kHeadingUp || heading == kHeadingLeft) {
      EXPECT_LT(widest, 20);
    } else {
      EXPECT_GE(widest, 20);
    }
  }
  for (int32_t heading = 1; heading < 4; ++heading)
    EXPECT_NEAR(areas[heading], areas[0], areas[0] / 10);
}

TEST(Arrows, FramesMoveEachHeadingItsWayAndSwayWithPositiveDrift) {
  // One arrow of speed 1 on a 40 by 40 canvas, 4 frames: a frame moves it 10 pixels its way, so
  // frame 1 is frame 0 rolled, its shadow with it; after the loop frame 0 returns.
  ArrowsSettings s = kDefaults;
  s.density = 1;
  s.size = 12;
  s.frames = 4;
  s.drift = 0;
  Arrows a(s, 40, 40);
  ASSERT_EQ(a.ok, 1);
  ASSERT_NE(a.state.arrows[0].shadow, nullptr);
  const struct { int32_t dx, dy; } moves[4] = {{0, -10}, {-10, 0}, {0, 10}, {10, 0}};
  for (int32_t heading = 0; heading < 4; ++heading) {
    a.state.arrows[0].heading = heading;
    const std::vector<uint32_t> first = a.Frame(0);
    EXPECT_EQ(a.Frame(1), RolledPixels(first, 40, moves[heading].dx, moves[heading].dy)) << heading;
    EXPECT_EQ(a.Frame(4), first) << "the loop closes";
  }
  // Drift 10 on 40 pixels: amplitude 4; at phase 90 the arrow stands 4 to the right (up and down
  // headings) or 4 down (left and right) of where drift 0 puts it.
  ArrowsSettings swaying = s;
  swaying.drift = 10;
  Arrows b(swaying, 40, 40);
  ASSERT_EQ(b.ok, 1);
  for (int32_t heading = 0; heading < 4; ++heading) {
    a.state.arrows[0].heading = b.state.arrows[0].heading = heading;
    a.state.arrows[0].phase = b.state.arrows[0].phase = 90;
    const bool vertical = heading % 2 == 0;
    EXPECT_EQ(b.Frame(0), RolledPixels(a.Frame(0), 40, vertical ? 4 : 0, vertical ? 0 : 4))
        << heading;
  }
}

TEST(ArrowsPage, BuildsThePagesLoopAndTheSampleIsItsFirstFrame) {
  WindowHandle dialog = CreateFramePageDialog();
  ASSERT_NE(dialog, nullptr);
  EXPECT_EQ(ArrowsEffectKeyColour(dialog, 0), 0xFFFFFF);
  ArrowsSettings read;
  ReadArrowsSettings(dialog, &read);
  EXPECT_EQ(std::vector<int32_t>(read.directions, read.directions + 4),
            std::vector<int32_t>({1, 1, 0, 0}))
      << "upper and left boxes: North and East";
  // Fewer arrows keep the default build quick; the loop length and sizes stay the page's.
  SetDialogItemInt(dialog, 432, 12, 0);
  CheckFramePage(dialog,
                 {ArrowsEffectBuild, ArrowsEffectPreview, &kArrowsFrameSet, 128, 434, 432, 430});
  DialogDestroy(dialog);
}
