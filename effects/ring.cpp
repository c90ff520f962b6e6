// Ring's preparation, mask, renderer and frame loop. The character walk keeps the arc in single
// precision and the angles and positions in double, truncating as it goes; the font of each
// character is the layout font turned by its escapement, which is not reduced to one turn.
#include "effects/ring.h"

#include <cmath>
#include <cstdlib>
#include <cstring>

#include "controls/value_controls.h"
#include "documents/settings.h"
#include "effects/frame_loop.h"
#include "effects/frame_renderer.h"
#include "effects/key_colour.h"
#include "materials/material_button.h"
#include "platform/surface.h"
#include "shell/packed_dib.h"
#include "text/compositing.h"
#include "text/text_layout.h"
#include "text/text_mask.h"

namespace {

// Page 7401.
constexpr int32_t kIdFill = 134, kIdShadow = 136, kIdBackground = 138, kIdOutline = 140,
                  kIdFillOpacity = 142, kIdShadowOpacity = 144, kIdSoftness = 146,
                  kIdShadowOffset = 148, kIdShadowDirection = 150, kIdShadowEnable = 152,
                  kIdOutlineEnable = 153, kIdRotation = 154, kIdRadius = 156, kIdStartAngle = 158;
// The main dialog's.
constexpr int32_t kIdDelay = 11, kIdAnimated = 22, kIdAntialias = 51, kIdText = 52,
                  kIdFontName = 53, kIdBold = 54, kIdItalic = 55, kIdFontSize = 57, kIdPad = 59,
                  kIdCharacterSpace = 61, kIdAlphaTransparency = 62, kIdAlphaBackground = 63;

int32_t Checked(WindowHandle dialog, int32_t id) {
  return DialogGetCheck(DialogItem(dialog, id)) ? 1 : 0;
}

Material* LockMaterial(WindowHandle dialog, int32_t id) {
  return MaterialForButton(DialogItem(dialog, id));
}

void UnlockMaterial(WindowHandle dialog, int32_t id) {
  MovableHandle handle = ButtonMaterialHandle(DialogItem(dialog, id));
  if (handle) MovableUnlock(handle);
}

// The 24-bit surface picture's blue bytes as a new 8-bit mask, or null.
MovableHandle SurfaceToMask(MovableHandle picture) {
  ScopedLock source(picture);
  if (!source) return nullptr;
  const BitmapInfoHeader* h = reinterpret_cast<const BitmapInfoHeader*>(source.bytes);
  MovableHandle mask = CreateMask(h->biWidth, h->biHeight);
  ScopedLock target(mask);
  if (!target) return MovableFree(mask);
  for (int32_t y = 0; y < h->biHeight; ++y)
    for (int32_t x = 0; x < h->biWidth; ++x)
      WriteDibPixel(target.bytes, x, y, (ReadDibPixel(source.bytes, x, y) >> 16) & 0xFF);
  return mask;
}

// Everything one frame reads besides the params.
struct RingFrameInput {
  int32_t pad, soft, offset, direction, shadowOn, outlineOn, alpha, alphaBackground;
  uint32_t grey, outlineColour;
};

// The shadow's start for a direction: the ring itself never moves.
void ShadowStart(const RingFrameInput& in, int32_t* x, int32_t* y) {
  *x = in.pad;
  *y = in.pad;
  if (in.direction == 2 || in.direction == 3 || in.direction == 7) *x += in.offset;
  if (in.direction == 5 || in.direction == 6 || in.direction == 7) *y += in.offset;
}

// Layers the ring onto `canvas` (and `plane` when there is one). 1, or 0 on failure.
int LayerRing(const RingParams* p, const RingFrameInput& in, Material* fill, Material* shadow,
              MovableHandle canvas, MovableHandle plane, int32_t width, int32_t height) {
  if (in.shadowOn) {
    ScopedBlock sharp(RenderRingMask(p, p->shadowOpacity));
    if (!sharp.handle) return 0;
    MovableHandle wide = WidenMask(sharp.handle, width, height, 0);
    if (!wide) return 0;
    if (!SoftenShadowMask(&wide, in.soft)) {
      MovableFree(wide);
      return 0;
    }
    ScopedBlock mask(wide), picture(MaterialFill(shadow, width, height));
    ScopedLock c(canvas), a(plane), m(mask.handle), s(picture.handle);
    if (!c || !m || !s || (plane && !a)) return 0;
    int32_t sx, sy;
    ShadowStart(in, &sx, &sy);
    CompositeShadowLayer(c.bytes, a.bytes, m.bytes, s.bytes, sx, sy);
  }
  {
    ScopedBlock mask(RenderRingMask(p, p->fillOpacity));
    ScopedBlock picture(MaterialFill(fill, p->ringWidth, p->ringHeight));
    ScopedLock c(canvas), a(plane), m(mask.handle), f(picture.handle);
    if (!c || !m || !f || (plane && !a)) return 0;
    CompositeFillLayer(c.bytes, a.bytes, m.bytes, f.bytes);
  }
  if (in.outlineOn) {
    ScopedBlock mask(RenderRingMask(p, 255));
    ScopedBlock ring(mask.handle ? DilateMask(mask.handle) : nullptr);
    ScopedLock c(canvas), a(plane), m(mask.handle), r(ring.handle);
    if (!c || !m || !r || (plane && !a)) return 0;
    const BitmapInfoHeader* h = reinterpret_cast<const BitmapInfoHeader*>(m.bytes);
    for (int32_t y = 0; y < h->biHeight; ++y)
      for (int32_t x = 0; x < h->biWidth; ++x) {
        const uint32_t inside = ReadDibPixel(m.bytes, x, y);
        if (inside) WriteDibPixel(r.bytes, x, y, 255 - inside);
      }
    CompositeOutlineLayer(c.bytes, a.bytes, r.bytes, in.outlineColour);
  }
  return 1;
}

MovableHandle RenderRingFrame(BuildContext* context) {
  const RingParams* p = static_cast<const RingParams*>(context->params);
  WindowHandle dialog = context->dialog;
  if (!p || p->textLength < 1) return nullptr;
  RingFrameInput in{};
  in.soft = ReadDlgValue(dialog, kIdSoftness);
  in.offset = ReadDlgValue(dialog, kIdShadowOffset);
  in.shadowOn = Checked(dialog, kIdShadowEnable);
  in.outlineOn = Checked(dialog, kIdOutlineEnable);
  in.pad = TextPadding(ReadDlgValue(dialog, kIdPad), in.soft, in.outlineOn);
  if (!DialogPickerValue(DialogItem(dialog, kIdShadowDirection), &in.direction)) in.direction = 0;
  in.alpha = Checked(dialog, kIdAlphaTransparency);
  in.alphaBackground = Checked(dialog, kIdAlphaBackground);
  const int32_t* grey = SettingInteger("AlphaGreyBack");
  in.grey = grey ? static_cast<uint32_t>(*grey) : 0x7F7F7F;
  int translated;
  in.outlineColour = GetDialogItemInt(dialog, kIdOutline, &translated, 0);
  const int32_t extra = in.shadowOn ? in.offset : 0;
  const int32_t width = p->ringWidth + 2 * in.pad + extra;
  const int32_t height = p->ringHeight + 2 * in.pad + extra;

  Material* fill = LockMaterial(dialog, kIdFill);
  Material* shadow = LockMaterial(dialog, kIdShadow);
  Material* background = LockMaterial(dialog, kIdBackground);
  MovableHandle result = nullptr;
  if (fill && shadow && background) {
    MovableHandle canvas = in.alpha && in.alphaBackground
                               ? FilledImage(0, 0, width, height, in.grey)
                               : MaterialFill(background, width, height);
    MovableHandle plane =
        !context->sample && in.alpha && canvas ? CreateMask(width, height) : nullptr;
    if (canvas && (plane || context->sample || !in.alpha) &&
        LayerRing(p, in, fill, shadow, canvas, plane, width, height)) {
      result = FinishTextFrame(canvas, plane);
    } else {
      MovableFree(canvas);
      MovableFree(plane);
    }
  }
  if (fill) UnlockMaterial(dialog, kIdFill);
  if (shadow) UnlockMaterial(dialog, kIdShadow);
  if (background) UnlockMaterial(dialog, kIdBackground);
  return result;
}

}  // namespace

