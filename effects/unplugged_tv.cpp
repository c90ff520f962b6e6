// Unplugged TV's renderer, set-up, frames and build. The renderer is the common one with four
// changes: a build's background is one flat colour (the real background is composed once per
// frame, after the overlay), the fill is the picture's own fill image, the alpha plane is made in
// every build so that each picture carries the text's coverage, and the fill is at full level.
#include "effects/unplugged_tv.h"

#include <algorithm>
#include <cstring>

#include "controls/value_controls.h"
#include "documents/settings.h"
#include "effects/frame_loop.h"
#include "effects/frame_renderer.h"
#include "effects/key_colour.h"
#include "imaging/resampler.h"
#include "materials/material_button.h"
#include "platform/surface.h"
#include "shell/packed_dib.h"
#include "text/blur.h"
#include "text/compositing.h"
#include "text/text_mask.h"

namespace {

// Page 7419.
constexpr FramePageIds kIds = {0, 923, 925, 927, 0, 929, 931, 933, 935, 937, 938};
constexpr int32_t kIdFrames = 941, kIdColour1 = 943, kIdEnable3 = 953, kIdDotColour = 956,
                  kIdDotEnable = 958, kIdSquareDot = 959;
// The main dialog's.
constexpr int32_t kIdDelay = 11, kIdAnimated = 22, kIdPause = 23, kIdAlphaTransparency = 62;

int32_t SettingOr(const char* key, int32_t fallback) {
  const int32_t* value = SettingInteger(key);
  return value ? *value : fallback;
}

int32_t Checked(WindowHandle dialog, int32_t id) {
  return DialogGetCheck(DialogItem(dialog, id));
}

// The material of the button `id` at width by height, or null.
MovableHandle FillFromButton(WindowHandle dialog, int32_t id, int32_t width, int32_t height) {
  WindowHandle button = DialogItem(dialog, id);
  Material* material = MaterialForButton(button);
  if (!material) return nullptr;
  MovableHandle image = MaterialFill(material, width, height);
  MovableUnlock(ButtonMaterialHandle(button));
  return image;
}

// The text frame, with the changed steps described at the top of the file.
MovableHandle RenderUnpluggedTvText(BuildContext* context) {
  const UnpluggedTvState* state = static_cast<const UnpluggedTvState*>(context->params);
  WindowHandle dialog = context->dialog;
  FrameSettings settings;
  FrameTexts text;
  if (!state || !ReadFrameSettings(dialog, &kIds, context->sample, &settings, &text))
    return nullptr;
  const bool preview = (context->flags & kBuildFlagPreview) != 0;
  TextFrame frame;
  MovableHandle result = nullptr;
  int ok = BeginTextFrame(dialog, &settings, &frame);
  if (ok) {
    if ((settings.alphaTransparency && settings.alphaBackground) || preview)
      ok = BackgroundStep(&frame);
    else
      ok = (frame.canvas = FilledImage(0, 0, frame.width, frame.height,
                                       settings.background->solidColour)) != nullptr;
  }
  if (ok) {
    if (state->useFills)
      frame.fillImage =
          state->count < kUnpluggedTvFills ? DuplicateHandle(state->fills[state->count]) : nullptr;
    else
      frame.fillImage = FillFromButton(dialog, kIdColour1, frame.width, frame.height);
    ok = frame.fillImage && ShadowMaterialStep(&frame);
  }
  if (ok && !context->sample && !preview)
    ok = (frame.alphaPlane = CreateMask(frame.width, frame.height)) != nullptr;
  if (ok && ShadowStep(&frame, 0, 0) && FillStep(&frame, 0, 0) && OutlineStep(&frame, 0, 0))
    result = FinishFrameStep(&frame);
  EndTextFrame(&frame);
  ReleaseFrameSettings(dialog, &kIds);
  return result;
}

// Fills the state's pictures, fills and background for a canvas of its width and height.
int SetUpUnpluggedTv(BuildContext* context, UnpluggedTvState* state, int32_t delay) {
  WindowHandle dialog = context->dialog;
  const SwellFactors swell = ReadSwellFactors();
  state->count = 0;
  state->alpha = Checked(dialog, kIdAlphaTransparency);
  state->squareDot = Checked(dialog, kIdSquareDot);
  state->useFills = 1;
  SetUnpluggedTvTiming(state, ReadDlgValue(dialog, kIdFrames), delay, &swell);
  state->background = FillFromButton(dialog, kIds.background, state->width, state->height);
  if (!state->background) return 0;
  const int32_t useDotColour = Checked(dialog, kIdDotEnable);
  int translated;
  const uint32_t dotColour = GetDialogItemInt(dialog, kIdDotColour, &translated, 0);
  for (int32_t i = 0; i < kUnpluggedTvFills; ++i) {
    if (i >= 2 && !Checked(dialog, kIdEnable3 + i - 2)) continue;
    const int32_t id = kIdColour1 + 2 * i;
    // Colours 3 to 5 are optional: one whose button holds no material is left out.
    if (i >= 2 && !MaterialForButton(DialogItem(dialog, id))) continue;
    if (i >= 2) MovableUnlock(ButtonMaterialHandle(DialogItem(dialog, id)));
    const int32_t n = state->count;
    state->fills[n] = FillFromButton(dialog, id, state->width, state->height);
    if (!state->fills[n]) return 0;
    state->pictures[n] = RenderUnpluggedTvText(context);
    if (!state->pictures[n]) return 0;
    state->dotColours[n] = useDotColour ? dotColour : PictureMeanColour(state->pictures[n]);
    state->count = n + 1;
  }
  return 1;
}

// A new 24-bit picture of `frame` (32 bits) laid on `background` by its alpha, or null.
MovableHandle FlattenOnBackground(MovableHandle frame, MovableHandle background) {
  ScopedLock f(frame), b(background);
  if (!f || !b) return nullptr;
  const BitmapInfoHeader* fh = reinterpret_cast<const BitmapInfoHeader*>(f.bytes);
  const BitmapInfoHeader* bh = reinterpret_cast<const BitmapInfoHeader*>(b.bytes);
  if (fh->biBitCount != 32 || bh->biBitCount < 24) return nullptr;
  const int32_t w = fh->biWidth, h = fh->biHeight;
  MovableHandle flat = CreatePackedDib(w, h, nullptr, 24);
  ScopedLock out(flat);
  if (!out) {
    MovableFree(flat);
    return nullptr;
  }
  for (int32_t y = 0; y < h; ++y)
    for (int32_t x = 0; x < w; ++x) {
      const uint32_t fg = ReadDibPixel(f.bytes, x, y), bg = ReadDibPixel(b.bytes, x, y);
      const uint32_t a = fg >> 24;
      uint32_t pixel = 0;
      for (int shift = 0; shift < 24; shift += 8) {
        const uint32_t channel =
            ((bg >> shift) & 0xFF) * (255 - a) / 255 + ((fg >> shift) & 0xFF) * a / 255;
        pixel |= channel << shift;
      }
      WriteDibPixel(out.bytes, x, y, pixel);
    }
  return flat;
}

}  // namespace

