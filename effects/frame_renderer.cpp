// The steps of the common frame renderer. Layers stack in a fixed order (background, shadow,
// fill, outline); opacity is the level at which a mask is drawn, not a pass of its own. The
// materials are filled at the whole canvas size, the fill anchored at the canvas corner and the
// shadow at the shadow's place, so that a shadow's texture moves with the text.
#include "effects/frame_renderer.h"

#include <algorithm>
#include <cstring>
#include <new>

#include "controls/value_controls.h"
#include "documents/settings.h"
#include "materials/material_button.h"
#include "text/compositing.h"
#include "text/text_mask.h"

namespace {

// The main dialog's controls that every frame reads.
constexpr int32_t kIdAntialias = 51, kIdText = 52, kIdFontName = 53, kIdBold = 54, kIdItalic = 55,
                  kIdFontSize = 57, kIdPad = 59, kIdCharacterSpace = 61, kIdAlphaTransparency = 62,
                  kIdAlphaBackground = 63;

int Checked(WindowHandle dialog, int32_t id) {
  return DialogGetCheck(DialogItem(dialog, id));
}

// The frame's mask warp applied to a mask just drawn, which it replaces; null stays null.
MovableHandle WarpLayerMask(const TextFrame* frame, MovableHandle mask) {
  if (!mask || !frame->maskWarp) return mask;
  MovableHandle warped = frame->maskWarp(mask, frame->maskWarpContext);
  MovableFree(mask);
  return warped;
}

}  // namespace

int ReadWholeText(WindowHandle control, std::unique_ptr<char[]>* text, int* length) {
  const int n = std::max(0, DialogGetTextLength(control));
  text->reset(new (std::nothrow) char[static_cast<size_t>(n) + 16]);
  if (!*text) return 0;
  const int read = DialogGetText(control, text->get(), n + 16);
  if (length) *length = read;
  return 1;
}

int ReadFrameSettings(WindowHandle dialog, const FramePageIds* ids, int32_t sample,
                      FrameSettings* settings, FrameTexts* text) {
  std::memset(settings, 0, sizeof(*settings));
  if (!ReadWholeText(DialogItem(dialog, kIdText), &text->text)) return 0;
  DialogGetText(DialogItem(dialog, kIdFontName), text->faceName, sizeof text->faceName);
  TextLayoutInput& t = settings->text;
  t.text = text->text.get();
  t.faceName = text->faceName;
  t.fontSize = ReadDlgValue(dialog, kIdFontSize);
  t.bold = Checked(dialog, kIdBold);
  t.italic = Checked(dialog, kIdItalic);
  t.antialias = Checked(dialog, kIdAntialias);
  t.spacePercent = ReadDlgValue(dialog, kIdCharacterSpace);
  t.padding = ReadDlgValue(dialog, kIdPad);
  t.softness = ReadDlgValue(dialog, ids->softness);
  t.outlineEnabled = Checked(dialog, ids->outlineEnable);
  t.shadowEnabled = Checked(dialog, ids->shadowEnable);
  t.shadowOffset = ReadDlgValue(dialog, ids->shadowOffset);
  t.useGlyphCache = 1;  // the shadow, fill and outline masks draw each glyph once
  settings->alphaTransparency = Checked(dialog, kIdAlphaTransparency);
  settings->alphaBackground = Checked(dialog, kIdAlphaBackground);
  const int32_t* grey = SettingInteger("AlphaGreyBack");
  settings->alphaGreyBack = grey ? static_cast<uint32_t>(*grey) : 0x7F7F7F;
  settings->fillOpacity = ids->fillOpacity ? ReadDlgValue(dialog, ids->fillOpacity) : 255;
  settings->shadowOpacity = ReadDlgValue(dialog, ids->shadowOpacity);
  int32_t direction = 0;
  if (!DialogPickerValue(DialogItem(dialog, ids->shadowDirection), &direction)) direction = 0;
  settings->shadowDirection = direction;
  int translated;
  settings->outlineColour = GetDialogItemInt(dialog, ids->outline, &translated, 0);
  settings->sample = sample;
  settings->fill = ids->fill ? MaterialForButton(DialogItem(dialog, ids->fill)) : nullptr;
  settings->shadow = ids->shadow ? MaterialForButton(DialogItem(dialog, ids->shadow)) : nullptr;
  WindowHandle background = DialogItem(dialog, ids->background);
  const bool plain = DialogControlKind(background) == kControlColourButton;
  if (plain)
    settings->backgroundColour = GetDialogItemInt(dialog, ids->background, &translated, 0);
  else
    settings->background = MaterialForButton(background);
  if ((settings->fill || !ids->fill) && (settings->shadow || !ids->shadow) &&
      (plain || settings->background))
    return 1;
  ReleaseFrameSettings(dialog, ids);
  return 0;
}

void ReleaseFrameSettings(WindowHandle dialog, const FramePageIds* ids) {
  for (int32_t id : {ids->fill, ids->shadow, ids->background}) {
    if (!id) continue;
    WindowHandle button = DialogItem(dialog, id);
    if (DialogControlKind(button) == kControlColourButton) continue;  // holds its setting
    MovableHandle handle = ButtonMaterialHandle(button);
    if (handle) MovableUnlock(handle);
  }
}

int BeginTextFrame(WindowHandle window, const FrameSettings* settings, TextFrame* frame) {
  std::memset(frame, 0, sizeof(*frame));
  frame->settings = settings;
  frame->shifts = ShadowPlacement(settings->shadowDirection, settings->text.shadowOffset);
  if (!BeginTextLayout(window, &settings->text, &frame->layout)) return 0;
  frame->width = frame->layout.canvasWidth;
  frame->height = frame->layout.canvasHeight;
  return 1;
}

