// Whole default builds of the effects that render their own frames (Ring, Diagonal Fuse, Unplugged
// TV) from a dialog made from the page tables, with the pages' materials at their first colours.
// Items are frames, so the rate is frames a second; the colour reduction and file writing of the
// pipeline are not included.
#include <benchmark/benchmark.h>

#include "controls/page_setup.h"
#include "controls/page_tables.h"
#include "effects/diagonal_fuse.h"
#include "effects/ring.h"
#include "effects/unplugged_tv.h"
#include "shell/effect_table.h"

namespace {

WindowHandle DefaultDialog() {
  static WindowHandle dialog = [] {
    WindowHandle made = CreateValueDialog();
    for (int32_t style : {1, 12, 19}) {
      for (const PageTable& table : kPageTables) {
        if (table.style != style) continue;
        for (int32_t i = 0; i < table.count; ++i)
          if (table.controls[i].kind == kControlMaterialButton)
            DialogCreateMaterial(DialogItem(made, table.controls[i].id), table.controls[i].colour);
      }
    }
    return made;
  }();
  return dialog;
}

void RunBuild(benchmark::State& state, EffectBuild build) {
  WindowHandle dialog = DefaultDialog();
  int64_t frames = 0;
  for (auto _ : state) {
    FrameList list{};
    BuildContext context{};
    context.dialog = dialog;
    context.frames = &list;
    if (!build(&context)) state.SkipWithError("the build failed");
    frames += list.count;
    FreeFrameList(&list);
  }
  state.SetItemsProcessed(frames);
}

void BM_RingBuild(benchmark::State& state) {
  RunBuild(state, RingEffectBuild);
}
void BM_DiagonalFuseBuild(benchmark::State& state) {
  RunBuild(state, DiagonalFuseEffectBuild);
}
void BM_UnpluggedTvBuild(benchmark::State& state) {
  RunBuild(state, UnpluggedTvEffectBuild);
}

}  // namespace

BENCHMARK(BM_RingBuild)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_DiagonalFuseBuild)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_UnpluggedTvBuild)->Unit(benchmark::kMillisecond);
