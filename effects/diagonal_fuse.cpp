// Diagonal Fuse's fill picture and frame sequence. The leaves are polygons drawn at four times
// the canvas size and reduced, which gives their edges a soft look; a leaf's edges move p across
// for p down, so the slant is 45 degrees.
#include "effects/diagonal_fuse.h"

#include <cmath>

#include "controls/value_controls.h"
#include "effects/frame_loop.h"
#include "effects/frame_renderer.h"
#include "effects/frame_set.h"
#include "effects/key_colour.h"
#include "imaging/resampler.h"
#include "platform/surface.h"
#include "shell/packed_dib.h"
#include "text/text_mask.h"

namespace {

// Page 7412: the fill is made for each frame, at the page's Fill opacity.
constexpr FramePageIds kIds = {0, 624, 626, 628, 630, 632, 636, 638, 642, 644, 645};
constexpr int32_t kIdFill = 622, kIdFrames = 634, kIdScroll = 640, kIdLeafSize = 646,
                  kIdBackFill = 648;
// The main dialog's.
constexpr int32_t kIdDelay = 11, kIdPause = 23, kIdMargin = 59;

int DrawLeaf(RenderSurface* surface, const SurfacePoint (&points)[5]) {
  const SurfacePaint white = {0xFFFFFF, kSurfaceNone, 0};
  return SurfacePolygon(surface, points, 5, &white, kFillAlternate);
}

MovableHandle FillForFrame(void*, BuildContext* context, int32_t width, int32_t height) {
  const FuseParams* params = static_cast<const FuseParams*>(context->params);
  WindowHandle dialog = context->dialog;
  FuseLeaves leaves;
  leaves.width = width;
  leaves.height = height;
  leaves.margin = ReadDlgValue(dialog, kIdMargin);
  leaves.leafSize = ReadDlgValue(dialog, kIdLeafSize);
  if (!DialogPickerValue(DialogItem(dialog, kIdScroll), &leaves.scroll)) leaves.scroll = 0;
  int translated;
  leaves.fill = GetDialogItemInt(dialog, kIdFill, &translated, 0);
  leaves.backFill = GetDialogItemInt(dialog, kIdBackFill, &translated, 0);
  leaves.progress = params ? params->progress : 0.5f;
  return MakeFuseFill(&leaves);
}

// `fills` is the build's texture fills, or null.
MovableHandle RenderFuseFrame(BuildContext* context, float progress, FillCache* fills = nullptr) {
  FuseParams params{0, progress};
  context->params = &params;
  MovableHandle image = RenderFrameWithFill(context, &kIds, 0, FillForFrame, nullptr, fills);
  context->params = nullptr;
  return image;
}

}  // namespace

MovableHandle DrawFuseMask(const FuseLeaves* leaves) {
  const int32_t w = leaves->width, h = leaves->height;
  RenderSurface surface;
  if (!CreateRenderSurface(4 * w, 4 * h, &surface)) return nullptr;  // black already
  const int32_t L = leaves->leafSize * 4, t = leaves->margin * 4, b = (h - leaves->margin) * 4;
  const int32_t H = b - t;
  const int32_t p =
      static_cast<int32_t>(std::trunc(static_cast<float>(H) * leaves->progress + 0.5));
  const int32_t limit = (h + w) * 4;
  int ok = 1;
  if (limit > -4 * h) {
    if (leaves->scroll != 0) {
      for (int32_t X = -4 * h - H - L; ok && L + H + X < limit; X += 2 * L) {
        const SurfacePoint upper[5] = {{2 * L + H + X, t},
                                       {L + H + X, t},
                                       {H - p + L + X, t + p},
                                       {2 * L - p + H + X, t + p},
                                       {2 * L + H + X, t}};
        const SurfacePoint lower[5] = {
            {X, b}, {X + L, b}, {p + L + X, b - p}, {X + p, b - p}, {X, b}};
        ok = DrawLeaf(&surface, upper) && DrawLeaf(&surface, lower);
      }
    } else {
      // The upper leaf's last vertex stands on the surface's top edge, not on the upper line:
      // above a margin each leaf carries a thin spike to the top.
      for (int32_t X = p - 4 * h + L; ok && X - p - L < limit; X += 2 * L) {
        const SurfacePoint upper[5] = {
            {X - p - L, t}, {X - p, t}, {X, t + p}, {X - L, t + p}, {X - p - L, 0}};
        const SurfacePoint lower[5] = {{X + H - p - L, b},
                                       {X + H - 2 * L - p, b},
                                       {X + H - 2 * p - 2 * L, b - p},
                                       {X + H - 2 * p - L, b - p},
                                       {X + H - p - L, b}};
        ok = DrawLeaf(&surface, upper) && DrawLeaf(&surface, lower);
      }
    }
  }
  ReleaseRenderSurface(&surface, kSurfaceKeepImage);
  if (!ok) return MovableFree(surface.handle);
  MovableHandle reduced = ResampleByPercent(surface.handle, 25, 25);
  if (!reduced) return surface.handle;
  MovableFree(surface.handle);
  return reduced;
}

