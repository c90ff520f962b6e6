// Quark's turning fountain drawn in the outline ring over a filled text.
#include "effects/quark_outline.h"

#include "effects/key_colour.h"
#include "effects/quark.h"
#include "effects/rotation_frames.h"

namespace {

// Page 13.
constexpr int32_t kIdFill = 659, kIdShadow = 661, kIdBackground = 663, kIdFillOpacity = 665,
                  kIdShadowOpacity = 667, kIdSoftness = 669, kIdShadowOffset = 671,
                  kIdShadowDirection = 673, kIdShadowEnable = 675, kIdRotation = 676,
                  kIdXOffset = 678, kIdYOffset = 680, kIdInitRotation = 682;

int PrepareFountain(void* state, WindowHandle dialog, int32_t width, int32_t height) {
  static constexpr QuarkFountainIds kIds = {kIdRotation, kIdXOffset, kIdYOffset, kIdInitRotation,
                                            kQuarkFountainId};
  return ReadQuarkState(static_cast<QuarkState*>(state), dialog, &kIds, width, height);
}

MovableHandle RenderThroughOutline(void*, BuildContext* context) {
  return RenderQuarkOutlineFrame(context);
}

}  // namespace

const FrameSetEffect kQuarkOutlineFrameSet = {
    {kIdFill, kIdShadow, kIdBackground, 0, kIdFillOpacity, kIdShadowOpacity, kIdSoftness,
     kIdShadowOffset, kIdShadowDirection, kIdShadowEnable, 0},
    0,
    sizeof(QuarkState),
    PrepareFountain,
    QuarkFountainFrame,
    ReleaseQuarkState,
};

MovableHandle RenderQuarkOutlineFrame(BuildContext* context) {
  FrameParams* params = static_cast<FrameParams*>(context->params);
  if (!params) return nullptr;
  const FramePageIds* ids = &kQuarkOutlineFrameSet.ids;
  FrameSettings settings;
  FrameTexts text;
  if (!ReadFrameSettings(context->dialog, ids, context->sample, &settings, &text)) return nullptr;
  settings.fills = params->fills;
  // The ring is the effect itself, so it is drawn whatever the main dialog's outline switch says.
  settings.text.outlineEnabled = 1;
  TextFrame frame;
  MovableHandle result = nullptr;
  if (BeginTextFrame(context->dialog, &settings, &frame) && BackgroundStep(&frame) &&
      MaterialStep(&frame)) {
    frame.outlineImage = FrameSetFillImage(params, &kQuarkOutlineFrameSet, context->dialog,
                                           frame.width, frame.height);
    if (frame.outlineImage && AlphaPlaneStep(&frame) && ShadowStep(&frame, 0, 0) &&
        FillStep(&frame, 0, 0) && OutlineStep(&frame, 0, 0))
      result = FinishFrameStep(&frame);
  }
  EndTextFrame(&frame);
  ReleaseFrameSettings(context->dialog, ids);
  return result;
}

int QuarkOutlineEffectPreview(BuildContext* context) {
  // Frame 0 of a set of one slot: the sample is always the build's first frame.
  context->flags |= kBuildFlagPreview;
  FrameParams params{};
  params.frameCount = 1;
  context->params = &params;
  context->image = RenderQuarkOutlineFrame(context);
  FreeFrameSet(&params);
  context->params = nullptr;
  return 1;
}

int QuarkOutlineEffectBuild(BuildContext* context) {
  return RunRotationFrames(context, kIdRotation, RenderThroughOutline, nullptr);
}

int32_t QuarkOutlineEffectKeyColour(WindowHandle dialog, int32_t mode) {
  return PageBackgroundKeyColour(dialog, mode, kIdBackground);
}