SwellFactors ReadSwellFactors() {
  return {SettingOr("Style019SwellSizeFactor", 20), SettingOr("Style019SwellEdgeFactor", 75),
          SettingOr("Style019SwellDelayFactor", 150), SettingOr("Style019SwellSoftness", 20)};
}

void SetUnpluggedTvTiming(UnpluggedTvState* state, int32_t frames, int32_t delay,
                          const SwellFactors* swell) {
  const int32_t third = std::max(frames / 3, 8);
  state->squeezeFrames = state->lineFrames = third;
  state->dotFrames = swell->size != 0 ? third : 0;
  state->squeezeDelay = state->lineDelay = delay;
  state->dotDelay = delay * swell->delay / 100;
}

uint32_t PictureMeanColour(MovableHandle picture) {
  ScopedLock lock(picture);
  if (!lock) return 0xFFFFFF;
  const BitmapInfoHeader* h = reinterpret_cast<const BitmapInfoHeader*>(lock.bytes);
  const bool withAlpha = h->biBitCount == 32;
  uint64_t sums[3] = {0, 0, 0}, count = 0;
  for (int32_t y = 0; y < h->biHeight; ++y)
    for (int32_t x = 0; x < h->biWidth; ++x) {
      const uint32_t p = ReadDibPixel(lock.bytes, x, y);
      if (withAlpha && (p >> 24) != 255) continue;
      for (int c = 0; c < 3; ++c) sums[c] += (p >> (8 * c)) & 0xFF;
      ++count;
    }
  count = std::max<uint64_t>(count, 1);
  return static_cast<uint32_t>(sums[0] / count | (sums[1] / count) << 8 | (sums[2] / count) << 16);
}

