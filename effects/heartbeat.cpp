// Heartbeat's frames: the common steps with one pulse wave per frame, made at the canvas's width,
// applied to both materials as soon as they are filled and to each mask as soon as it is drawn
// (the shadow's before its softness), so that masks and fills stay in register and the shadow
// swells with the text. The background is a plain colour and is never warped.
#include "effects/heartbeat.h"

#include "controls/value_controls.h"
#include "effects/column_warp.h"
#include "effects/frame_loop.h"
#include "effects/frame_renderer.h"
#include "effects/key_colour.h"

namespace {

// Page 7410; its Background (565) is a colour button.
constexpr FramePageIds kHeartbeatIds = {561, 563, 565, 567, 569, 571, 575, 577, 579, 581, 582};
constexpr int32_t kIdFrames = 573, kIdWavelength = 583, kIdWaveHeight = 585;
constexpr int32_t kIdDelay = 11, kIdPause = 23;  // the main dialog's
// The sample shows the pulse half way across.
constexpr HeartbeatParams kSamplePulse = {255, 128, nullptr, nullptr};

struct Pulse {
  const float* wave;
  int32_t length;  // entries before the slack: four times the canvas width
  int32_t height;  // Wave height, percent of stretch at the crest
  WarpCache* cache;
};

MovableHandle WarpMask(MovableHandle mask, void* pulse) {
  const Pulse* p = static_cast<const Pulse*>(pulse);
  return WarpColumns(mask, p->wave, p->length, p->height, p->cache);
}

// Replaces a material picture by its warp; a frame without the picture (no shadow) has nothing to
// warp.
int WarpPicture(MovableHandle* picture, Pulse* pulse) {
  if (!*picture) return 1;
  MovableHandle warped = WarpMask(*picture, pulse);
  if (!warped) return 0;
  MovableFree(*picture);
  *picture = warped;
  return 1;
}

MovableHandle RenderPulse(WindowHandle window, const FrameSettings* settings,
                          const HeartbeatParams* params, int32_t wavelength, int32_t waveHeight) {
  TextFrame frame;
  MovableHandle result = nullptr;
  if (BeginTextFrame(window, settings, &frame)) {
    ScopedBlock wave(
        MakePulseWave(frame.width, wavelength, params->pulseSteps, params->pulseIndex));
    ScopedLock values(wave.handle);
    Pulse pulse = {reinterpret_cast<const float*>(values.bytes), 4 * frame.width, waveHeight,
                   params->warpCache};
    frame.maskWarp = WarpMask;
    frame.maskWarpContext = &pulse;
    if (values && BackgroundStep(&frame) && MaterialStep(&frame) &&
        WarpPicture(&frame.shadowImage, &pulse) && WarpPicture(&frame.fillImage, &pulse) &&
        AlphaPlaneStep(&frame) && ShadowStep(&frame, 0, 0) && FillStep(&frame, 0, 0) &&
        OutlineStep(&frame, 0, 0))
      result = FinishFrameStep(&frame);
  }
  EndTextFrame(&frame);
  return result;
}

}  // namespace

MovableHandle RenderHeartbeatFrame(BuildContext* context) {
  const HeartbeatParams* params = static_cast<const HeartbeatParams*>(context->params);
  WindowHandle dialog = context->dialog;
  FrameSettings settings;
  FrameTexts text;
  if (!ReadFrameSettings(dialog, &kHeartbeatIds, context->sample, &settings, &text)) return nullptr;
  settings.fills = params->fills;
  MovableHandle image = RenderPulse(dialog, &settings, params, ReadDlgValue(dialog, kIdWavelength),
                                    ReadDlgValue(dialog, kIdWaveHeight));
  ReleaseFrameSettings(dialog, &kHeartbeatIds);
  return image;
}

int PreviewHeartbeat(BuildContext* context) {
  context->flags |= kBuildFlagPreview;
  HeartbeatParams params = kSamplePulse;
  context->params = &params;
  context->image = RenderHeartbeatFrame(context);
  return 1;
}

int BuildHeartbeat(BuildContext* context) {
  WindowHandle dialog = context->dialog;
  const int32_t delay = ReadDlgValue(dialog, kIdDelay);
  const int32_t pause = ReadDlgValue(dialog, kIdPause);
  // The page's Frames counts two per pulse step. Every frame warps the same layers.
  WarpCache cache = {};
  ScopedFillCache fills;
  HeartbeatParams params = {ReadDlgValue(dialog, kIdFrames) / 2, 0, &cache, &fills.cache};
  context->params = &params;
  context->flags |= kBuildFlagBuild;
  int ok = 1;
  for (int32_t i = 0; ok && i < params.pulseSteps; ++i) {
    params.pulseIndex = i;
    ok = AppendEffectFrame(context, RenderHeartbeatFrame(context), delay);
    if (ok) ReportFrameProgress(context, i, params.pulseSteps);
  }
  // The pulse gone: the text at rest, held for the pause, where the loop joins.
  params.pulseIndex = params.pulseSteps;
  ok = ok && AppendEffectFrame(context, RenderHeartbeatFrame(context), delay + pause);
  ReleaseWarpCache(&cache);
  if (ok) return 1;
  context->image = MovableFree(context->image);
  return 0;
}

int32_t HeartbeatBackground(WindowHandle dialog, int32_t mode) {
  return PageBackgroundKeyColour(dialog, mode, kHeartbeatIds.background);
}