MovableHandle MakeFuseFill(const FuseLeaves* leaves) {
  ScopedBlock mask(DrawFuseMask(leaves));
  if (!mask.handle) return nullptr;
  const int32_t w = leaves->width, h = leaves->height;
  ScopedBlock fill(FilledImage(0, 0, w, h, leaves->fill));
  ScopedBlock back(FilledImage(0, 0, w, h, leaves->backFill));
  {
    ScopedLock out(fill.handle), under(back.handle), m(mask.handle);
    if (!out || !under || !m) return nullptr;
    for (int32_t y = 0; y < h; ++y)
      for (int32_t x = 0; x < w; ++x) {
        const uint32_t level = (ReadDibPixel(m.bytes, x, y) >> 16) & 0xFF;  // the blue byte
        const uint32_t f = ReadDibPixel(out.bytes, x, y), k = ReadDibPixel(under.bytes, x, y);
        uint32_t pixel = 0;
        for (int shift = 0; shift < 24; shift += 8)
          pixel |=
              (((k >> shift) & 0xFF) * (255 - level) / 255 + ((f >> shift) & 0xFF) * level / 255)
              << shift;
        WriteDibPixel(out.bytes, x, y, pixel);
      }
  }
  return fill.Release();
}

float FuseProgress(int32_t i, int32_t n) {
  return static_cast<float>((static_cast<float>(i) / static_cast<float>(n)) * 0.6 + 0.2);
}

int DiagonalFuseEffectPreview(BuildContext* context) {
  context->flags |= kBuildFlagPreview;
  context->image = RenderFuseFrame(context, 0.5f);
  return 1;
}

int DiagonalFuseEffectBuild(BuildContext* context) {
  WindowHandle dialog = context->dialog;
  const int32_t delay = ReadDlgValue(dialog, kIdDelay);
  const int32_t pause = ReadDlgValue(dialog, kIdPause);
  const int32_t frames = ReadDlgValue(dialog, kIdFrames);
  const int32_t n = frames / 2;
  context->flags |= kBuildFlagBuild;
  // A trial frame first: a page that can't render stops before any frame is appended.
  ScopedFillCache fills;
  MovableHandle trial = RenderFuseFrame(context, 0.5f, &fills.cache);
  int ok = trial != nullptr;
  MovableFree(trial);
  for (int32_t i = 0; ok && i < n; ++i) {
    MovableHandle image = RenderFuseFrame(context, FuseProgress(i, n), &fills.cache);
    ok = image && AppendEffectFrame(context, image, delay);
    if (ok) ReportFrameProgress(context, i, frames);
  }
  if (ok) {
    MovableHandle image = RenderFuseFrame(context, 1.0f, &fills.cache);
    ok = image && AppendEffectFrame(context, image, delay + pause);
  }
  if (ok) return 1;
  MovableFree(context->image);
  context->image = nullptr;
  return 0;
}

int32_t DiagonalFuseEffectKeyColour(WindowHandle dialog, int32_t mode) {
  return PageBackgroundKeyColour(dialog, mode, kIds.background);
}
