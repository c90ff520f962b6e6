#include "effects/snow.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "controls/page_setup.h"
#include "controls/value_controls.h"
#include "documents/settings.h"
#include "materials/material_button.h"
#include "shell/crt_random.h"
#include "shell/packed_dib.h"
#include "tests/support/alloc_sweep.h"

namespace {

// The page's defaults.
constexpr SnowSettings kDefaults = {
    {0xEAE3DB, 0xDDBC9B, 0xC08243, 0x95632C, 0x7E5429}, {0, 1, 1, 1, 1}, 10651, 255, 8, 64, 56, 64};

// A picture's pixels, row by row.
std::vector<uint32_t> Pixels(MovableHandle image) {
  std::vector<uint32_t> pixels;
  ScopedLock lock(image);
  const BitmapInfoHeader* h = reinterpret_cast<const BitmapInfoHeader*>(lock.bytes);
  for (int32_t i = 0; lock && i < h->biWidth * h->biHeight; ++i)
    pixels.push_back(ReadDibPixel(lock.bytes, i % h->biWidth, i / h->biWidth));
  return pixels;
}

int32_t Side(MovableHandle image) {
  ScopedLock lock(image);
  return lock ? reinterpret_cast<const BitmapInfoHeader*>(lock.bytes)->biWidth : -1;
}

// A state prepared over a white fill, released at the end of the scope.
struct Snow {
  SnowState state{};
  MovableHandle material = CreateButtonMaterial(0xFFFFFF);
  int ok;
  Snow(const SnowSettings& settings, int32_t width, int32_t height) {
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
};

}  // namespace

TEST(Snow, FlakesDrawTheirNumbersInOrderAndOnlySeveralColoursDrawAColour) {
  // Per flake: x, y, a dropped call, size, phase, the colour draws (none with one colour; with
  // two, until the index differs from the last flake's), then six for the flake's shape.
  struct Case {
    int32_t colours, size;
  } cases[] = {{1, 56}, {2, 56}, {1, 10}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.colours * 1000 + c.size);
    SnowSettings s = kDefaults;
    s.enabled[1] = c.colours == 2;
    s.enabled[2] = s.enabled[3] = s.enabled[4] = 0;
    s.density = 3;
    s.size = c.size;
    crt::srand(static_cast<uint32_t>(s.seed));
    std::vector<int> r(60);
    for (int& v : r) v = crt::rand();
    Snow snow(s, 200, 70);
    ASSERT_EQ(snow.ok, 1);
    const int next = crt::rand();
    for (int i = 0, k = 0, last = -1; i < 3; ++i) {
      const SnowFlake& f = snow.state.flakes[i];
      EXPECT_EQ(f.x * 100 + f.y, r[k] % 200 * 100 + r[k + 1] % 70);
      EXPECT_EQ(f.size, c.size - r[k + 3] % std::max(1, c.size / 9));
      EXPECT_EQ(f.phase, static_cast<float>(r[k + 4] % 360));
      EXPECT_EQ(f.speed, 1 << i);
      int draws = 0, index = 0;
      while (c.colours > 1 && draws < 16 && (draws == 0 || index == last))
        index = r[k + 5 + draws++] % 2;
      last = index;
      EXPECT_EQ(f.color, kDefaults.colors[index]);
      EXPECT_EQ(Side(f.image), f.size) << "halved from twice the size";
      k += 5 + draws + 6;
      if (i == 2) {
        EXPECT_EQ(next, r[k]) << "no other call";
      }
    }
  }
}

TEST(Snow, SizeTenMakesEveryFlakeTenAndAFailedHalvingLeavesTwiceTheSide) {
  SnowSettings small = kDefaults;
  small.size = 10;
  Snow snow(small, 90, 40);
  ASSERT_EQ(snow.ok, 1);
  for (int32_t i = 0; i < snow.state.flakeCount; ++i)
    EXPECT_EQ(snow.state.flakes[i].size * 1000 + Side(snow.state.flakes[i].image), 10010);

  MovableFailAllocation(0);
  MovableFree(DrawSnowFlake(20));
  const long made = MovableAllocationCount(), live = MovableLiveCount();
  MovableFailAllocation(made);  // the last allocation is the halved picture's
  ScopedBlock flake(DrawSnowFlake(20));
  MovableFailAllocation(0);
  EXPECT_EQ(Side(flake.handle), 40);
  MovableFree(flake.Release());
  EXPECT_EQ(MovableLiveCount(), live);
}

