#include "effects/frame_set.h"
#include "effects/wrapping_stamp.h"

#include <gtest/gtest.h>

#include <vector>

#include "shell/host_interface.h"
#include "shell/packed_dib.h"
#include "tests/support/alloc_sweep.h"

namespace {

MovableHandle Filled(int32_t w, int32_t h, int32_t depth, uint32_t value) {
  MovableHandle image = CreatePackedDib(w, h, nullptr, depth);
  ScopedLock lock(image);
  for (int32_t y = 0; lock && y < h; ++y)
    for (int32_t x = 0; x < w; ++x) WriteDibPixel(lock.bytes, x, y, value);
  return image;
}

uint32_t Pixel(MovableHandle image, int32_t x, int32_t y) {
  ScopedLock lock(image);
  return ReadDibPixel(lock.bytes, x, y);
}

// A stand-in frame-set effect: frame n is a 2 x 1 picture whose pixels hold n, and the calls are
// counted. `failAt` makes that frame fail; -2 makes the preparation fail.
struct Calls {
  int prepared = 0, released = 0, failAt = -1;
  std::vector<int32_t> frames;
} calls;

struct FakeState {
  int32_t width, height, live;
};

int FakePrepare(void* state, WindowHandle, int32_t width, int32_t height) {
  ++calls.prepared;
  *static_cast<FakeState*>(state) = {width, height, 1};
  return calls.failAt != -2;
}
MovableHandle FakeFrame(void* state, int32_t n) {
  calls.frames.push_back(n);
  const FakeState* s = static_cast<FakeState*>(state);
  return n == calls.failAt ? nullptr : Filled(s->width, s->height, 24, static_cast<uint32_t>(n));
}
void FakeRelease(void* state) {
  calls.released += static_cast<FakeState*>(state)->live;
}

const FrameSetEffect kFake = {{}, 0, sizeof(FakeState), FakePrepare, FakeFrame, FakeRelease, 0};

// The renderer the loop sees: the frame set's fill itself.
MovableHandle RenderFill(void*, BuildContext* context) {
  return FrameSetFillImage(static_cast<FrameParams*>(context->params), &kFake, nullptr, 2, 1);
}

std::vector<int32_t> progress;
uint64_t CountProgress(void*, int32_t opcode, uint64_t a, uint64_t) {
  if (opcode == HostOpProgress) progress.push_back(static_cast<int32_t>(a));
  return 1;
}

struct LoopRun {
  int ok;
  uint32_t flags;
  std::vector<uint32_t> pixels;  // of each appended frame
  std::vector<int32_t> delays;
};

LoopRun RunLoop(FrameSetLoop loop) {
  HostRecord host{};
  host.service = CountProgress;
  FrameList list{};
  BuildContext context{};
  context.frames = &list;
  context.host = &host;
  LoopRun run{};
  run.ok = RunFrameSetFrames(&context, &loop, RenderFill, nullptr);
  run.flags = context.flags;
  {
    ScopedLock lock(list.records);
    for (int32_t i = 0; lock && i < list.count; ++i) {
      const FrameRecord& r = reinterpret_cast<const FrameRecord*>(lock.bytes)[i];
      run.pixels.push_back(Pixel(r.image, 1, 0));
      run.delays.push_back(r.delay);
      EXPECT_EQ(r.transparentIndex, -1);
    }
  }
  FreeFrameList(&list);
  return run;
}

}  // namespace

TEST(WrappingStamp, WrapsIntoTheImageLikeAFloorModulo) {
  struct Case {
    int32_t value, size, wrapped;
  } cases[] = {{-1, 10, 9}, {-10, 10, 0}, {-30, 10, 0}, {-11, 10, 9}, {10, 10, 0},
               {25, 10, 5}, {0, 10, 0},   {9, 10, 9},   {-7, 1, 0},   {123456, 7, 123456 % 7}};
  for (const Case& c : cases) EXPECT_EQ(WrapCoordinate(c.value, c.size), c.wrapped) << c.value;
  for (int32_t size : {1, 3, 8})
    for (int32_t v = -40; v <= 40; ++v) {
      const int32_t w = WrapCoordinate(v, size);
      EXPECT_TRUE(w >= 0 && w < size && (v - w) % size == 0) << v << " in " << size;
    }
}