int BackgroundStep(TextFrame* frame) {
  const FrameSettings* s = frame->settings;
  if (s->alphaTransparency && s->alphaBackground)
    frame->canvas = FilledImage(0, 0, frame->width, frame->height, s->alphaGreyBack);
  else if (s->background)
    frame->canvas = CachedMaterialFill(s->fills, s->background, frame->width, frame->height);
  else
    frame->canvas = FilledImage(0, 0, frame->width, frame->height, s->backgroundColour);
  return frame->canvas != nullptr;
}

int MaterialStep(TextFrame* frame) {
  const FrameSettings* s = frame->settings;
  if (!s->fill) return 0;
  frame->fillImage = CachedMaterialFill(s->fills, s->fill, frame->width, frame->height);
  if (!frame->fillImage) return 0;
  return ShadowMaterialStep(frame);
}

int ShadowMaterialStep(TextFrame* frame) {
  const FrameSettings* s = frame->settings;
  if (s->text.shadowEnabled) {
    if (!s->shadow) return 0;
    frame->shadowImage = CachedMaterialFill(s->fills, s->shadow, frame->width, frame->height);
    if (!frame->shadowImage) return 0;
  }
  return 1;
}

int AlphaPlaneStep(TextFrame* frame) {
  if (frame->settings->sample || !frame->settings->alphaTransparency) return 1;
  frame->alphaPlane = CreateMask(frame->width, frame->height);
  return frame->alphaPlane != nullptr;
}

int ShadowStep(TextFrame* frame, int32_t x, int32_t y) {
  const FrameSettings* s = frame->settings;
  if (!s->text.shadowEnabled) return 1;
  const int32_t xs = x + frame->layout.pad + frame->shifts.shadowX;
  const int32_t ys = y + frame->layout.pad + frame->shifts.shadowY;
  MovableHandle mask =
      WarpLayerMask(frame, LayoutTextMask(&frame->layout, xs, ys, s->shadowOpacity));
  if (!mask) return 0;
  if (!SoftenShadowMask(&mask, s->text.softness)) {
    MovableFree(mask);
    return 0;
  }
  ScopedBlock owner(mask);
  ScopedLock canvas(frame->canvas), plane(frame->alphaPlane), m(mask), shadow(frame->shadowImage);
  if (!canvas || !m || !shadow || (frame->alphaPlane && !plane)) return 0;
  CompositeShadowLayer(canvas.bytes, plane.bytes, m.bytes, shadow.bytes, xs, ys);
  return 1;
}

int FillStep(TextFrame* frame, int32_t x, int32_t y) {
  const int32_t xt = x + frame->layout.pad + frame->shifts.textX;
  const int32_t yt = y + frame->layout.pad + frame->shifts.textY;
  ScopedBlock mask(
      WarpLayerMask(frame, LayoutTextMask(&frame->layout, xt, yt, frame->settings->fillOpacity)));
  ScopedLock canvas(frame->canvas), plane(frame->alphaPlane), m(mask.handle),
      fill(frame->fillImage);
  if (!canvas || !m || !fill || (frame->alphaPlane && !plane)) return 0;
  CompositeFillLayer(canvas.bytes, plane.bytes, m.bytes, fill.bytes);
  return 1;
}

int OutlineStep(TextFrame* frame, int32_t x, int32_t y) {
  if (!frame->settings->text.outlineEnabled) return 1;
  const int32_t xt = x + frame->layout.pad + frame->shifts.textX;
  const int32_t yt = y + frame->layout.pad + frame->shifts.textY;
  ScopedBlock ring(WarpLayerMask(frame, LayoutOutlineMask(&frame->layout, xt, yt)));
  ScopedLock canvas(frame->canvas), plane(frame->alphaPlane), m(ring.handle);
  if (!canvas || !m || (frame->alphaPlane && !plane)) return 0;
  if (!frame->outlineImage) {
    CompositeOutlineLayer(canvas.bytes, plane.bytes, m.bytes, frame->settings->outlineColour);
    return 1;
  }
  ScopedLock picture(frame->outlineImage);
  if (!picture) return 0;
  CompositeOutlinePicture(canvas.bytes, plane.bytes, m.bytes, picture.bytes);
  return 1;
}

MovableHandle FinishFrameStep(TextFrame* frame) {
  MovableHandle canvas = frame->canvas, plane = frame->alphaPlane;
  frame->canvas = nullptr;
  frame->alphaPlane = nullptr;
  return FinishTextFrame(canvas, plane);
}

void EndTextFrame(TextFrame* frame) {
  MovableFree(frame->canvas);
  MovableFree(frame->fillImage);
  MovableFree(frame->shadowImage);
  MovableFree(frame->alphaPlane);
  MovableFree(frame->outlineImage);
  EndTextLayout(&frame->layout);
  std::memset(frame, 0, sizeof(*frame));
}

MovableHandle RenderStandardFrame(WindowHandle window, const FrameSettings* settings, int32_t x,
                                  int32_t y) {
  TextFrame frame;
  MovableHandle result = nullptr;
  if (BeginTextFrame(window, settings, &frame) && BackgroundStep(&frame) && MaterialStep(&frame) &&
      AlphaPlaneStep(&frame) && ShadowStep(&frame, x, y) && FillStep(&frame, x, y) &&
      OutlineStep(&frame, x, y))
    result = FinishFrameStep(&frame);
  EndTextFrame(&frame);
  return result;
}
