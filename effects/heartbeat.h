// Heartbeat: a single pulse crosses the text from left to right, and as it passes the columns of
// every layer (shadow, fill, outline and both materials, not the background) stretch vertically
// about the text's centre line, like the blip on a heart monitor. The last frame shows the text at
// rest, the pulse gone past the right edge, and holds for the pause.
#pragma once

#include <cstdint>

#include "materials/fill_cache.h"
#include "platform/dialog.h"
#include "platform/memory.h"
#include "shell/effect_table.h"

struct WarpCache;

// The frame parameters: the pulse stands at step `pulseIndex` of `pulseSteps` (at `pulseSteps`
// it has left the text). `warpCache`, when not null, carries the layers' enlargements from frame
// to frame.
struct HeartbeatParams {
  int32_t pulseSteps;
  int32_t pulseIndex;
  WarpCache* warpCache;
  FillCache* fills;  // the build's texture fills; null in a sample
};

// One frame for context->params, a HeartbeatParams: a new picture, or null.
MovableHandle RenderHeartbeatFrame(BuildContext* context);

// The effect table's procedures.
int PreviewHeartbeat(BuildContext* context);
int BuildHeartbeat(BuildContext* context);
int32_t HeartbeatBackground(WindowHandle dialog, int32_t mode);
