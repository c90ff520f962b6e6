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
  size_t renders;
  std::vector<int32_t> along, across, delays;  // of the appended frames
};

Built Build(int32_t width, int32_t height, SimpleLoopSettings settings) {
  FakeRenderer fake{width, height, {}};
  FrameList list{};
  BuildContext context{};
  context.frames = &list;
  Built b{};
  b.ok = RunSimpleFrames(&context, &settings, RenderFake, &fake);
  b.renders = fake.asked.size();
  const bool vertical = settings.scroll == kScrollUp || settings.scroll == kScrollDown;
  const size_t first = fake.asked.size() - static_cast<size_t>(list.count);
  {
    ScopedLock lock(list.records);
    for (int32_t i = 0; lock && i < list.count; ++i) {
      const SimpleFrameParams& p = fake.asked[first + i];
      b.along.push_back(vertical ? p.y : p.x);
      b.across.push_back(vertical ? p.x : p.y);
      b.delays.push_back(reinterpret_cast<const FrameRecord*>(lock.bytes)[i].delay);
    }
  }
  FreeFrameList(&list);
  return b;
}

}  // namespace

TEST(SimpleEffect, FewFramesStepByTheTravelOverTheFramesTruncated) {
  struct Case {
    SimpleLoopSettings settings;
    int32_t width, height;
    std::vector<int32_t> along, delays;
  } cases[] = {
      {{1, 5, 40, 2, kScrollUp}, 30, 100, {0, -100}, {45, 45}},     // both frames hold the pause
      {{1, 1, 1, 3, kScrollRight}, 10, 6, {-3, 3, 10}, {1, 2, 2}},  // -10 + 6.67 gives -3
  };
  for (const Case& c : cases) {
    const Built b = Build(c.width, c.height, c.settings);
    ASSERT_EQ(b.ok, 1);
    EXPECT_EQ(b.renders, c.along.size() + 1) << "one extra render for the canvas size";
    EXPECT_EQ(b.along, c.along);
    EXPECT_EQ(b.across, std::vector<int32_t>(c.along.size(), 0));
    EXPECT_EQ(b.delays, c.delays);
  }
}

TEST(SimpleEffect, ManyFramesTravelTwiceTheCanvasPixelByPixelThroughTheCentre) {
  struct Case {
    int32_t scroll, step, travel;
  } cases[] = {{kScrollRight, 1, 10}, {2, -1, 10}, {kScrollDown, 1, 6}, {kScrollUp, -1, 6}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.scroll);  // 2, or any other value, scrolls leftward
    const Built b = Build(10, 6, {1, 3, 100, 500, c.scroll});
    ASSERT_EQ(b.along.size(), static_cast<size_t>(2 * c.travel));
    for (size_t i = 0; i < b.along.size(); ++i) {
      EXPECT_EQ(b.along[i], c.step * (static_cast<int32_t>(i) + 1 - c.travel)) << i;
      EXPECT_EQ(b.across[i], 0);
      const bool paused = b.along[i] == 0 || i + 1 == b.along.size();
      EXPECT_EQ(b.delays[i], paused ? 103 : 3) << i;
    }
  }
}

TEST(SimpleEffect, StillFramesAndFailures) {
  const Built still = Build(10, 6, {0, 7, 50, 64, kScrollRight});
  ASSERT_EQ(still.ok, 1);
  EXPECT_EQ(still.renders, 1u);
  EXPECT_EQ(still.along, (std::vector<int32_t>{0}));
  EXPECT_EQ(still.delays, (std::vector<int32_t>{7}));

  EXPECT_TRUE(SweepAllocationFailures([] { return Build(8, 4, {1, 1, 1, 4, kScrollDown}).ok; }));
}
