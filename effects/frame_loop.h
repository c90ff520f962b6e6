// What every effect's frame loop does with a rendered frame: append it to the build's list, and
// tell the host how far the build has come.
#pragma once

#include <cstdint>

#include "platform/memory.h"
#include "shell/effect_table.h"

// Appends `image` to context->frames with `delay`, no transparent index and nothing else. Returns
// 1; 0 for a null image, or when the append fails, the image then freed here.
int AppendEffectFrame(BuildContext* context, MovableHandle image, int32_t delay);
// HostOpProgress with `step` of `total`, when the build has a host. The answer is not read: a
// build can't be cancelled.
void ReportFrameProgress(const BuildContext* context, int32_t step, int32_t total);
