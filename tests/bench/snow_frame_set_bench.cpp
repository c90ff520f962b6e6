// Snow's frame set at the default settings on the canvas of the default text (854 x 102): drawing
// every flake once (the state), and one frame of the set (a copy of the fill and 64 wrapped
// stamps), which a build repeats for each of its 64 frames.
#include <benchmark/benchmark.h>

#include "effects/snow.h"

namespace {

constexpr SnowSettings kDefaults = {{0xEAE3DB, 0xDDBC9B, 0xC08243, 0x95632C, 0x7E5429},
                                    {0, 1, 1, 1, 1},
                                    10651,
                                    255,
                                    8,
                                    64,
                                    56,
                                    64};
constexpr int32_t kWidth = 854, kHeight = 102;

Material* WhiteFill() {
  static Material fill;
  InitMaterial(&fill);
  fill.solidColour = 0xFFFFFF;
  return &fill;
}

void SnowPrepare(benchmark::State& loop) {
  for (auto _ : loop) {
    SnowState state;
    if (!PrepareSnowState(&state, &kDefaults, kWidth, kHeight, WhiteFill()))
      loop.SkipWithError("prepare failed");
    ReleaseSnowState(&state);
  }
}
BENCHMARK(SnowPrepare)->Unit(benchmark::kMillisecond);

void SnowFrame(benchmark::State& loop) {
  SnowState state;
  if (!PrepareSnowState(&state, &kDefaults, kWidth, kHeight, WhiteFill()))
    loop.SkipWithError("prepare failed");
  int32_t n = 0;
  for (auto _ : loop) {
    MovableHandle frame = RenderSnowFrame(&state, n++ % kDefaults.frames);
    if (!frame) loop.SkipWithError("frame failed");
    MovableFree(frame);
  }
  ReleaseSnowState(&state);
}
BENCHMARK(SnowFrame)->Unit(benchmark::kMicrosecond);

}  // namespace
