#include "effects/simple.h"

#include <gtest/gtest.h>

#include <vector>

#include "shell/packed_dib.h"
#include "tests/support/alloc_sweep.h"

namespace {

// A stand-in renderer: a canvas of a fixed size, remembering every position asked for.
struct FakeRenderer {
  int32_t width, height;
  std::vector<SimpleFrameParams> asked;
};

MovableHandle RenderFake(void* renderer, const SimpleFrameParams* params) {
  FakeRenderer* fake = static_cast<FakeRenderer*>(renderer);
  fake->asked.push_back(*params);
  return CreatePackedDib(fake->width, fake->height, nullptr, 24);
}

struct Built {
  int ok;
  std::vector<SimpleFrameParams> positions;  // of the appended frames
  std::vector<int32_t> delays;
  size_t renders;
};

Built Build(int32_t width, int32_t height, SimpleLoopSettings settings) {
  FakeRenderer fake{width, height, {}};
  FrameList list{};
  BuildContext context{};
  context.frames = &list;
  Built built;
  built.ok = RunSimpleFrames(&context, &settings, RenderFake, &fake);
  built.renders = fake.asked.size();
  const size_t first = fake.asked.size() - static_cast<size_t>(list.count);
  {
    ScopedLock lock(list.records);
    for (int32_t i = 0; lock && i < list.count; ++i) {
      const FrameRecord* r = reinterpret_cast<const FrameRecord*>(lock.bytes) + i;
      EXPECT_EQ(r->transparentIndex, -1);
      EXPECT_EQ(r->mask, nullptr);
      built.delays.push_back(r->delay);
      built.positions.push_back(fake.asked[first + i]);
    }
  }
  FreeFrameList(&list);
  return built;
}

}  // namespace

TEST(SimpleEffect, TwoFramesUpwardBothHoldThePause) {
  Built b = Build(30, 100, {1, 5, 40, 2, kScrollUp});
  ASSERT_EQ(b.ok, 1);
  ASSERT_EQ(b.positions.size(), 2u);
  EXPECT_EQ(b.renders, 3u) << "one extra render for the canvas size";
  EXPECT_EQ(b.positions[0].y, 0);
  EXPECT_EQ(b.positions[1].y, -100);
  EXPECT_EQ(b.positions[0].x, 0);
  EXPECT_EQ(b.delays, (std::vector<int32_t>{45, 45}));
}

TEST(SimpleEffect, EachDirectionTravelsTwiceTheCanvasThroughTheCentre) {
  struct Case {
    int32_t scroll, first, centred, last;
    bool vertical;
  } cases[] = {
      {kScrollRight, -9, 0, 10, false},  // from the left edge, pixel by pixel
      {2, 9, 0, -10, false},             // any other value: leftward
      {kScrollDown, -5, 0, 6, true},
      {kScrollUp, 5, 0, -6, true},
  };
  for (const Case& c : cases) {
    // Frames above the travel: as many frames as pixels of travel, a step of exactly 1.
    Built b = Build(10, 6, {1, 3, 100, 500, c.scroll});
    ASSERT_EQ(b.ok, 1);
    const size_t n = c.vertical ? 12 : 20;
    ASSERT_EQ(b.positions.size(), n) << c.scroll;
    auto along = [&](size_t i) { return c.vertical ? b.positions[i].y : b.positions[i].x; };
    auto across = [&](size_t i) { return c.vertical ? b.positions[i].x : b.positions[i].y; };
    EXPECT_EQ(along(0), c.first) << c.scroll;
    EXPECT_EQ(along(n - 1), c.last) << c.scroll;
    int paused = 0;
    for (size_t i = 0; i < n; ++i) {
      EXPECT_EQ(across(i), 0);
      if (b.delays[i] == 103) {
        ++paused;
        if (i != n - 1) {
          EXPECT_EQ(along(i), c.centred) << c.scroll;
        }
      } else {
        EXPECT_EQ(b.delays[i], 3);
      }
    }
    EXPECT_EQ(paused, 2) << c.scroll;
  }

  // A fractional step truncates toward zero: 3 frames over a travel of 20 from -10.
  Built b = Build(10, 6, {1, 1, 1, 3, kScrollRight});
  ASSERT_EQ(b.positions.size(), 3u);
  EXPECT_EQ(b.positions[0].x, -3);  // -10 + 6.67
  EXPECT_EQ(b.positions[1].x, 3);
  EXPECT_EQ(b.positions[2].x, 10);
  EXPECT_EQ(b.delays, (std::vector<int32_t>{1, 2, 2}));
}

TEST(SimpleEffect, StillFramesAndFailures) {
  Built still = Build(10, 6, {0, 7, 50, 64, kScrollRight});
  ASSERT_EQ(still.ok, 1);
  EXPECT_EQ(still.renders, 1u);
  ASSERT_EQ(still.positions.size(), 1u);
  EXPECT_EQ(still.positions[0].x, 0);
  EXPECT_EQ(still.delays[0], 7);

  EXPECT_TRUE(SweepAllocationFailures([] {
    FakeRenderer fake{8, 4, {}};
    FrameList list{};
    BuildContext context{};
    context.frames = &list;
    SimpleLoopSettings settings{1, 1, 1, 4, kScrollDown};
    const int ok = RunSimpleFrames(&context, &settings, RenderFake, &fake);
    FreeFrameList(&list);
    return ok;
  }));
}
