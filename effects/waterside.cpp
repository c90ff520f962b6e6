// Waterside's picture operations and frame loop. The ripple's arithmetic is in doubles in the
// order written, and its row offsets truncate toward zero; the frame delays come from the runtime
// generator, which this effect never seeds.
#include "effects/waterside.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "controls/value_controls.h"
#include "effects/frame_loop.h"
#include "effects/frame_renderer.h"
#include "effects/key_colour.h"
#include "imaging/resampler.h"
#include "shell/crt_random.h"
#include "shell/packed_dib.h"
#include "text/image_copy.h"

MovableHandle CropBackgroundRows(MovableHandle picture, uint32_t background) {
  int32_t width, keep;
  {
    ScopedLock lock(picture);
    if (!lock) return nullptr;
    const BitmapInfoHeader* h = reinterpret_cast<const BitmapInfoHeader*>(lock.bytes);
    width = h->biWidth;
    keep = h->biHeight;
    const uint32_t key = background & 0xFFFFFF;
    for (; keep > 1; --keep) {
      int32_t x = 0;
      while (x < width && (ReadDibPixel(lock.bytes, x, keep - 1) & 0xFFFFFF) == key) ++x;
      if (x < width) break;
    }
  }
  return CropImage(picture, 0, 0, width, keep);
}

MovableHandle ShiftRippleRows(MovableHandle doubled, int32_t phase, int32_t phases) {
  ScopedBlock out(DuplicateHandle(doubled));
  {
    ScopedLock source(doubled), target(out.handle);
    if (!source || !target) return nullptr;
    const BitmapInfoHeader* h = reinterpret_cast<const BitmapInfoHeader*>(source.bytes);
    const int32_t width = h->biWidth, height = h->biHeight;
    const size_t stride = DibStride(width, h->biBitCount);
    const uint8_t* from = DibBits(source.bytes);
    uint8_t* to = DibBits(target.bytes);
    const int32_t a = height / 14;
    const double turn =
        (static_cast<double>(phase) * 6.283185307179586) / static_cast<double>(phases);
    // r counts from the bottom of the picture, which is the top of the mirror image: there the
    // waves crowd together, and the shift grows with r.
    for (int32_t r = 0; r < height; ++r) {
      const double p = static_cast<double>(a * (height - r)) / static_cast<double>(r + 1) + turn;
      const int32_t offset = static_cast<int32_t>(
          (std::sin(p) * (static_cast<double>(r) + 28.0) * static_cast<double>(a)) /
          static_cast<double>(height));
      const int32_t row = height - r - 1;
      const int32_t sourceRow = -offset <= r ? row + offset : row;
      // A source row outside the picture copies nothing: the row keeps its own pixels.
      if (sourceRow == row || sourceRow < 0 || sourceRow >= height) continue;
      std::memcpy(to + static_cast<size_t>(height - 1 - row) * stride,
                  from + static_cast<size_t>(height - 1 - sourceRow) * stride, stride);
    }
  }
  return out.Release();
}

MovableHandle MakeRipple(MovableHandle doubled, int32_t phase, int32_t phases) {
  MovableHandle shifted = ShiftRippleRows(doubled, phase, phases);
  if (!shifted) return nullptr;
  MovableHandle half = ResampleByPercent(shifted, 50.0, 50.0);
  if (!half) return shifted;
  MovableFree(shifted);
  return half;
}

MovableHandle JoinMirrored(MovableHandle picture, MovableHandle ripple) {
  int32_t w1, h1, w2, h2, depth;
  {
    ScopedLock top(picture), bottom(ripple);
    if (!top || !bottom) return nullptr;
    const BitmapInfoHeader* a = reinterpret_cast<const BitmapInfoHeader*>(top.bytes);
    const BitmapInfoHeader* b = reinterpret_cast<const BitmapInfoHeader*>(bottom.bytes);
    w1 = a->biWidth;
    h1 = a->biHeight;
    w2 = b->biWidth;
    h2 = b->biHeight;
    depth = a->biBitCount;
  }
  MovableHandle joined = CreatePackedDib(std::max(w1, w2), h1 + h2, nullptr, depth);
  if (!joined) return nullptr;
  CopyImageRect(joined, 0, 0, picture, 0, 0, w1, h1);
  for (int32_t y = 0; y < h2; ++y) CopyImageRect(joined, 0, h2 + (h1 - y) - 1, ripple, 0, y, w2, 1);
  return joined;
}

int32_t WatersideDelay(int32_t delay) {
  const int32_t spread = (delay * 50) / 100;
  if (spread < 1) return delay;
  return (delay * 75) / 100 + crt::rand() % spread;
}

