// Simple's frame loop. The position is a double moved by a double step and truncated toward zero
// for each frame; the minus and plus directions test for the centred frame on opposite sides of
// the move, so that p = 0 exactly counts as centred only on the side its direction gives.
#include "effects/simple.h"

#include <algorithm>

#include "controls/value_controls.h"
#include "effects/frame_loop.h"
#include "effects/frame_renderer.h"
#include "effects/key_colour.h"
#include "shell/packed_dib.h"

int RunSimpleFrames(BuildContext* context, const SimpleLoopSettings* settings,
                    SimpleFrameRenderer render, void* renderer) {
  ScopedFillCache fills;
  SimpleFrameParams params{0, 0, &fills.cache};
  context->params = &params;
  context->flags |= kBuildFlagBuild;
  if (!settings->animated) {
    MovableHandle image = render(renderer, &params);
    return image && AppendEffectFrame(context, image, settings->delay);
  }

  int32_t width, height;
  {
    ScopedBlock test(render(renderer, &params));
    ScopedLock lock(test.handle);
    if (!lock) return 0;
    const BitmapInfoHeader* h = reinterpret_cast<const BitmapInfoHeader*>(lock.bytes);
    width = h->biWidth;
    height = h->biHeight;
  }

  const int32_t scroll = settings->scroll;
  const bool vertical = scroll == kScrollUp || scroll == kScrollDown;
  const bool plus = scroll == kScrollRight || scroll == kScrollDown;
  const int32_t size = vertical ? height : width;
  const int32_t travel = 2 * size;
  const int32_t count = std::min(settings->frames, travel);
  if (count < 1) return 1;  // nothing to travel: no frames, which the pipeline reports
  const double step = static_cast<double>(travel) / count;
  double p = plus ? -size : size;

  for (int32_t i = 0; i < count; ++i) {
    bool centred;
    if (plus) {
      centred = p < 0 && p + step >= 0;
      p += step;
    } else {
      p -= step;
      centred = p >= 0 && p - step < 0;
    }
    params.x = vertical ? 0 : static_cast<int32_t>(p);
    params.y = vertical ? static_cast<int32_t>(p) : 0;
    MovableHandle image = render(renderer, &params);
    const int32_t delay = settings->delay + (i == count - 1 || centred ? settings->pause : 0);
    if (!image || !AppendEffectFrame(context, image, delay)) return 0;
    ReportFrameProgress(context, i, count);
  }
  return 1;
}

namespace {

// Page 7400.
constexpr FramePageIds kSimpleIds = {100, 102, 104, 106, 108, 110, 114, 116, 120, 122, 123};
constexpr int32_t kIdFrames = 112, kIdScroll = 118;
// The main dialog's.
constexpr int32_t kIdDelay = 11, kIdAnimated = 22, kIdPause = 23;

// The renderer: the common steps unchanged, read afresh from the dialog for every frame.
MovableHandle RenderSimpleFrame(void* context, const SimpleFrameParams* params) {
  BuildContext* c = static_cast<BuildContext*>(context);
  FrameSettings settings;
  FrameTexts text;
  if (!ReadFrameSettings(c->dialog, &kSimpleIds, c->sample, &settings, &text)) return nullptr;
  settings.fills = params->fills;
  MovableHandle image = RenderStandardFrame(c->dialog, &settings, params->x, params->y);
  ReleaseFrameSettings(c->dialog, &kSimpleIds);
  return image;
}

}  // namespace

int SimpleEffectPreview(BuildContext* context) {
  context->flags |= kBuildFlagPreview;
  SimpleFrameParams params{0, 0, nullptr};
  context->params = &params;
  context->image = RenderSimpleFrame(context, &params);
  return 1;
}

int SimpleEffectBuild(BuildContext* context) {
  WindowHandle dialog = context->dialog;
  SimpleLoopSettings loop;
  loop.animated = DialogGetCheck(DialogItem(dialog, kIdAnimated));
  loop.delay = ReadDlgValue(dialog, kIdDelay);
  loop.pause = ReadDlgValue(dialog, kIdPause);
  loop.frames = ReadDlgValue(dialog, kIdFrames);
  if (!DialogPickerValue(DialogItem(dialog, kIdScroll), &loop.scroll)) loop.scroll = 0;
  if (RunSimpleFrames(context, &loop, RenderSimpleFrame, context)) return 1;
  MovableFree(context->image);
  context->image = nullptr;
  return 0;
}

int32_t SimpleEffectKeyColour(WindowHandle dialog, int32_t mode) {
  return PageBackgroundKeyColour(dialog, mode, kSimpleIds.background);
}
