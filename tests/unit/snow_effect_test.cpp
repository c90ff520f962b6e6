#include "effects/snow.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "controls/page_setup.h"
#include "controls/value_controls.h"
#include "materials/material_button.h"
#include "shell/crt_random.h"
#include "shell/packed_dib.h"
#include "tests/support/alloc_sweep.h"

namespace {

// The page's defaults.
constexpr SnowSettings kDefaults = {
    {0xEAE3DB, 0xDDBC9B, 0xC08243, 0x95632C, 0x7E5429}, {0, 1, 1, 1, 1}, 10651, 255, 8, 64, 56, 64};

// A prepared state over a white fill, released at the end of the scope.
struct Snow {
  SnowState state{};
  MovableHandle material;
  int ok;
  Snow(const SnowSettings& settings, int32_t width, int32_t height)
      : material(CreateButtonMaterial(0xFFFFFF)) {
    ScopedLock m(material);
    ok = m &&
         PrepareSnowState(&state, &settings, width, height, reinterpret_cast<Material*>(m.bytes));
  }
  ~Snow() {
    ReleaseSnowState(&state);
    FreeButtonMaterial(material);
  }
  std::vector<uint32_t> Frame(int32_t n) {
    ScopedBlock image(RenderSnowFrame(&state, n));
    return Pixels(image.handle);
  }
  static std::vector<uint32_t> Pixels(MovableHandle image) {
    std::vector<uint32_t> pixels;
    ScopedLock lock(image);
    if (!lock) return pixels;
    const BitmapInfoHeader* h = reinterpret_cast<const BitmapInfoHeader*>(lock.bytes);
    for (int32_t y = 0; y < h->biHeight; ++y)
      for (int32_t x = 0; x < h->biWidth; ++x) pixels.push_back(ReadDibPixel(lock.bytes, x, y));
    return pixels;
  }
};

int32_t Side(MovableHandle image) {
  ScopedLock lock(image);
  return lock ? reinterpret_cast<const BitmapInfoHeader*>(lock.bytes)->biWidth : -1;
}

// The generator's results from `seed` on.
std::vector<int> Sequence(uint32_t seed, int count) {
  crt::srand(seed);
  std::vector<int> r;
  for (int i = 0; i < count; ++i) r.push_back(crt::rand());
  return r;
}

}  // namespace

TEST(Snow, FlakesDrawTheirNumbersInOrderAndOnlyManyColoursDrawAColour) {
  // Per flake: x, y, a dropped call, size, phase, the colour draws (none with one colour; with
  // two, draws until the index differs from the last flake's), then six for the flake's shape.
  struct Case {
    int32_t enabled2, size;
    int colourDraws;  // 0 or 1: whether colours are drawn at all
  } cases[] = {{0, 56, 0}, {1, 56, 1}, {0, 10, 0}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.enabled2 * 1000 + c.size);
    SnowSettings s = kDefaults;
    s.enabled[1] = c.enabled2;
    s.enabled[2] = s.enabled[3] = s.enabled[4] = 0;
    s.density = 2;
    s.size = c.size;
    const std::vector<int> r = Sequence(static_cast<uint32_t>(s.seed), 40);
    const int spread = std::max(1, c.size / 9);
    Snow snow(s, 200, 70);
    ASSERT_EQ(snow.ok, 1);
    ASSERT_EQ(snow.state.colorCount, 1 + c.enabled2);
    const int next = crt::rand();
    for (int i = 0, k = 0, last = -1; i < 2; ++i) {
      const SnowFlake& f = snow.state.flakes[i];
      EXPECT_EQ(f.x, r[k] % 200);
      EXPECT_EQ(f.y, r[k + 1] % 70);
      EXPECT_EQ(f.size, c.size - r[k + 3] % spread);
      EXPECT_EQ(f.phase, static_cast<float>(r[k + 4] % 360));
      EXPECT_EQ(f.speed, i == 0 ? 1 : 2);
      int draws = 0, index = 0;
      while (c.colourDraws && draws < 16 && (draws == 0 || index == last))
        index = r[k + 5 + draws++] % 2;
      last = index;
      EXPECT_EQ(f.color, kDefaults.colors[index]);
      EXPECT_EQ(Side(f.image), f.size) << "halved from twice the size";
      k += 5 + draws + 6;
      if (i == 1) {
        EXPECT_EQ(next, r[k]) << "no other call was made";
      }
    }
  }
  // Size 10: the spread is 1 and every flake has side 10.
  SnowSettings small = kDefaults;
  small.size = 10;
  Snow snow(small, 90, 40);
  ASSERT_EQ(snow.ok, 1);
  for (int32_t i = 0; i < snow.state.flakeCount; ++i) {
    EXPECT_EQ(snow.state.flakes[i].size, 10);
    EXPECT_EQ(Side(snow.state.flakes[i].image), 10);
  }
}

