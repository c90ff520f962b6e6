// Zipper's teeth and frame loop. The pull is reckoned in 64-bit integers so that long pictures on
// many frames neither overflow nor round differently from one build to the next.
#include "effects/zipper.h"

#include <algorithm>

#include "controls/value_controls.h"
#include "effects/band_shift.h"
#include "effects/frame_loop.h"
#include "effects/frame_renderer.h"
#include "effects/key_colour.h"
#include "shell/packed_dib.h"
#include "text/image_copy.h"

int32_t ZipperPull(int32_t length, int32_t frame, int32_t frames) {
  const int64_t last = std::max(frames - 1, 1);
  const int64_t r = std::clamp<int64_t>(last - frame, 0, last);
  return static_cast<int32_t>(length - static_cast<int64_t>(length) * r * r / (last * last));
}

int32_t ZipperOpening(int32_t middle, int32_t pull, int32_t span) {
  return static_cast<int32_t>(
      std::clamp<int64_t>((static_cast<int64_t>(middle) - pull) / 2, 0, std::max(span, 0)));
}

bool ZipperRows(int32_t width, int32_t height) {
  return height > width;
}

MovableHandle MakeZipperFrame(MovableHandle picture, MovableHandle background,
                              const ZipperSettings* settings, int32_t frame) {
  int32_t width, height;
  if (!PictureSize(picture, &width, &height)) return nullptr;
  MovableHandle result = DuplicateHandle(background);
  if (!result) return nullptr;
  const bool rows = ZipperRows(width, height);
  const int32_t length = rows ? height : width, span = rows ? width : height;
  const int32_t leaf = std::max(settings->leafSize, 1);
  const int32_t pull = ZipperPull(length, frame, settings->frames);
  // Each tooth is the picture's strip moved aside as one piece; the copy drops what falls outside.
  for (int32_t start = 0, k = 0; start < length; start += leaf, ++k) {
    const int32_t size = std::min(leaf, length - start);
    const int32_t opening = ZipperOpening(start + size / 2, pull, span);
    if (opening >= span) continue;
    const int32_t aside = k % 2 == 0 ? -opening : opening;
    if (rows)
      CopyImageRect(result, aside, start, picture, 0, start, width, size);
    else
      CopyImageRect(result, start, aside, picture, start, 0, size, height);
  }
  return result;
}

int RunZipperFrames(BuildContext* context, const ZipperSettings* settings, ZipperRenderer render,
                    void* renderer) {
  context->flags |= kBuildFlagBuild;
  MovableHandle made[2];
  if (!render(renderer, &made[0], &made[1])) return 0;
  ScopedBlock picture(made[0]), background(made[1]);
  const int32_t frames = std::max(settings->frames, 2);
  for (int32_t i = 0; i + 1 < frames; ++i) {
    MovableHandle frame = MakeZipperFrame(picture.handle, background.handle, settings, i);
    if (!frame || !AppendEffectFrame(context, frame, settings->delay)) return 0;
    ReportFrameProgress(context, i, frames);
  }
  // The picture itself closes the run; the list takes it over.
  if (!AppendEffectFrame(context, picture.Release(), settings->delay + settings->pause)) return 0;
  ReportFrameProgress(context, frames - 1, frames);
  return 1;
}

MovableHandle MakeZipperSample(const ZipperSettings* settings, ZipperRenderer render,
                               void* renderer) {
  MovableHandle made[2];
  if (!render(renderer, &made[0], &made[1])) return nullptr;
  ScopedBlock picture(made[0]), background(made[1]);
  return MakeZipperFrame(picture.handle, background.handle, settings,
                         (std::max(settings->frames, 2) - 1) / 2);
}

namespace {

// Page 7414.
constexpr FramePageIds kZipperIds = {696, 698, 700, 702, 704, 706, 710, 712, 714, 716, 717};
constexpr int32_t kIdFrames = 708, kIdLeafSize = 718;
// The main dialog's.
constexpr int32_t kIdDelay = 11, kIdPause = 23;

// The whole picture, then the canvas alone (background and alpha plane) from the same layout.
int RenderZipperPictures(void* context, MovableHandle* picture, MovableHandle* background) {
  BuildContext* c = static_cast<BuildContext*>(context);
  FrameSettings settings;
  FrameTexts text;
  if (!ReadFrameSettings(c->dialog, &kZipperIds, c->sample, &settings, &text)) return 0;
  *background = nullptr;
  *picture = RenderStandardFrame(c->dialog, &settings, 0, 0);
  TextFrame frame{};
  if (*picture && BeginTextFrame(c->dialog, &settings, &frame) && BackgroundStep(&frame) &&
      AlphaPlaneStep(&frame))
    *background = FinishFrameStep(&frame);
  EndTextFrame(&frame);
  ReleaseFrameSettings(c->dialog, &kZipperIds);
  if (*background) return 1;
  MovableFree(*picture);
  *picture = nullptr;
  return 0;
}

void ReadZipper(WindowHandle dialog, ZipperSettings* settings) {
  settings->frames = ReadDlgValue(dialog, kIdFrames);
  settings->leafSize = ReadDlgValue(dialog, kIdLeafSize);
  settings->delay = ReadDlgValue(dialog, kIdDelay);
  settings->pause = ReadDlgValue(dialog, kIdPause);
}

}  // namespace

int ZipperEffectPreview(BuildContext* context) {
  context->flags |= kBuildFlagPreview;
  ZipperSettings settings;
  ReadZipper(context->dialog, &settings);
  context->image = MakeZipperSample(&settings, RenderZipperPictures, context);
  return 1;
}

int ZipperEffectBuild(BuildContext* context) {
  ZipperSettings settings;
  ReadZipper(context->dialog, &settings);
  if (RunZipperFrames(context, &settings, RenderZipperPictures, context)) return 1;
  MovableFree(context->image);
  context->image = nullptr;
  return 0;
}

int32_t ZipperEffectKeyColour(WindowHandle dialog, int32_t mode) {
  return PageBackgroundKeyColour(dialog, mode, kZipperIds.background);
}