MovableHandle MakeSwellDot(uint32_t colour, int32_t canvasHeight, int32_t dotFrames, int32_t step,
                           int32_t squareDot, const SwellFactors* swell) {
  uint32_t edge = 0;
  for (int shift = 0; shift < 24; shift += 8) {
    const int32_t c = static_cast<int32_t>((colour >> shift) & 0xFF) * swell->edge / 100;
    edge |= static_cast<uint32_t>(std::clamp(c, 0, 255)) << shift;
  }
  const int32_t full = canvasHeight * swell->size / 100;
  const int32_t soft = swell->softness / 10;
  const int32_t pad = 2 * soft + 2;
  const int32_t half = std::max(dotFrames / 2, 1);
  const int32_t size = ((step < half ? step + 1 : 2 * half - step + 1) * full) / half;
  const int32_t side = 4 * (soft + 1) + size;
  int (*shape)(RenderSurface*, const SurfaceRect*, const SurfacePaint*) =
      squareDot ? SurfaceRectangle : SurfaceEllipse;

  RenderSurface colours;
  if (!CreateRenderSurface(side, side, &colours)) return nullptr;
  const SurfaceRect whole = {0, 0, side, side};
  SurfaceFillRect(&colours, &whole, edge);
  const int32_t r = size / 2, cx = side / 2, cy = side / 2;
  for (int32_t i = 0; i < r; ++i) {
    // The rings step from the rim colour to the dot colour at the centre.
    const double t = static_cast<double>(i) / r;
    uint32_t ring = 0;
    for (int shift = 0; shift < 24; shift += 8) {
      const double c = ((colour >> shift) & 0xFF) * t + ((edge >> shift) & 0xFF) * (1 - t);
      ring |= static_cast<uint32_t>(c) << shift;
    }
    const SurfaceRect box = {cx + 1 + i - r, cy + 1 + i - r, cx - i - 1 + r, cy - i - 1 + r};
    const SurfacePaint paint = {static_cast<int32_t>(ring), kSurfaceNone, 0};
    shape(&colours, &box, &paint);
  }
  ReleaseRenderSurface(&colours, kSurfaceKeepImage);
  ScopedBlock colourImage(colours.handle);

  RenderSurface cover;
  if (!CreateRenderSurface(side, side, &cover)) return nullptr;
  const SurfaceRect inset = {pad, pad, side - pad, side - pad};
  const SurfacePaint white = {0xFFFFFF, kSurfaceNone, 0};
  shape(&cover, &inset, &white);
  ReleaseRenderSurface(&cover, kSurfaceKeepImage);
  ScopedBlock coverImage(cover.handle);
  // A blur of strength 0 would be no blur at all; a failed one leaves the shape hard-edged.
  if (swell->softness > 0) {
    MovableHandle softened = GaussianBlur(coverImage.handle, 200, swell->softness);
    if (softened) {
      MovableFree(coverImage.Release());
      coverImage.handle = softened;
    }
  }

  MovableHandle dot = CreatePackedDib32(side, side);
  ScopedLock out(dot), c(colourImage.handle), a(coverImage.handle);
  if (!out || !c || !a) {
    MovableFree(dot);
    return nullptr;
  }
  for (int32_t y = 0; y < side; ++y)
    for (int32_t x = 0; x < side; ++x)
      WriteDibPixel(out.bytes, x, y,
                    (ReadDibPixel(c.bytes, x, y) & 0xFFFFFF) | (ReadDibPixel(a.bytes, x, y) & 0xFF)
                                                                   << 24);
  return dot;
}

void OverlayCentred(void* target, const void* source) {
  const BitmapInfoHeader* th = static_cast<const BitmapInfoHeader*>(target);
  const BitmapInfoHeader* sh = static_cast<const BitmapInfoHeader*>(source);
  const bool targetAlpha = th->biBitCount == 32, sourceAlpha = sh->biBitCount == 32;
  const int32_t left = (th->biWidth - sh->biWidth) / 2, top = (th->biHeight - sh->biHeight) / 2;
  for (int32_t y = 0; y < sh->biHeight; ++y)
    for (int32_t x = 0; x < sh->biWidth; ++x) {
      const uint32_t dest = ReadDibPixel(target, left + x, top + y);
      if (dest == kPixelOutside) continue;
      const uint32_t src = ReadDibPixel(source, x, y);
      const uint32_t a = sourceAlpha ? src >> 24 : 255, b = targetAlpha ? dest >> 24 : 255;
      uint32_t pixel = std::max(a, b) << 24;
      for (int shift = 0; shift < 24; shift += 8) {
        const uint32_t channel =
            ((dest >> shift) & 0xFF) * (255 - a) / 255 + ((src >> shift) & 0xFF) * a / 255;
        pixel |= std::min(channel, 255u) << shift;
      }
      WriteDibPixel(target, left + x, top + y, pixel);
    }
}

