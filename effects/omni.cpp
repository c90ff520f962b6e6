// Omni's renderer and frame loop. No frame of the source is held between renders: each render asks
// the picker for its frame and frees it once tiled.
#include "effects/omni.h"

#include "controls/animation_picker.h"
#include "effects/cell_tiling.h"
#include "effects/frame_loop.h"
#include "effects/frame_renderer.h"
#include "effects/frame_set.h"
#include "effects/key_colour.h"

namespace {

// Page 7411: no Fill material and no Fill opacity; the fill is the picker's frame.
constexpr FramePageIds kIds = {0, 596, 598, 600, 0, 602, 604, 606, 608, 610, 611};
constexpr int32_t kIdAnimation = 612;

MovableHandle TiledSourceFrame(void* source, BuildContext* context, int32_t width, int32_t height) {
  OmniParams* params = static_cast<OmniParams*>(source);
  params->width = width;
  params->height = height;
  int32_t delay = 0;
  ScopedBlock frame(
      AnimationPickerFrame(DialogItem(context->dialog, kIdAnimation), params->frameIndex, &delay));
  if (!frame.handle) return nullptr;
  params->delay = delay;
  MovableHandle tiled = TileCellOverCanvas(frame.handle, width, height);
  return tiled;
}

}  // namespace

MovableHandle RenderOmniFrame(BuildContext* context, OmniParams* params) {
  void* saved = context->params;
  context->params = params;
  MovableHandle image =
      RenderFrameWithFill(context, &kIds, 0, TiledSourceFrame, params, params->fills);
  context->params = saved;
  return image;
}

int OmniEffectPreview(BuildContext* context) {
  context->flags |= kBuildFlagPreview;
  OmniParams params{};
  context->image = RenderOmniFrame(context, &params);
  return 1;
}

int OmniEffectBuild(BuildContext* context) {
  context->flags |= kBuildFlagBuild;
  ScopedFillCache fills;
  OmniParams params{};
  params.fills = &fills.cache;
  // The animate check, Delay and the pause do not apply: the whole source is always built.
  AnimationPickerFrame(DialogItem(context->dialog, kIdAnimation), kAnimationFrameCount,
                       &params.frameCount);
  const int32_t count = params.frameCount;
  for (int32_t i = 0; i < count; ++i) {
    params.frameIndex = i;
    MovableHandle image = RenderOmniFrame(context, &params);
    if (!image || !AppendEffectFrame(context, image, params.delay)) {
      MovableFree(context->image);
      context->image = nullptr;
      return 0;
    }
    ReportFrameProgress(context, i, count);
  }
  return 1;
}

int32_t OmniEffectKeyColour(WindowHandle dialog, int32_t mode) {
  return PageBackgroundKeyColour(dialog, mode, kIds.background);
}