TEST(Snow, FlakeWhenHalvingFailsStaysAtTwiceItsSize) {
  crt::srand(7);
  MovableFailAllocation(0);
  MovableFree(DrawSnowFlake(20));
  const long made = MovableAllocationCount();
  const long live = MovableLiveCount();
  crt::srand(7);
  MovableFailAllocation(made);  // the last allocation is the halved picture's
  ScopedBlock flake(DrawSnowFlake(20));
  MovableFailAllocation(0);
  EXPECT_EQ(Side(flake.handle), 40);
  MovableFree(flake.Release());
  EXPECT_EQ(MovableLiveCount(), live);
}

TEST(Snow, FramesLoopFallAndDriftAsStated) {
  // Drift 0: the phase no longer matters, and after a whole loop every flake is back.
  SnowSettings still = kDefaults;
  still.drift = 0;
  still.frames = 5;
  still.density = 9;
  Snow a(still, 80, 60);
  ASSERT_EQ(a.ok, 1);
  const std::vector<uint32_t> first = a.Frame(0);
  for (int32_t n = 1; n < 5; ++n) EXPECT_NE(a.Frame(n), first) << n;
  EXPECT_EQ(a.Frame(5), first) << "the loop closes";
  for (int32_t i = 0; i < a.state.flakeCount; ++i) a.state.flakes[i].phase += 77;
  EXPECT_EQ(a.Frame(0), first) << "no drift: the phase changes nothing";
  SnowSettings drifting = still;
  drifting.drift = 20;
  Snow b(drifting, 80, 60);
  const std::vector<uint32_t> drifted = b.Frame(0);
  for (int32_t i = 0; i < b.state.flakeCount; ++i) b.state.flakes[i].phase += 77;
  EXPECT_NE(b.Frame(0), drifted) << "with drift the phase moves the flakes";

  // Frames 2 on an even height: flakes of speed 2 and 4 fall a whole number of heights and, with
  // no drift, sit still; the one of speed 1 moves. Hiding it (white on the white fill) leaves two
  // equal frames.
  SnowSettings two = still;
  two.frames = 2;
  two.density = 3;
  Snow c(two, 64, 40);
  ASSERT_EQ(c.ok, 1);
  EXPECT_NE(c.Frame(0), c.Frame(1));
  c.state.flakes[0].color = 0xFFFFFF;
  EXPECT_EQ(c.Frame(0), c.Frame(1));
}

TEST(Snow, AFlakeAcrossAnEdgeReappearsAtTheOppositeEdge) {
  SnowSettings one = kDefaults;
  one.density = 1;
  one.size = 10;
  one.drift = 0;
  one.enabled[1] = one.enabled[2] = one.enabled[3] = one.enabled[4] = 0;
  Snow snow(one, 40, 30);
  ASSERT_EQ(snow.ok, 1);
  SnowFlake& f = snow.state.flakes[0];
  // Frame 0 stands the stamp at (x - 5, y - 30 + 1 - 5).
  f.x = 20;
  f.y = 44;
  std::vector<uint32_t> inside = snow.Frame(0);
  struct Case {
    int32_t x, y;
  } cases[] = {{0, 44}, {20, 29}, {0, 29}, {60, 104}};  // left, top, both, whole turns
  for (const Case& c : cases) {
    f.x = c.x;
    f.y = c.y;
    std::vector<uint32_t> frame = snow.Frame(0);
    int leftEdge = 0, rightEdge = 0, topEdge = 0, bottomEdge = 0;
    for (int32_t y = 0; y < 30; ++y)
      for (int32_t x = 0; x < 40; ++x) {
        if (frame[static_cast<size_t>(y * 40 + x)] == 0xFFFFFF) continue;
        leftEdge += x < 3;
        rightEdge += x >= 37;
        topEdge += y < 3;
        bottomEdge += y >= 27;
      }
    const bool acrossX = c.x == 0, acrossY = c.y == 29;
    EXPECT_EQ(leftEdge > 0 && rightEdge > 0, acrossX) << c.x << "," << c.y;
    EXPECT_EQ(topEdge > 0 && bottomEdge > 0, acrossY) << c.x << "," << c.y;
    // Nothing is lost at the edges: the same pixels, elsewhere.
    std::vector<uint32_t> a = inside;
    std::sort(a.begin(), a.end());
    std::sort(frame.begin(), frame.end());
    EXPECT_EQ(frame, a);
  }
}