TEST(Snow, FramesFallAndDriftAndTheLoopCloses) {
  // Drift 0: the phase changes nothing, and after a whole loop every flake is back.
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
  EXPECT_EQ(a.Frame(0), first);
  still.drift = 20;
  Snow b(still, 80, 60);
  const std::vector<uint32_t> drifted = b.Frame(0);
  for (int32_t i = 0; i < b.state.flakeCount; ++i) b.state.flakes[i].phase += 77;
  EXPECT_NE(b.Frame(0), drifted) << "with drift the phase moves the flakes";

  // Frames 2 on an even height: flakes of speed 2 and 4 fall whole heights and sit still; the one
  // of speed 1 moves. Hidden (white on the white fill), it leaves two equal frames.
  still.drift = 0;
  still.frames = 2;
  still.density = 3;
  Snow c(still, 64, 40);
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
  Snow snow(one, 40, 30);
  ASSERT_EQ(snow.ok, 1);
  SnowFlake& f = snow.state.flakes[0];
  // Frame 0 puts the stamp at (x - 5, y - 30 + 1 - 5): (15, 10), inside, first.
  const int32_t places[][2] = {{20, 44}, {0, 44}, {20, 29}, {0, 29}, {60, 104}};
  std::vector<uint32_t> inside;
  for (const auto& p : places) {
    f.x = p[0];
    f.y = p[1];
    std::vector<uint32_t> frame = snow.Frame(0);
    int left = 0, right = 0, top = 0, bottom = 0;
    for (int32_t i = 0; i < 40 * 30; ++i) {
      if (frame[static_cast<size_t>(i)] == 0xFFFFFF) continue;
      left += i % 40 < 3, right += i % 40 >= 37, top += i / 40 < 3, bottom += i / 40 >= 27;
    }
    EXPECT_EQ(left && right, p[0] == 0) << p[0] << "," << p[1];
    EXPECT_EQ(top && bottom, p[1] == 29) << p[0] << "," << p[1];
    // Nothing is lost at the edges: the same pixels, elsewhere.
    std::sort(frame.begin(), frame.end());
    if (inside.empty()) inside = frame;
    EXPECT_EQ(frame, inside);
  }
}

namespace {

// A build of the dialog's Snow: every frame's pixels and delay.
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
  Built b{SnowEffectBuild(&context), context.flags, {}, {}};
  {
    ScopedLock lock(list.records);
    for (int32_t i = 0; lock && i < list.count; ++i) {
      const FrameRecord& r = reinterpret_cast<const FrameRecord*>(lock.bytes)[i];
      b.frames.push_back(Pixels(r.image));
      b.delays.push_back(r.delay);
    }
  }
  FreeFrameList(&list);
  return b;
}

}  // namespace

TEST(SnowPage, BuildsThePagesLoopAndTheSampleIsItsFirstFrame) {
  ResetSettings();  // the built-in defaults, whatever an earlier test left
  WindowHandle dialog = CreateValueDialog();
  ASSERT_NE(dialog, nullptr);
  for (int32_t id : {167, 169, 185})
    ASSERT_EQ(DialogCreateMaterial(DialogItem(dialog, id), id == 167 ? 0x7F7F7F : 0xFFFFFF), 1);
  SetDialogItemInt(dialog, 57, 16, 0);  // a small font keeps the canvas small
  EXPECT_EQ(SnowEffectKeyColour(dialog, 0), 0xFFFFFF);

  const int32_t delay = ReadDlgValue(dialog, 11);
  const Built standard = BuildSnow(dialog);
  ASSERT_EQ(standard.ok, 1);
  ASSERT_EQ(standard.frames.size(), 64u) << "the default Frames";
  EXPECT_EQ(standard.delays, std::vector<int32_t>(64, delay));
  BuildContext preview{};
  preview.dialog = dialog;
  preview.sample = 1;
  EXPECT_EQ(SnowEffectPreview(&preview), 1);
  EXPECT_EQ(preview.flags, kBuildFlagPreview);
  ScopedBlock sample(preview.image);
  EXPECT_EQ(Pixels(sample.handle), standard.frames[0]) << "the sample is frame 0 of the loop";
  for (const std::vector<uint32_t>& frame : standard.frames)
    EXPECT_EQ(frame.size(), standard.frames[0].size()) << "one canvas for every frame";
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
    WindowHandle control = DialogItem(dialog, c.id);
    const int32_t old = c.id == 22 ? DialogGetCheck(control) : ReadDlgValue(dialog, c.id);
    c.id == 22 ? DialogSetCheck(control, c.value)
               : SetDialogItemInt(dialog, c.id, static_cast<uint32_t>(c.value), 0);
    const Built b = BuildSnow(dialog);
    EXPECT_EQ(b.ok * 10 + (b.flags & kBuildFlagBuild), 10 + kBuildFlagBuild);
    EXPECT_EQ(b.delays, std::vector<int32_t>(c.frames, c.delay));
    EXPECT_EQ(!b.frames.empty() && b.frames[0] == standard.frames[0], c.sameFirst);
    c.id == 22 ? DialogSetCheck(control, old)
               : SetDialogItemInt(dialog, c.id, static_cast<uint32_t>(old), 0);
  }

  // A small set, every allocation failing in turn; a flake whose halving fails keeps its doubled
  // picture, so those runs may succeed.
  for (int32_t id : {175, 193}) SetDialogItemInt(dialog, id, 2, 0);
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
