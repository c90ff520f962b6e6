// One frame of Rattle and of Heartbeat from a dialog with the default text and page settings: a
// shaken frame with its fill rolled, and a frame with the pulse in the middle of the text (five
// layers enlarged four times, stretched and reduced).
#include <benchmark/benchmark.h>

#include "effects/column_warp.h"
#include "effects/heartbeat.h"
#include "effects/rattle.h"
#include "tests/support/effect_runs.h"

namespace {

WindowHandle DefaultDialog() {
  static WindowHandle dialog =
      CreateEffectDialog("This space for rent...", 92, {561, 563, 884, 886, 888}, 0xBD7E40);
  return dialog;
}

void Render(benchmark::State& state, void* params, MovableHandle (*render)(BuildContext*)) {
  BuildContext context{};
  context.dialog = DefaultDialog();
  context.params = params;
  context.flags = kBuildFlagBuild;
  for (auto _ : state) MovableFree(render(&context));
}

void BM_RattleFrame(benchmark::State& state) {
  RattleParams params{-7, 5, nullptr, 9, 9};
  Render(state, &params, RenderRattleFrame);
}
BENCHMARK(BM_RattleFrame)->Unit(benchmark::kMillisecond);

void BM_HeartbeatFrame(benchmark::State& state) {
  HeartbeatParams params{32, 16, nullptr};
  Render(state, &params, RenderHeartbeatFrame);
}
BENCHMARK(BM_HeartbeatFrame)->Unit(benchmark::kMillisecond);

// A frame of a build, the layers' enlargements kept from the frames before it.
void BM_HeartbeatBuildFrame(benchmark::State& state) {
  WarpCache cache = {};
  HeartbeatParams params{32, 16, &cache};
  Render(state, &params, RenderHeartbeatFrame);
  ReleaseWarpCache(&cache);
}
BENCHMARK(BM_HeartbeatBuildFrame)->Unit(benchmark::kMillisecond);

}  // namespace