namespace {

// Every frame's pixels and delay from a build of the dialog.
struct Built {
  int ok;
  uint32_t flags;
  std::vector<std::vector<uint32_t>> frames;
  std::vector<int32_t> delays;
};

Built BuildSnow(WindowHandle dialog) {
  FrameList list{};
  BuildContext context{};
  context.dialog = dialog;
  context.frames = &list;
  Built b{};
  b.ok = SnowEffectBuild(&context);
  b.flags = context.flags;
  {
    ScopedLock lock(list.records);
    for (int32_t i = 0; lock && i < list.count; ++i) {
      const FrameRecord& r = reinterpret_cast<const FrameRecord*>(lock.bytes)[i];
      b.frames.push_back(Snow::Pixels(r.image));
      b.delays.push_back(r.delay);
    }
  }
  FreeFrameList(&list);
  return b;
}

std::vector<uint32_t> PreviewSnow(WindowHandle dialog) {
  BuildContext context{};
  context.dialog = dialog;
  context.sample = 1;
  EXPECT_EQ(SnowEffectPreview(&context), 1);
  EXPECT_EQ(context.flags, kBuildFlagPreview);
  ScopedBlock image(context.image);
  return Snow::Pixels(image.handle);
}

}  // namespace

TEST(SnowPage, BuildsThePagesLoopAndTheSampleIsItsFirstFrame) {
  WindowHandle dialog = CreateValueDialog();
  ASSERT_NE(dialog, nullptr);
  for (int32_t id : {167, 169, 185})
    ASSERT_EQ(DialogCreateMaterial(DialogItem(dialog, id), id == 167 ? 0x7F7F7F : 0xFFFFFF), 1);
  SetDialogItemInt(dialog, 57, 16, 0);  // a small font keeps the canvas small
  EXPECT_EQ(SnowEffectKeyColour(dialog, 0), 0xFFFFFF);

  const int32_t delay = ReadDlgValue(dialog, 11);
  const Built standard = BuildSnow(dialog);
  ASSERT_EQ(standard.ok, 1);
  EXPECT_EQ(standard.flags & kBuildFlagBuild, kBuildFlagBuild);
  ASSERT_EQ(standard.frames.size(), 64u) << "the default Frames";
  EXPECT_EQ(standard.delays, std::vector<int32_t>(64, delay));
  const std::vector<uint32_t> sample = PreviewSnow(dialog);
  EXPECT_EQ(sample, standard.frames[0]) << "the sample is frame 0 of the loop";
  for (const std::vector<uint32_t>& frame : standard.frames)
    EXPECT_EQ(frame.size(), sample.size()) << "one canvas for every frame";
  EXPECT_NE(standard.frames[0], standard.frames[32]);
  EXPECT_EQ(BuildSnow(dialog).frames, standard.frames) << "the same settings, the same bytes";

  struct Case {
    int32_t id, value;
    size_t frames;
    int32_t delay;
    bool sameFirst;
  } cases[] = {
      {175, 2, 2, delay, true},        // Frames 2
      {11, 9, 64, 9, true},            // Delay
      {22, 0, 1, delay, true},         // animate off: one frame, the first of the loop
      {195, 10652, 64, delay, false},  // another Seed, other flakes
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.id);
    const int32_t old =
        c.id == 22 ? DialogGetCheck(DialogItem(dialog, 22)) : ReadDlgValue(dialog, c.id);
    if (c.id == 22)
      DialogSetCheck(DialogItem(dialog, 22), c.value);
    else
      SetDialogItemInt(dialog, c.id, static_cast<uint32_t>(c.value), 0);
    const Built b = BuildSnow(dialog);
    EXPECT_EQ(b.ok, 1);
    EXPECT_EQ(b.flags & kBuildFlagBuild, kBuildFlagBuild);
    EXPECT_EQ(b.delays, std::vector<int32_t>(c.frames, c.delay));
    if (!b.frames.empty()) {
      EXPECT_EQ(b.frames[0] == standard.frames[0], c.sameFirst);
    }
    if (c.id == 22)
      DialogSetCheck(DialogItem(dialog, 22), old);
    else
      SetDialogItemInt(dialog, c.id, static_cast<uint32_t>(old), 0);
  }

  // A small set, every allocation failing in turn; a flake whose halving fails keeps its doubled
  // picture, so those runs may succeed.
  SetDialogItemInt(dialog, 175, 2, 0);
  SetDialogItemInt(dialog, 193, 2, 0);
  SetDialogItemInt(dialog, 191, 10, 0);
  EXPECT_TRUE(SweepAllocationFailures(
      [dialog] {
        FrameParams params{};
        params.frameCount = 2;
        const int ok = BuildFrameSet(&params, &kSnowFrameSet, dialog, 24, 16);
        FreeFrameSet(&params);
        return ok;
      },
      100000, true));
  DialogDestroy(dialog);
}
