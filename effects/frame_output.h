// What every effect's build does with a finished frame: append it to the build's frame list with
// its delay and no transparent index, and report the step to the host.
#pragma once

#include <cstdint>

#include "platform/memory.h"
#include "shell/effect_table.h"

// Appends `image` with `delay` to context->frames; the list owns it from then on. Returns 1, or 0
// after freeing `image` when the list cannot grow.
int AppendEffectFrame(BuildContext* context, MovableHandle image, int32_t delay);
// HostOpProgress with (step, total), when the context has a host that serves calls.
void ReportFrameProgress(const BuildContext* context, int32_t step, int32_t total);
