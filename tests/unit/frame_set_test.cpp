#include "effects/frame_set.h"
#include "effects/wrapping_stamp.h"

#include <gtest/gtest.h>

#include <vector>

#include "shell/host_interface.h"
#include "shell/packed_dib.h"
#include "tests/support/alloc_sweep.h"

namespace {

MovableHandle Filled(int32_t w, int32_t h, uint32_t value) {
  MovableHandle image = CreatePackedDib(w, h, nullptr, 24);
  ScopedLock lock(image);
  for (int32_t i = 0; lock && i < w * h; ++i) WriteDibPixel(lock.bytes, i % w, i / w, value);
  return image;
}

uint32_t Pixel(MovableHandle image, int32_t x, int32_t y) {
  ScopedLock lock(image);
  return ReadDibPixel(lock.bytes, x, y);
}

// A stand-in frame-set effect whose frame n is a picture of the canvas size holding n; its calls
// are counted. `failAt` fails that frame; -2 fails the preparation.
struct Calls {
  int prepared = 0, released = 0, failAt = -1;
  std::vector<int32_t> frames, progress;
} calls;

int FakePrepare(void* state, WindowHandle, int32_t width, int32_t) {
  ++calls.prepared;
  *static_cast<int32_t*>(state) = width;
  return calls.failAt != -2;
}
MovableHandle FakeFrame(void* state, int32_t n) {
  calls.frames.push_back(n);
  return n == calls.failAt ? nullptr : Filled(*static_cast<int32_t*>(state), 1, n);
}
void FakeRelease(void*) {
  ++calls.released;
}
const FrameSetEffect kFake = {{}, 0, sizeof(int32_t), FakePrepare, FakeFrame, FakeRelease, 0};

MovableHandle RenderFill(void*, BuildContext* context) {
  return FrameSetFillImage(static_cast<FrameParams*>(context->params), &kFake, nullptr, 2, 1);
}
uint64_t CountProgress(void*, int32_t opcode, uint64_t a, uint64_t) {
  if (opcode == HostOpProgress) calls.progress.push_back(static_cast<int32_t>(a));
  return 1;
}

// Runs the frame loop; the appended frames' pixels and delays, flags and the result.
struct LoopRun {
  int ok;
  uint32_t flags;
  std::vector<uint32_t> pixels;
  std::vector<int32_t> delays;
};
LoopRun RunLoop(FrameSetLoop loop) {
  HostRecord host{};
  host.service = CountProgress;
  FrameList list{};
  BuildContext context{};
  context.frames = &list;
  context.host = &host;
  LoopRun run{RunFrameSetFrames(&context, &loop, RenderFill, nullptr), context.flags, {}, {}};
  {
    ScopedLock lock(list.records);
    for (int32_t i = 0; lock && i < list.count; ++i) {
      const FrameRecord& r = reinterpret_cast<const FrameRecord*>(lock.bytes)[i];
      run.pixels.push_back(Pixel(r.image, 1, 0));
      run.delays.push_back(r.delay);
    }
  }
  FreeFrameList(&list);
  return run;
}

}  // namespace

TEST(WrappingStamp, WrapsIntoTheImageLikeAFloorModulo) {
  const int32_t cases[][3] = {{-1, 10, 9}, {-10, 10, 0}, {-30, 10, 0}, {-11, 10, 9},
                              {10, 10, 0}, {25, 10, 5},  {9, 10, 9},   {-7, 1, 0}};
  for (const auto& c : cases) EXPECT_EQ(WrapCoordinate(c[0], c[1]), c[2]) << c[0];
  for (int32_t size : {1, 3, 8})
    for (int32_t v = -40; v <= 40; ++v) {
      const int32_t w = WrapCoordinate(v, size);
      EXPECT_TRUE(w >= 0 && w < size && (v - w) % size == 0) << v << " in " << size;
    }
}

