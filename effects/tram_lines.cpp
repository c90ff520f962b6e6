// Tram Lines' bars and frame loop. The shift of frame f is f * length / frames rounded, not
// f * step: steps then differ by at most a pixel and the turn closes exactly on the first frame.
#include "effects/tram_lines.h"

#include <algorithm>

#include "controls/value_controls.h"
#include "effects/band_shift.h"
#include "effects/frame_loop.h"
#include "effects/frame_renderer.h"
#include "effects/key_colour.h"
#include "shell/packed_dib.h"

int32_t TramLinesFrameCount(int32_t length, int32_t step) {
  step = std::max(step, 1);
  return std::max((length + step - 1) / step, 1);
}

int32_t TramLinesShift(int32_t length, int32_t frame, int32_t frames) {
  const int64_t n = std::max(frames, 1);
  return static_cast<int32_t>((2 * static_cast<int64_t>(frame) * length + n) / (2 * n));
}

MovableHandle MakeTramLinesFrame(MovableHandle picture, const TramLinesSettings* settings,
                                 int32_t frame) {
  int32_t width, height;
  if (!PictureSize(picture, &width, &height)) return nullptr;
  MovableHandle result = DuplicateHandle(picture);
  if (!result) return nullptr;
  const bool columns = settings->vertical != 0;
  const int32_t span = columns ? width : height, length = columns ? height : width;
  const int32_t bars = std::clamp(settings->bars, 1, std::max(span, 1));
  const int32_t shift =
      TramLinesShift(length, frame, TramLinesFrameCount(length, settings->tileStep));
  for (int32_t k = 0; k < bars; ++k) {
    const int32_t start = static_cast<int32_t>(static_cast<int64_t>(k) * span / bars);
    const int32_t end = static_cast<int32_t>(static_cast<int64_t>(k + 1) * span / bars);
    ShiftBand(result, picture, columns, start, end - start, k % 2 == 0 ? shift : -shift);
  }
  return result;
}

namespace {

int32_t FramesFor(MovableHandle picture, const TramLinesSettings* settings) {
  int32_t width, height;
  if (!PictureSize(picture, &width, &height)) return 0;
  return TramLinesFrameCount(settings->vertical ? height : width, settings->tileStep);
}

}  // namespace

int RunTramLinesFrames(BuildContext* context, const TramLinesSettings* settings,
                       TramLinesRenderer render, void* renderer) {
  context->flags |= kBuildFlagBuild;
  ScopedBlock picture(render(renderer));
  const int32_t frames = FramesFor(picture.handle, settings);
  if (!frames) return 0;
  for (int32_t i = 0; i < frames; ++i) {
    MovableHandle frame = MakeTramLinesFrame(picture.handle, settings, i);
    if (!frame || !AppendEffectFrame(context, frame, settings->delay)) return 0;
    ReportFrameProgress(context, i, frames);
  }
  return 1;
}

MovableHandle MakeTramLinesSample(const TramLinesSettings* settings, TramLinesRenderer render,
                                  void* renderer) {
  ScopedBlock picture(render(renderer));
  const int32_t frames = FramesFor(picture.handle, settings);
  if (!frames) return nullptr;
  return MakeTramLinesFrame(picture.handle, settings, frames / 4);
}

namespace {

// Page 7420.
constexpr FramePageIds kTramLinesIds = {969, 971, 973, 975, 977, 979, 981, 983, 985, 987, 988};
constexpr int32_t kIdBars = 989, kIdTileStep = 991, kIdVertical = 993;
// The main dialog's.
constexpr int32_t kIdDelay = 11;

MovableHandle RenderTramLinesPicture(void* context) {
  BuildContext* c = static_cast<BuildContext*>(context);
  FrameSettings settings;
  FrameTexts text;
  if (!ReadFrameSettings(c->dialog, &kTramLinesIds, c->sample, &settings, &text)) return nullptr;
  MovableHandle image = RenderStandardFrame(c->dialog, &settings, 0, 0);
  ReleaseFrameSettings(c->dialog, &kTramLinesIds);
  return image;
}

void ReadTramLines(WindowHandle dialog, TramLinesSettings* settings) {
  settings->bars = ReadDlgValue(dialog, kIdBars);
  settings->tileStep = ReadDlgValue(dialog, kIdTileStep);
  settings->vertical = DialogGetCheck(DialogItem(dialog, kIdVertical));
  settings->delay = ReadDlgValue(dialog, kIdDelay);
}

}  // namespace

int TramLinesEffectPreview(BuildContext* context) {
  context->flags |= kBuildFlagPreview;
  TramLinesSettings settings;
  ReadTramLines(context->dialog, &settings);
  context->image = MakeTramLinesSample(&settings, RenderTramLinesPicture, context);
  return 1;
}

int TramLinesEffectBuild(BuildContext* context) {
  TramLinesSettings settings;
  ReadTramLines(context->dialog, &settings);
  if (RunTramLinesFrames(context, &settings, RenderTramLinesPicture, context)) return 1;
  MovableFree(context->image);
  context->image = nullptr;
  return 0;
}

int32_t TramLinesEffectKeyColour(WindowHandle dialog, int32_t mode) {
  return PageBackgroundKeyColour(dialog, mode, kTramLinesIds.background);
}
