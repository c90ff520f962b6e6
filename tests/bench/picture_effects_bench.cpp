// The frame loops of the effects that move the finished picture, on the default text and page
// settings: Waterside's 40 phases and Tracks' 20 frames and resting picture, each from one render,
// without the palette and dither steps of the pipeline (those are timed with Simple).
#include <benchmark/benchmark.h>

#include "effects/frame_renderer.h"
#include "effects/tracks.h"
#include "effects/waterside.h"
#include "shell/crt_random.h"

namespace {

struct DefaultPicture {
  Material fill, shadow;
  FrameSettings settings{};
  DefaultPicture() {
    for (Material* m : {&fill, &shadow}) InitMaterial(m);
    fill.solidColour = 0xBD7E40;
    shadow.solidColour = 0x7F7F7F;
    settings.text = {"This space for rent...", "Impact", 92, 1, 0, 1, 90, 0, 20, 1, 1, 4, 1};
    settings.fillOpacity = 255;
    settings.shadowOpacity = 255;
    settings.shadowDirection = 7;
    settings.outlineColour = 3355443;
    settings.fill = &fill;
    settings.shadow = &shadow;
    settings.backgroundColour = 0xFFFFFF;  // both pages have a colour button there
  }
};

MovableHandle Render() {
  static DefaultPicture picture;
  return RenderStandardFrame(nullptr, &picture.settings, 0, 0);
}

MovableHandle RenderWaterside(void*, const WatersideFrameParams*) {
  return Render();
}
MovableHandle RenderTracks(void*) {
  return Render();
}

void BM_WatersideBuild(benchmark::State& state) {
  const WatersideLoopSettings loop = {1, 5, 40, 0xFFFFFF};
  for (auto _ : state) {
    FrameList list{};
    BuildContext context{};
    context.frames = &list;
    crt::srand(crt::kStartSeed);
    benchmark::DoNotOptimize(RunWatersideFrames(&context, &loop, RenderWaterside, nullptr));
    FreeFrameList(&list);
  }
  state.counters["ms_per_frame"] = benchmark::Counter(
      40.0 / 1000.0, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}
BENCHMARK(BM_WatersideBuild)->Unit(benchmark::kMillisecond);

void BM_TracksBuild(benchmark::State& state) {
  const TracksLoopSettings loop = {5, 100, 1, 98, 95};
  const TracksCutSettings cut = {0xFFFFFF, 15595, 2, 32, 4, 20, 1, 15};
  for (auto _ : state) {
    FrameList list{};
    BuildContext context{};
    context.frames = &list;
    benchmark::DoNotOptimize(RunTracksFrames(&context, &loop, &cut, RenderTracks, nullptr));
    FreeFrameList(&list);
  }
  state.counters["ms_per_frame"] = benchmark::Counter(
      21.0 / 1000.0, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}
BENCHMARK(BM_TracksBuild)->Unit(benchmark::kMillisecond);

}  // namespace