namespace {

// The still picture cropped of its bottom background rows, and its doubled copy (null when the
// resampling failed, so that every ripple falls back to the plain picture).
struct WatersideStill {
  MovableHandle picture = nullptr;
  MovableHandle doubled = nullptr;
  ~WatersideStill() {
    MovableFree(picture);
    MovableFree(doubled);
  }
};

// Renders, crops and doubles. 0 when the render fails.
int MakeStill(WatersideRenderer render, void* renderer, const WatersideFrameParams* params,
              uint32_t background, WatersideStill* still) {
  still->picture = render(renderer, params);
  if (!still->picture) return 0;
  if (MovableHandle cropped = CropBackgroundRows(still->picture, background)) {
    MovableFree(still->picture);
    still->picture = cropped;
  }
  still->doubled = ResampleByPercent(still->picture, 200.0, 200.0);
  return 1;
}

// One frame: the ripple of the phase joined below the picture, or a copy of the plain picture
// when the ripple or the join fails. Null only when that copy fails too.
MovableHandle MakeFrame(const WatersideStill* still, int32_t phase, int32_t phases) {
  ScopedBlock ripple(still->doubled ? MakeRipple(still->doubled, phase, phases) : nullptr);
  MovableHandle joined = ripple.handle ? JoinMirrored(still->picture, ripple.handle) : nullptr;
  return joined ? joined : DuplicateHandle(still->picture);
}

}  // namespace

int RunWatersideFrames(BuildContext* context, const WatersideLoopSettings* settings,
                       WatersideRenderer render, void* renderer) {
  context->flags |= kBuildFlagBuild;
  const int32_t phases = settings->animated ? settings->frames : 1;
  WatersideFrameParams params{0, phases};
  context->params = &params;
  WatersideStill still;
  if (!MakeStill(render, renderer, &params, settings->background, &still)) return 0;
  for (int32_t i = 0; i < phases; ++i) {
    params.frameIndex = i;
    MovableHandle frame = MakeFrame(&still, i, phases);
    if (!frame) return 0;
    const int32_t delay = settings->animated ? WatersideDelay(settings->delay) : settings->delay;
    if (!AppendEffectFrame(context, frame, delay)) return 0;
    ReportFrameProgress(context, i, phases);
  }
  return 1;
}

namespace {

// Page 7408.
constexpr FramePageIds kWatersideIds = {467, 469, 471, 473, 475, 477, 481, 483, 485, 487, 488};
constexpr int32_t kIdFrames = 479;
// The main dialog's.
constexpr int32_t kIdDelay = 11, kIdAnimated = 22;

// The renderer: the common steps with the text at rest, read afresh from the dialog.
MovableHandle RenderWatersideFrame(void* context, const WatersideFrameParams*) {
  BuildContext* c = static_cast<BuildContext*>(context);
  FrameSettings settings;
  FrameTexts text;
  if (!ReadFrameSettings(c->dialog, &kWatersideIds, c->sample, &settings, &text)) return nullptr;
  MovableHandle image = RenderStandardFrame(c->dialog, &settings, 0, 0);
  ReleaseFrameSettings(c->dialog, &kWatersideIds);
  return image;
}

uint32_t BackgroundKey(WindowHandle dialog) {
  return static_cast<uint32_t>(WatersideEffectKeyColour(dialog, 0));
}

}  // namespace

int WatersideEffectPreview(BuildContext* context) {
  context->flags |= kBuildFlagPreview;
  WatersideFrameParams params{0, 1};
  context->params = &params;
  WatersideStill still;
  if (MakeStill(RenderWatersideFrame, context, &params, BackgroundKey(context->dialog), &still))
    context->image = MakeFrame(&still, 0, 1);
  return 1;
}

int WatersideEffectBuild(BuildContext* context) {
  WindowHandle dialog = context->dialog;
  WatersideLoopSettings loop;
  loop.background = BackgroundKey(dialog);
  loop.animated = DialogGetCheck(DialogItem(dialog, kIdAnimated));
  loop.delay = ReadDlgValue(dialog, kIdDelay);
  loop.frames = ReadDlgValue(dialog, kIdFrames);
  if (RunWatersideFrames(context, &loop, RenderWatersideFrame, context)) return 1;
  MovableFree(context->image);
  context->image = nullptr;
  return 0;
}

int32_t WatersideEffectKeyColour(WindowHandle dialog, int32_t mode) {
  return PageBackgroundKeyColour(dialog, mode, kWatersideIds.background);
}
