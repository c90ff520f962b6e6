// A full default Simple build: 64 frames of the default text and page settings, a custom palette
// with dithering, handed to a host that accepts everything. Beside the whole build, its three
// parts are timed on the same frames: rendering one frame, quantising all 64, dithering one.
#include <benchmark/benchmark.h>

#include <vector>

#include "effects/frame_renderer.h"
#include "effects/simple.h"
#include "imaging/dither.h"
#include "imaging/octree_quantiser.h"
#include "shell/build_pipeline.h"
#include "shell/packed_dib.h"
#include "tests/support/imaging_reference.h"

namespace {

constexpr int32_t kFrames = 64;

struct DefaultSimple {
  Material fill, shadow, background;
  FrameSettings settings{};
  DefaultSimple() {
    for (Material* m : {&fill, &shadow, &background}) InitMaterial(m);
    fill.solidColour = 0xBD7E40;
    shadow.solidColour = 0x7F7F7F;
    background.solidColour = 0xFFFFFF;
    settings.text = {"This space for rent...", "Impact", 92, 1, 0, 1, 90, 0, 20, 1, 1, 4, 1};
    settings.fillOpacity = 255;
    settings.shadowOpacity = 255;
    settings.shadowDirection = 7;
    settings.outlineColour = 3355443;
    settings.alphaGreyBack = 8355711;
    settings.fill = &fill;
    settings.shadow = &shadow;
    settings.background = &background;
  }
};

DefaultSimple& Defaults() {
  static DefaultSimple defaults;
  return defaults;
}

MovableHandle RenderDefault(void*, const SimpleFrameParams* params) {
  return RenderStandardFrame(nullptr, &Defaults().settings, params->x, params->y);
}

int BuildDefaultFrames(BuildContext* context) {
  const SimpleLoopSettings loop = {1, 5, 100, kFrames, kScrollRight};
  return RunSimpleFrames(context, &loop, RenderDefault, nullptr);
}

int32_t DefaultKey(WindowHandle, int32_t mode) {
  return mode ? -1 : 0xFFFFFF;
}

uint64_t AcceptAll(void*, int32_t, uint64_t, uint64_t) {
  return 1;
}

const EffectEntry kSimpleRow = {"Simple",   nullptr, nullptr, BuildDefaultFrames,
                                DefaultKey, nullptr, nullptr};

BuildOptions DefaultOptions() {
  BuildOptions options{};
  options.maskBackground = 1;
  options.customPalette = 1;
  options.dither = 1;
  options.fixedPalette = 6;
  options.addComment = 1;
  options.remap = kDefaultRemapSettings;
  return options;
}

// The 64 frames of the build, rendered once for the part timings.
std::vector<MovableHandle>& Frames() {
  static std::vector<MovableHandle> frames = [] {
    std::vector<MovableHandle> made;
    FrameList list{};
    BuildContext context{};
    context.frames = &list;
    BuildDefaultFrames(&context);
    ScopedLock lock(list.records);
    for (int32_t i = 0; lock && i < list.count; ++i)
      made.push_back(reinterpret_cast<const FrameRecord*>(lock.bytes)[i].image);
    MovableFree(list.records);
    return made;
  }();
  return frames;
}

void BM_SimpleBuild(benchmark::State& state) {
  HostRecord host{};
  host.service = AcceptAll;
  host.capabilities = kHostIndexed;
  const BuildOptions options = DefaultOptions();
  for (auto _ : state) benchmark::DoNotOptimize(RunBuild(nullptr, &host, 0, &options, &kSimpleRow));
  state.counters["frames_per_second"] =
      benchmark::Counter(kFrames, benchmark::Counter::kIsIterationInvariantRate);
}
BENCHMARK(BM_SimpleBuild)->Unit(benchmark::kMillisecond)->Iterations(2);

void BM_SimpleRenderFrame(benchmark::State& state) {
  for (auto _ : state) {
    MovableHandle image = RenderStandardFrame(nullptr, &Defaults().settings, 0, 0);
    MovableFree(image);
  }
}
BENCHMARK(BM_SimpleRenderFrame)->Unit(benchmark::kMillisecond);

void BM_SimpleQuantise64(benchmark::State& state) {
  std::vector<MovableHandle>& frames = Frames();
  FrameListView list(frames.data(), static_cast<int32_t>(frames.size()));
  uint8_t palette[768];
  for (auto _ : state) {
    int32_t request = 255;
    benchmark::DoNotOptimize(QuantiseFrames(&request, palette, &list.list));
  }
}
BENCHMARK(BM_SimpleQuantise64)->Unit(benchmark::kMillisecond);

void BM_SimpleDitherFrame(benchmark::State& state) {
  std::vector<MovableHandle>& frames = Frames();
  uint8_t palette[768];
  int32_t request = 255;
  FrameListView list(frames.data(), static_cast<int32_t>(frames.size()));
  QuantiseFrames(&request, palette, &list.list);
  size_t i = 0;
  for (auto _ : state) {
    MovableHandle image = DitherToPalette(frames[i++ % frames.size()], palette, 8, request);
    MovableFree(image);
  }
}
BENCHMARK(BM_SimpleDitherFrame)->Unit(benchmark::kMillisecond);

}  // namespace
