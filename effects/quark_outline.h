// Quark Outline: the text stands still, filled with the page's Fill material, while its outline
// ring shows Quark's multi-colour conical fountain turning about a chosen point. The outline is
// always drawn; the frame count comes from the Rotation combo (one whole turn); no random numbers.
#pragma once

#include <cstdint>

#include "effects/frame_set.h"
#include "shell/effect_table.h"

// The fountain pictures of the loop, one per frame at the canvas size, as a frame set; its `ids`
// are the page's common-step ids with no outline colour or switch.
extern const FrameSetEffect kQuarkOutlineFrameSet;

// Frame context->params->frameIndex: background, Fill material at the Fill opacity, shadow, and
// the outline ring painted from that frame's fountain. A new picture, or null.
MovableHandle RenderQuarkOutlineFrame(BuildContext* context);

int QuarkOutlineEffectPreview(BuildContext* context);
int QuarkOutlineEffectBuild(BuildContext* context);
int32_t QuarkOutlineEffectKeyColour(WindowHandle dialog, int32_t mode);
