// Zipper's teeth and frame loop. Shifts are integers in 64 bits so that long pictures on many
// frames neither overflow nor round differently from one build to the next.
#include "effects/zipper.h"

#include <algorithm>

#include "controls/value_controls.h"
#include "effects/band_shift.h"
#include "effects/frame_loop.h"
#include "effects/frame_renderer.h"
#include "effects/key_colour.h"
#include "shell/packed_dib.h"

int32_t ZipperShift(int32_t length, int32_t frame, int32_t frames) {
  const int64_t last = std::max(frames - 1, 1);
  const int64_t r = std::clamp<int64_t>(last - frame, 0, last);
  return static_cast<int32_t>(3 * static_cast<int64_t>(length) * r * r / (8 * last * last));
}

bool ZipperColumns(int32_t width, int32_t height) {
  return height > width;
}

MovableHandle MakeZipperFrame(MovableHandle picture, const ZipperSettings* settings,
                              int32_t frame) {
  int32_t width, height;
  if (!PictureSize(picture, &width, &height)) return nullptr;
  MovableHandle result = DuplicateHandle(picture);
  if (!result) return nullptr;
  const bool columns = ZipperColumns(width, height);
  const int32_t span = columns ? width : height, length = columns ? height : width;
  const int32_t leaf = std::max(settings->leafSize, 1);
  const int32_t shift = ZipperShift(length, frame, settings->frames);
  if (shift == 0) return result;
  for (int32_t start = 0, k = 0; start < span; start += leaf, ++k)
    ShiftBand(result, picture, columns, start, std::min(leaf, span - start),
              k % 2 == 0 ? shift : -shift);
  return result;
}

int RunZipperFrames(BuildContext* context, const ZipperSettings* settings, ZipperRenderer render,
                    void* renderer) {
  context->flags |= kBuildFlagBuild;
  ScopedBlock picture(render(renderer));
  if (!picture.handle) return 0;
  const int32_t frames = std::max(settings->frames, 2);
  for (int32_t i = 0; i + 1 < frames; ++i) {
    MovableHandle frame = MakeZipperFrame(picture.handle, settings, i);
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
  ScopedBlock picture(render(renderer));
  if (!picture.handle) return nullptr;
  return MakeZipperFrame(picture.handle, settings, (std::max(settings->frames, 2) - 1) / 2);
}

namespace {

// Page 7414.
constexpr FramePageIds kZipperIds = {696, 698, 700, 702, 704, 706, 710, 712, 714, 716, 717};
constexpr int32_t kIdFrames = 708, kIdLeafSize = 718;
// The main dialog's.
constexpr int32_t kIdDelay = 11, kIdPause = 23;

MovableHandle RenderZipperPicture(void* context) {
  BuildContext* c = static_cast<BuildContext*>(context);
  FrameSettings settings;
  char text[2][264];
  if (!ReadFrameSettings(c->dialog, &kZipperIds, c->sample, &settings, &text)) return nullptr;
  MovableHandle image = RenderStandardFrame(c->dialog, &settings, 0, 0);
  ReleaseFrameSettings(c->dialog, &kZipperIds);
  return image;
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
  context->image = MakeZipperSample(&settings, RenderZipperPicture, context);
  return 1;
}

int ZipperEffectBuild(BuildContext* context) {
  ZipperSettings settings;
  ReadZipper(context->dialog, &settings);
  if (RunZipperFrames(context, &settings, RenderZipperPicture, context)) return 1;
  MovableFree(context->image);
  context->image = nullptr;
  return 0;
}

int32_t ZipperEffectKeyColour(WindowHandle dialog, int32_t mode) {
  return PageBackgroundKeyColour(dialog, mode, kZipperIds.background);
}