MovableHandle MakeUnpluggedTvFrame(const UnpluggedTvState* state) {
  if (state->count < 1 || state->current < 0 || state->current >= state->count) return nullptr;
  MovableHandle cur = state->pictures[state->current];
  MovableHandle next = state->pictures[(state->current + 1) % state->count];
  ScopedBlock small;
  if (state->phase == 0) {
    const int32_t p = std::max(100 - state->step * 100 / state->squeezeFrames, 4);
    small.handle = ResampleByPercent(cur, 100, p);
  } else if (state->phase == 1) {
    const int32_t p = std::max(100 - state->step * 100 / state->lineFrames, 4);
    small.handle = ResampleByPercent(cur, p, 8);
  } else {
    const SwellFactors swell = ReadSwellFactors();
    small.handle = MakeSwellDot(state->dotColours[state->current], state->height, state->dotFrames,
                                state->step, state->squareDot, &swell);
  }
  ScopedBlock frame(DuplicateHandle(next));
  {
    ScopedLock target(frame.handle), source(small.handle);
    if (!target || !source) return nullptr;
    OverlayCentred(target.bytes, source.bytes);
  }
  if (state->alpha) return frame.Release();
  // Without alpha the picture goes onto the background; when that can't be done it stays as it is.
  MovableHandle flat = FlattenOnBackground(frame.handle, state->background);
  if (!flat) return frame.Release();
  return flat;
}

void FreeUnpluggedTvState(UnpluggedTvState* state) {
  MovableFree(state->background);
  for (int32_t i = 0; i < kUnpluggedTvFills; ++i) {
    MovableFree(state->pictures[i]);
    MovableFree(state->fills[i]);
  }
  std::memset(state, 0, sizeof(*state));
}

int UnpluggedTvEffectPreview(BuildContext* context) {
  context->flags |= kBuildFlagPreview;
  UnpluggedTvState state{};
  context->params = &state;
  context->image = RenderUnpluggedTvText(context);
  context->params = nullptr;
  return 1;
}

int UnpluggedTvEffectBuild(BuildContext* context) {
  WindowHandle dialog = context->dialog;
  Checked(dialog, kIdAnimated);  // read, and of no effect: this build is always animated
  const int32_t pause = ReadDlgValue(dialog, kIdPause);
  const int32_t delay = ReadDlgValue(dialog, kIdDelay);
  UnpluggedTvState state{};
  context->params = &state;
  context->flags |= kBuildFlagBuild;
  int ok = 0;
  {
    ScopedBlock probe(RenderUnpluggedTvText(context));
    ScopedLock lock(probe.handle);
    if (lock) {
      state.width = reinterpret_cast<const BitmapInfoHeader*>(lock.bytes)->biWidth;
      state.height = reinterpret_cast<const BitmapInfoHeader*>(lock.bytes)->biHeight;
      ok = 1;
    }
  }
  context->flags &= ~kBuildFlagPreview;
  ok = ok && SetUpUnpluggedTv(context, &state, delay);
  const int32_t frames[3] = {state.squeezeFrames, state.lineFrames, state.dotFrames};
  const int32_t delays[3] = {state.squeezeDelay, state.lineDelay, state.dotDelay};
  const int32_t total = (frames[0] + frames[1] + frames[2]) * state.count;
  int32_t done = 0;
  for (state.current = 0; ok && state.current < state.count; ++state.current)
    for (state.phase = 0; ok && state.phase < 3; ++state.phase)
      for (state.step = 0; ok && state.step < frames[state.phase]; ++state.step) {
        MovableHandle image = MakeUnpluggedTvFrame(&state);
        const int32_t frameDelay =
            state.phase == 0 && state.step == 0 ? pause : delays[state.phase];
        ok = image && AppendEffectFrame(context, image, frameDelay);
        if (ok) ReportFrameProgress(context, done++, total);
      }
  FreeUnpluggedTvState(&state);
  context->params = nullptr;
  if (ok) return 1;
  MovableFree(context->image);
  context->image = nullptr;
  return 0;
}

int32_t UnpluggedTvEffectKeyColour(WindowHandle dialog, int32_t mode) {
  return PageBackgroundKeyColour(dialog, mode, kIds.background);
}