TEST(WrappingStamp, BlendsTruncatingEachTermAndWrapsAcrossEveryEdge) {
  // A 2 x 2 stamp of coverages 255, 128 / 200, 0 at (-1, -1) on a 4 x 3 picture of grey 100: its
  // pixels land on the four corners. Colour: red 200, green 0, blue 255; pixels are 0x00BBGGRR
  // and only a stamp's blue byte is coverage.
  ScopedBlock stamp(Filled(2, 2, 0));
  {
    ScopedLock lock(stamp.handle);
    WriteDibPixel(lock.bytes, 0, 0, 255 << 16);
    WriteDibPixel(lock.bytes, 1, 0, 128 << 16);
    WriteDibPixel(lock.bytes, 0, 1, 200 << 16 | 0xFFFF);
  }
  struct Case {
    int32_t opacity;
    uint32_t corner[4];  // (3, 2), (0, 2), (3, 0), (0, 0)
  } cases[] = {
      // a 128: 200*128/255 + 100*127/255 = 100 + 49 (the exact blend gives 150), 0 + 49, 128 + 49;
      // a 200: 156 + 21, 0 + 21, 200 + 21
      {255, {0xFF00C8, 0xB13195, 0xDD15B1, 0x646464}},
      // opacity 128 scales 255 to 128, 128 to 64 (50 + 74, 74, 64 + 74), 200 to 100
      {128, {0xB13195, 0x8A4A7C, 0xA03C8A, 0x646464}},
  };
  for (const Case& c : cases)
    for (int32_t turns : {0, 1}) {  // whole turns of the size change nothing
      ScopedBlock target(Filled(4, 3, 0x646464));
      {
        ScopedLock t(target.handle), s(stamp.handle);
        ASSERT_EQ(
            StampWrapped(t.bytes, s.bytes, -1 + 4 * turns, -1 - 3 * turns, 0xFF00C8, c.opacity), 1);
      }
      const int32_t at[5][2] = {{3, 2}, {0, 2}, {3, 0}, {0, 0}, {1, 1}};
      for (int k = 0; k < 5; ++k)
        EXPECT_EQ(Pixel(target.handle, at[k][0], at[k][1]), k < 4 ? c.corner[k] : 0x646464u)
            << c.opacity << " corner " << k;
    }
}

TEST(FrameSet, BuiltOnceInOrderReusedAndFreedOnEveryWayOut) {
  struct Case {
    FrameSetLoop loop;
    int failAt;
    std::vector<uint32_t> pixels;  // of the appended frames
    std::vector<int32_t> progress;
  } cases[] = {
      {{1, 7, 4}, -1, {0, 1, 2, 3}, {0, 1, 2, 3}},
      {{0, 5, 4}, -1, {0}, {}},  // animate off: one frame, the first of the loop
      {{1, 1, 3}, 2, {}, {}},    // a failed frame fails the builder and the first render
      {{1, 1, 3}, -2, {}, {}},   // so does a failed preparation
  };
  const long live = MovableLiveCount();
  for (const Case& c : cases) {
    SCOPED_TRACE(c.failAt * 10 + c.loop.animated);
    calls = Calls{};
    calls.failAt = c.failAt;
    const LoopRun run = RunLoop(c.loop);
    EXPECT_EQ(run.ok, c.failAt == -1);
    EXPECT_EQ(run.flags, kBuildFlagBuild);
    EXPECT_EQ(run.pixels, c.pixels);
    EXPECT_EQ(run.delays, std::vector<int32_t>(c.pixels.size(), c.loop.delay));
    EXPECT_EQ(calls.progress, c.progress);
    EXPECT_EQ(calls.prepared, 1) << "built once, at the first frame, and reused";
    EXPECT_EQ(calls.released, 1);
    EXPECT_EQ(MovableLiveCount(), live) << "the set is freed at the end";
  }

  // The frame index is checked against the slots.
  calls = Calls{};
  FrameParams params{};
  params.frameCount = 3;
  for (int32_t index : {3, -1, 1}) {
    params.frameIndex = index;
    ScopedBlock fill(FrameSetFillImage(&params, &kFake, nullptr, 2, 1));
    EXPECT_EQ(fill.handle ? static_cast<int32_t>(Pixel(fill.handle, 0, 0)) : -1,
              index == 1 ? 1 : -1);
  }
  EXPECT_EQ(params.framesBuilt, 3);
  FreeFrameSet(&params);
  EXPECT_EQ(params.frames, nullptr);
  EXPECT_EQ(MovableLiveCount(), live);

  calls = Calls{};
  EXPECT_TRUE(SweepAllocationFailures([] { return RunLoop({1, 1, 3}).ok; }));
}
