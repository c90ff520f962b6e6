// The masks of one frame of the default text ("This space for rent..." in bold at 92 pixels, with
// shadow, fill and outline: four drawings of every character and one measure), with and without
// the glyph cache; and the soft shadow's Gaussian blur of such a mask.
#include <benchmark/benchmark.h>

#include "text/blur.h"
#include "text/drawing_layer.h"
#include "text/text_layout.h"

namespace {

TextLayoutInput DefaultText(int32_t useCache) {
  // The face is missing on Linux and falls back to DejaVu Sans.
  return {"This space for rent...", "Impact", 92, 1, 0, 1, 90, 0, 10, 1, 1, 4, useCache};
}

void StartDrawing() {
  static bool started = false;
  if (started) return;
  DrawRequest r = {};
  r.operation = kDrawStartup;
  started = DispatchDraw(&r) == 1;
}

void FrameMasks(benchmark::State& state) {
  StartDrawing();
  const TextLayoutInput in = DefaultText(static_cast<int32_t>(state.range(0)));
  for (auto _ : state) {
    TextLayout layout;
    if (!BeginTextLayout(nullptr, &in, &layout)) {
      state.SkipWithError("no layout");
      break;
    }
    const TextShifts shifts = ShadowPlacement(7, 4);
    MovableHandle shadow =
        LayoutTextMask(&layout, layout.pad + shifts.shadowX, layout.pad + shifts.shadowY, 255);
    MovableHandle fill =
        LayoutTextMask(&layout, layout.pad + shifts.textX, layout.pad + shifts.textY, 255);
    MovableHandle ring =
        LayoutOutlineMask(&layout, layout.pad + shifts.textX, layout.pad + shifts.textY);
    benchmark::DoNotOptimize(ring);
    MovableFree(shadow);
    MovableFree(fill);
    MovableFree(ring);
    EndTextLayout(&layout);
  }
}
BENCHMARK(FrameMasks)->Arg(0)->Arg(1)->ArgName("cache")->Unit(benchmark::kMillisecond);

void SoftShadowBlur(benchmark::State& state) {
  StartDrawing();
  const TextLayoutInput in = DefaultText(0);
  TextLayout layout;
  if (!BeginTextLayout(nullptr, &in, &layout)) {
    state.SkipWithError("no layout");
    return;
  }
  MovableHandle mask = LayoutTextMask(&layout, layout.pad, layout.pad, 255);
  for (auto _ : state) {
    MovableHandle blurred = GaussianBlur(mask, 200, 12);
    benchmark::DoNotOptimize(blurred);
    MovableFree(blurred);
  }
  MovableFree(mask);
  EndTextLayout(&layout);
}
BENCHMARK(SoftShadowBlur)->Unit(benchmark::kMillisecond);

}  // namespace
