#include "effects/neural_network.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>

#include "controls/value_controls.h"
#include "shell/crt_random.h"
#include "tests/support/alloc_sweep.h"
#include "tests/support/effect_builds.h"

namespace {

constexpr NeuralSettings kDefaults = {
    0xFFFFFF, {0xFF0000, 0x00FF00, 0x00CCFF, 0x0033CC, 0x0066FF}, 5, 12055, 10, 70, 70, 55, 11};

struct Neural {
  NeuralState state{};
  int ok;
  Neural(const NeuralSettings& s, int32_t w, int32_t h)
      : ok(PrepareNeuralState(&state, &s, w, h)) {}
  ~Neural() { ReleaseNeuralState(&state); }
  Pixels Tile(int32_t f) {
    ScopedBlock tile(RenderNeuralTile(&state, f));
    return PicturePixels(tile.handle);
  }
};

}  // namespace

TEST(NeuralNetwork, TheShuffleFollowsTheColoursAndTheTrailFallsOff) {
  struct Case {
    int32_t colours, matrix, density;
    int32_t trail, step;
  } cases[] = {
      {1, 4, 1, 1, 191},     // the trail rises from 0 to 1
      {1, 24, 99, 570, 1},   // the step rises from 0 to 1; the tail falls below 0
      {5, 10, 55, 55, 3},    // the page's defaults
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.matrix);
    NeuralSettings s = kDefaults;
    s.colorCount = c.colours;
    s.matrix = c.matrix;
    s.density = c.density;
    s.size = 6;
    const int32_t n = c.matrix * c.matrix;
    crt::srand(12055);
    std::vector<int> r(static_cast<size_t>(n) * 20);
    for (int& v : r) v = crt::rand();
    Neural neural(s, 50, 40);
    ASSERT_EQ(neural.ok, 1);
    const int next = crt::rand();
    EXPECT_EQ(neural.state.trailLength, c.trail);
    EXPECT_EQ(neural.state.levelStep, c.step);
    std::vector<int32_t> order(neural.state.order, neural.state.order + n);
    // The colour picks come first, cell by cell (none with one colour; else draws until the
    // index differs from the last cell's), then the shuffle's n draws.
    size_t k = 0;
    for (int32_t i = 0, last = -1; c.colours > 1 && i < n; ++i) {
      int index = -1;
      for (int tries = 0; tries < 16 && (tries == 0 || index == last); ++tries)
        index = r[k++] % c.colours;
      EXPECT_EQ(neural.state.cells[i].color, kDefaults.colors[index]);
      last = index;
    }
    EXPECT_EQ(next, r[k + static_cast<size_t>(n)]);
    EXPECT_EQ(order[0], r[k] % n);
    const int32_t j1 = r[k + 1] % (n - 1);
    EXPECT_EQ(order[1], j1 == order[0] ? n - 1 : j1) << "the drawn place takes the last entry";
    std::sort(order.begin(), order.end());
    std::vector<int32_t> all(static_cast<size_t>(n));
    std::iota(all.begin(), all.end(), 0);
    EXPECT_EQ(order, all) << "a permutation";

    // Frame f lights order[f] fully and the trail behind it, wrapping to the end.
    const Pixels first = neural.Tile(0);
    const NeuralCell* cells = neural.state.cells;
    const int32_t* o = neural.state.order;
    EXPECT_EQ(cells[o[0]].level, 255);
    if (c.trail > 1) {
      EXPECT_EQ(cells[o[n - 1]].level, 255 - c.step);
    }
    const int32_t tail = c.trail <= n ? n - c.trail + 1 : 1;
    EXPECT_EQ(cells[o[tail % n]].level,
              c.trail <= n ? 255 - (c.trail - 1) * c.step : 255 - (n - 1) * c.step);
    if (c.trail < n) {
      EXPECT_EQ(cells[o[(tail + n - 1) % n]].level, 64) << "beyond the tail, at rest";
    }
    EXPECT_EQ(neural.Tile(n), first) << "the loop closes";
    EXPECT_NE(neural.Tile(1), first);
  }
}

TEST(NeuralNetworkPage, BuildsOneFramePerCellAndTheSampleIsItsFirstFrame) {
  WindowHandle dialog = SmallEffectDialog({355, 357}, {0x7F7F7F, 0xFFFFFF});
  ASSERT_NE(dialog, nullptr);
  EXPECT_EQ(NeuralNetworkEffectKeyColour(dialog, 0), 0xFFFFFF);
  const int32_t delay = ReadDlgValue(dialog, 11);
  const BuiltFrames standard = BuildEffectFrames(NeuralNetworkEffectBuild, dialog);
  ASSERT_EQ(standard.ok, 1);
  ASSERT_EQ(standard.frames.size(), 100u) << "Matrix 10";
  EXPECT_EQ(standard.delays, std::vector<int32_t>(100, delay));
  EXPECT_EQ(PreviewEffectPixels(NeuralNetworkEffectPreview, dialog), standard.frames[0]);

  SetDialogItemInt(dialog, 373, 4, 0);
  const BuiltFrames small = BuildEffectFrames(NeuralNetworkEffectBuild, dialog);
  ASSERT_EQ(small.frames.size(), 16u);
  EXPECT_EQ(BuildEffectFrames(NeuralNetworkEffectBuild, dialog).frames, small.frames);
  SetDialogItemInt(dialog, 381, 12056, 0);
  EXPECT_NE(BuildEffectFrames(NeuralNetworkEffectBuild, dialog).frames, small.frames);
  DialogSetCheck(DialogItem(dialog, 22), 0);
  EXPECT_EQ(BuildEffectFrames(NeuralNetworkEffectBuild, dialog).frames.size(), 1u);

  SetDialogItemInt(dialog, 377, 6, 0);
  // A ball that cannot be drawn leaves its cell as background, so failed runs may succeed.
  EXPECT_TRUE(SweepAllocationFailures([dialog] {
    FrameParams params{};
    params.frameCount = 1;
    const int ok = BuildFrameSet(&params, &kNeuralFrameSet, dialog, 30, 20);
    FreeFrameSet(&params);
    return ok;
  }, 100000, true));
  DialogDestroy(dialog);
}