int PrepareRing(WindowHandle dialog, RingParams* p) {
  std::memset(p, 0, sizeof(*p));
  p->startAngle = ReadDlgValue(dialog, kIdStartAngle);
  char rotation[32];
  DialogGetText(DialogItem(dialog, kIdRotation), rotation, sizeof rotation);
  p->stepAngle = static_cast<int32_t>(std::strtol(rotation, nullptr, 10));
  p->radius = ReadDlgValue(dialog, kIdRadius);
  p->fontSize = ReadDlgValue(dialog, kIdFontSize);
  p->bold = Checked(dialog, kIdBold);
  p->italic = Checked(dialog, kIdItalic);
  p->antialias = Checked(dialog, kIdAntialias);
  p->characterSpace = ReadDlgValue(dialog, kIdCharacterSpace);
  p->fillOpacity = ReadDlgValue(dialog, kIdFillOpacity);
  p->shadowOpacity = ReadDlgValue(dialog, kIdShadowOpacity);
  DialogGetText(DialogItem(dialog, kIdFontName), p->faceName, sizeof p->faceName);
  std::unique_ptr<char[]> text;
  if (!ReadWholeText(DialogItem(dialog, kIdText), &text, &p->textLength)) return 0;
  p->text = CopyToMovableBlock(text.get(), static_cast<size_t>(p->textLength) + 16);
  p->advances = MovableAlloc((static_cast<size_t>(p->textLength) + 16) * sizeof(uint32_t));
  if (!p->text || !p->advances ||
      !CreateLayoutFont(dialog, p->faceName, p->fontSize, p->bold, p->italic, &p->font)) {
    ReleaseRing(p);
    return 0;
  }
  TextSize size{};
  {
    ScopedLock t(p->text), a(p->advances);
    if (!t || !a) {
      ReleaseRing(p);
      return 0;
    }
    std::memset(a.bytes, 0, (static_cast<size_t>(p->textLength) + 16) * sizeof(uint32_t));
    MeasureText(p->font.deviceContext, nullptr, reinterpret_cast<const char*>(t.bytes), &size,
                p->bold, p->italic, p->fontSize, p->faceName, p->characterSpace, p->font.logFont,
                reinterpret_cast<uint32_t*>(a.bytes));
  }
  p->textHeight = size.height;
  p->ringWidth = p->ringHeight = (p->textHeight + p->radius) * 2;
  return 1;
}

