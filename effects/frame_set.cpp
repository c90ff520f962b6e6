// The frame-set machinery: the frame builder, the renderer's fill from the set, and the frame loop
// shared by the build and the preview.
#include "effects/frame_set.h"

#include <cstring>

#include "controls/value_controls.h"
#include "effects/frame_loop.h"
#include "shell/packed_dib.h"
#include "text/text_mask.h"

namespace {

// The main dialog's.
constexpr int32_t kIdDelay = 11, kIdAnimated = 22;

// Runs the effect's procedures on a zeroed state block, storing each frame in the next slot.
int FillFrameSlots(FrameParams* params, const FrameSetEffect* effect, void* state,
                   WindowHandle dialog, int32_t width, int32_t height) {
  if (!effect->prepare(state, dialog, width, height)) return 0;
  for (int32_t i = 0; i < params->frameCount; ++i) {
    MovableHandle image = effect->frame(state, i);
    if (!image) return 0;
    ScopedLock slots(params->frames);
    if (!slots) {
      MovableFree(image);
      return 0;
    }
    if (params->framesBuilt < params->frameCount)
      reinterpret_cast<MovableHandle*>(slots.bytes)[params->framesBuilt++] = image;
    else
      MovableFree(image);  // no slot left for it
  }
  return 1;
}

// The shadow's picture: the Shadow material, or a plain field of the Shadow colour.
int ShadowLayerImage(TextFrame* frame, WindowHandle dialog, int32_t shadowColourId) {
  if (!shadowColourId) return ShadowMaterialStep(frame);
  if (!frame->settings->text.shadowEnabled) return 1;
  int translated;
  const uint32_t colour = GetDialogItemInt(dialog, shadowColourId, &translated, 0);
  frame->shadowImage = FilledImage(0, 0, frame->width, frame->height, colour);
  return frame->shadowImage != nullptr;
}

}  // namespace

int BuildFrameSet(FrameParams* params, const FrameSetEffect* effect, WindowHandle dialog,
                  int32_t width, int32_t height) {
  FreeFrameSet(params);
  if (params->frameCount < 1) return 0;
  params->frames = MovableAlloc(static_cast<size_t>(params->frameCount) * sizeof(MovableHandle));
  if (!params->frames) return 0;
  int ok = 0;
  {
    ScopedBlock stateBlock(MovableAlloc(effect->stateSize ? effect->stateSize : 1));
    ScopedLock state(stateBlock.handle);
    if (state) {
      ok = FillFrameSlots(params, effect, state.bytes, dialog, width, height);
      effect->release(state.bytes);
    }
  }
  if (!ok) FreeFrameSet(params);
  return ok;
}

void FreeFrameSet(FrameParams* params) {
  if (params->frames) {
    ScopedLock slots(params->frames);
    for (int32_t i = 0; slots && i < params->framesBuilt; ++i)
      MovableFree(reinterpret_cast<MovableHandle*>(slots.bytes)[i]);
  }
  MovableFree(params->frames);
  params->frames = nullptr;
  params->framesBuilt = 0;
}

MovableHandle FrameSetFillImage(FrameParams* params, const FrameSetEffect* effect,
                                WindowHandle dialog, int32_t width, int32_t height) {
  if (!params->frames && !BuildFrameSet(params, effect, dialog, width, height)) return nullptr;
  if (params->frameIndex < 0 || params->frameIndex >= params->frameCount ||
      params->frameIndex >= params->framesBuilt)
    return nullptr;
  ScopedLock slots(params->frames);
  if (!slots) return nullptr;
  return DuplicateHandle(reinterpret_cast<MovableHandle*>(slots.bytes)[params->frameIndex]);
}

MovableHandle RenderFrameWithFill(BuildContext* context, const FramePageIds* ids,
                                  int32_t shadowColourId, FrameFillSource fill, void* source,
                                  FillCache* fills) {
  FrameSettings settings;
  FrameTexts text;
  if (!ReadFrameSettings(context->dialog, ids, context->sample, &settings, &text)) return nullptr;
  settings.fills = fills;
  TextFrame frame;
  MovableHandle result = nullptr;
  // The text and its shadow stand at their place of rest in every frame; only the fill moves.
  if (BeginTextFrame(context->dialog, &settings, &frame) && BackgroundStep(&frame)) {
    frame.fillImage = fill(source, context, frame.width, frame.height);
    if (frame.fillImage && ShadowLayerImage(&frame, context->dialog, shadowColourId) &&
        AlphaPlaneStep(&frame) && ShadowStep(&frame, 0, 0) && FillStep(&frame, 0, 0) &&
        OutlineStep(&frame, 0, 0))
      result = FinishFrameStep(&frame);
  }
  EndTextFrame(&frame);
  ReleaseFrameSettings(context->dialog, ids);
  return result;
}

namespace {

MovableHandle FillFromSet(void* effect, BuildContext* context, int32_t width, int32_t height) {
  return FrameSetFillImage(static_cast<FrameParams*>(context->params),
                           static_cast<const FrameSetEffect*>(effect), context->dialog, width,
                           height);
}

}  // namespace

MovableHandle RenderFrameSetFrame(BuildContext* context, const FrameSetEffect* effect) {
  if (!context->params) return nullptr;
  return RenderFrameWithFill(context, &effect->ids, effect->shadowColourId, FillFromSet,
                             const_cast<FrameSetEffect*>(effect),
                             static_cast<FrameParams*>(context->params)->fills);
}

int RunFrameSetFrames(BuildContext* context, const FrameSetLoop* loop, FrameSetRenderer render,
                      void* renderer) {
  ScopedFillCache fills;
  FrameParams params{};
  params.fills = &fills.cache;
  context->params = &params;
  context->flags |= kBuildFlagBuild;
  const int32_t count = loop->animated ? loop->frames : 1;
  params.frameCount = count;
  int ok = 1;
  for (int32_t i = 0; ok && i < count; ++i) {
    params.frameIndex = i;
    MovableHandle image = render(renderer, context);
    ok = image && AppendEffectFrame(context, image, loop->delay);
    if (ok && loop->animated) ReportFrameProgress(context, i, count);
  }
  FreeFrameSet(&params);
  context->params = nullptr;
  return ok;
}

namespace {

struct EffectRenderer {
  const FrameSetEffect* effect;
};

MovableHandle RenderThroughEffect(void* renderer, BuildContext* context) {
  return RenderFrameSetFrame(context, static_cast<EffectRenderer*>(renderer)->effect);
}

}  // namespace

int FrameSetEffectPreview(BuildContext* context, const FrameSetEffect* effect) {
  context->flags |= kBuildFlagPreview;
  FrameParams params{};
  params.frameCount = 1;
  params.frameIndex = 0;
  context->params = &params;
  context->image = RenderFrameSetFrame(context, effect);
  FreeFrameSet(&params);
  context->params = nullptr;
  return 1;
}

int FrameSetEffectBuild(BuildContext* context, const FrameSetEffect* effect) {
  WindowHandle dialog = context->dialog;
  FrameSetLoop loop;
  loop.animated = DialogGetCheck(DialogItem(dialog, kIdAnimated));
  loop.delay = ReadDlgValue(dialog, kIdDelay);
  loop.frames = ReadDlgValue(dialog, effect->framesId);
  EffectRenderer renderer{effect};
  if (RunFrameSetFrames(context, &loop, RenderThroughEffect, &renderer)) return 1;
  MovableFree(context->image);
  context->image = nullptr;
  return 0;
}