TEST(WrappingStamp, BlendsTruncatingEachTermAndWrapsAcrossEveryEdge) {
  // A 2 x 2 stamp of coverages 255, 128 / 200, 0 at (-1, -1) on a 4 x 3 picture of grey 100: its
  // pixels land on the four corners. Colour channels 200 (red), 0 (green), 255 (blue).
  ScopedBlock stamp(Filled(2, 2, 24, 0));
  {
    ScopedLock lock(stamp.handle);
    WriteDibPixel(lock.bytes, 0, 0, 255 << 16);  // pixels are 0x00BBGGRR: blue is coverage
    WriteDibPixel(lock.bytes, 1, 0, 128 << 16);
    WriteDibPixel(lock.bytes, 0, 1, 200 << 16 | 0xFFFF);  // red and green are not read
  }
  struct Case {
    int32_t opacity;
    uint32_t corner[4];  // (3, 2), (0, 2), (3, 0), (0, 0) as 0x00BBGGRR
  } cases[] = {
      // a 255: the colour; a 128: 200*128/255 + 100*127/255 = 100 + 49, 0 + 49, 128 + 49 (the
      // exact blend would give 150 for red); a 200: 156 + 21, 0 + 21, 200 + 21
      {255, {0xFF00C8, 0xB13195, 0xDD15B1, 0x646464}},
      // opacity 128 scales 255 to 128, 128 to 64 (50 + 74, 74, 64 + 74), 200 to 100 (78 + 60, ...)
      {128, {0xB13195, 0x8A4A7C, 0xA03C8A, 0x646464}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.opacity);
    for (int32_t shift : {0, 4}) {  // a whole turn of the width changes nothing
      ScopedBlock target(Filled(4, 3, 24, 0x646464));
      {
        ScopedLock t(target.handle), s(stamp.handle);
        ASSERT_EQ(StampWrapped(t.bytes, s.bytes, -1 + shift, -1 - 3 * shift, 0xFF00C8, c.opacity),
                  1);
      }
      EXPECT_EQ(Pixel(target.handle, 3, 2), c.corner[0]);
      EXPECT_EQ(Pixel(target.handle, 0, 2), c.corner[1]);
      EXPECT_EQ(Pixel(target.handle, 3, 0), c.corner[2]);
      EXPECT_EQ(Pixel(target.handle, 0, 0), c.corner[3]);
      EXPECT_EQ(Pixel(target.handle, 1, 1), 0x646464u) << "outside the stamp";
    }
  }
  ScopedBlock mask(CreatePackedDib(2, 2, nullptr, 8)), target(Filled(4, 3, 24, 0));
  ScopedLock t(target.handle), m(mask.handle);
  EXPECT_EQ(StampWrapped(t.bytes, m.bytes, 0, 0, 0xFFFFFF, 255), 0) << "an 8-bit stamp";
}

TEST(FrameSet, TheSetIsBuiltOnceInOrderAndEveryFrameIsItsSlot) {
  struct Case {
    FrameSetLoop loop;
    std::vector<uint32_t> pixels;
    std::vector<int32_t> progress;
  } cases[] = {
      {{1, 7, 4}, {0, 1, 2, 3}, {0, 1, 2, 3}},
      {{1, 3, 2}, {0, 1}, {0, 1}},
      {{0, 5, 4}, {0}, {}},  // animate off: one frame, the first of the loop
  };
  for (const Case& c : cases) {
    calls = Calls{};
    progress.clear();
    const long live = MovableLiveCount();
    const LoopRun run = RunLoop(c.loop);
    EXPECT_EQ(run.ok, 1);
    EXPECT_EQ(run.flags & kBuildFlagBuild, kBuildFlagBuild);
    EXPECT_EQ(run.pixels, c.pixels);
    EXPECT_EQ(run.delays, std::vector<int32_t>(c.pixels.size(), c.loop.delay));
    EXPECT_EQ(progress, c.progress);
    EXPECT_EQ(calls.prepared, 1) << "built once, at the first frame, and reused";
    EXPECT_EQ(calls.released, 1);
    std::vector<int32_t> order;
    for (size_t i = 0; i < c.pixels.size(); ++i) order.push_back(static_cast<int32_t>(i));
    EXPECT_EQ(calls.frames, order);
    EXPECT_EQ(MovableLiveCount(), live) << "the set is freed at the end";
  }
}

TEST(FrameSet, IndexOutOfRangeAndFailedBuildersFailWithTheSetFreed) {
  calls = Calls{};
  const long live = MovableLiveCount();
  FrameParams params{};
  params.frameCount = 3;
  for (int32_t index : {3, -1, 1, 7}) {
    params.frameIndex = index;
    ScopedBlock fill(FrameSetFillImage(&params, &kFake, nullptr, 2, 1));
    EXPECT_EQ(fill.handle != nullptr, index == 1) << index;
    if (fill.handle) {
      EXPECT_EQ(Pixel(fill.handle, 0, 0), 1u);
    }
  }
  EXPECT_EQ(calls.prepared, 1);
  EXPECT_EQ(params.framesBuilt, 3);
  FreeFrameSet(&params);
  EXPECT_EQ(MovableLiveCount(), live);

  for (int failAt : {-2, 0, 2}) {
    SCOPED_TRACE(failAt);
    calls = Calls{};
    calls.failAt = failAt;
    params = FrameParams{};
    params.frameCount = 3;
    EXPECT_EQ(FrameSetFillImage(&params, &kFake, nullptr, 2, 1), nullptr);
    EXPECT_EQ(params.frames, nullptr);
    EXPECT_EQ(params.framesBuilt, 0);
    EXPECT_EQ(calls.released, 1) << "the state is released on the way out";
    EXPECT_EQ(MovableLiveCount(), live);
    // In a build the failed first frame ends it with nothing appended and nothing kept.
    const LoopRun run = RunLoop({1, 1, 3});
    EXPECT_EQ(run.ok, 0);
    EXPECT_TRUE(run.pixels.empty());
    EXPECT_EQ(MovableLiveCount(), live);
  }

  calls = Calls{};
  EXPECT_TRUE(SweepAllocationFailures([] { return RunLoop({1, 1, 3}).ok; }));
}