void ReleaseRing(RingParams* p) {
  DeleteLayoutFont(&p->font);
  MovableFree(p->text);
  MovableFree(p->advances);
  p->text = p->advances = nullptr;
}

MovableHandle RenderRingMask(const RingParams* p, int32_t level) {
  ScopedLock t(p->text), a(p->advances);
  if (!t || !a) return nullptr;
  RenderSurface surface;
  if (!CreateRenderSurface(p->ringWidth, p->ringHeight, &surface)) return nullptr;  // black
  const double cx = static_cast<float>(p->ringWidth * 0.5f);
  const double cy = static_cast<float>(p->ringHeight * 0.5f);
  const float circumference = static_cast<float>(p->radius * 6.283185307179586);
  const double dy = (cy - p->radius) - cy;
  const uint32_t grey = static_cast<uint32_t>(level & 0xFF) * 0x010101u;
  const uint32_t* advances = reinterpret_cast<const uint32_t*>(a.bytes);
  float arc = 0.0f;
  int ok = 1;
  for (int32_t i = 0; ok && i < p->textLength; ++i) {
    const int32_t angle = p->startAngle -
                          static_cast<int32_t>(std::trunc((arc / circumference) * -360.0)) +
                          p->currentAngle;
    const double theta = angle * 0.017453292519943295;
    const int32_t escapement = static_cast<int32_t>(std::trunc(3600.0 - angle * 10.0));
    const int32_t x = static_cast<int32_t>(std::trunc(-dy * std::sin(theta) + cx + 0.5));
    const int32_t y = static_cast<int32_t>(std::trunc(dy * std::cos(theta) + cy + 0.5));
    ok = SurfaceRotatedChar(&surface, &p->font, escapement, p->antialias, x, y, t.bytes[i], grey);
    arc += static_cast<float>(advances[i]);
  }
  ReleaseRenderSurface(&surface, kSurfaceKeepImage);
  ScopedBlock picture(surface.handle);
  return ok ? SurfaceToMask(picture.handle) : nullptr;
}

int32_t RingFrameCount(int32_t stepAngle) {
  return stepAngle ? 360 / std::abs(stepAngle) : 1;
}

int RingEffectPreview(BuildContext* context) {
  RingParams params;
  if (!PrepareRing(context->dialog, &params)) return 0;
  context->params = &params;
  context->flags |= kBuildFlagPreview;
  context->image = RenderRingFrame(context);
  context->params = nullptr;
  ReleaseRing(&params);
  return 1;
}

int RingEffectBuild(BuildContext* context) {
  WindowHandle dialog = context->dialog;
  const int32_t animated = Checked(dialog, kIdAnimated);
  const int32_t delay = ReadDlgValue(dialog, kIdDelay);
  RingParams params;
  int ok = PrepareRing(dialog, &params);
  if (ok) {
    context->params = &params;
    context->flags |= kBuildFlagBuild;
    const int32_t count = animated ? RingFrameCount(params.stepAngle) : 1;
    for (int32_t i = 0; ok && i < count; ++i) {
      MovableHandle image = RenderRingFrame(context);
      ok = image && AppendEffectFrame(context, image, delay);
      if (ok && animated) ReportFrameProgress(context, i, count);
      params.currentAngle += params.stepAngle;
    }
    context->params = nullptr;
    ReleaseRing(&params);
  }
  if (ok) return 1;
  MovableFree(context->image);
  context->image = nullptr;
  return 0;
}

int32_t RingEffectKeyColour(WindowHandle dialog, int32_t mode) {
  return PageBackgroundKeyColour(dialog, mode, kIdBackground);
}
