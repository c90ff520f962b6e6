// The drawing layer's text operation on the GDI+ flat interface: family, font and graphics are
// made on the request's context for each call; the string is measured with an empty layout box
// and no format, then the mode measures, draws on the context, or draws into a 24-bit bitmap as
// glyphs or as a path.
#include "platform/win32/drawing_gdiplus_win32.h"
#include "text/drawing_layer.h"

using namespace Gdiplus;
using namespace Gdiplus::DllExports;

namespace {

constexpr int kTextBufferCharacters = 261;

// Converts 8-bit text into `buffer` and gives its character count (0 when conversion fails).
INT Widen(const char* text, WCHAR* buffer) {
  const int written = MultiByteToWideChar(CP_ACP, MB_PRECOMPOSED, text ? text : "", -1, buffer,
                                          kTextBufferCharacters);
  if (written < 1) {
    buffer[0] = 0;
    return 0;
  }
  return written - 1;
}

void MeasureAll(GpGraphics* graphics, const WCHAR* text, INT length, GpFont* font, int32_t* width,
                int32_t* height) {
  const RectF layout(0, 0, 0, 0);
  RectF box(0, 0, 0, 0);
  GdipMeasureString(graphics, text, length, font, &layout, nullptr, &box, nullptr, nullptr);
  *width = static_cast<int32_t>(box.Width);
  *height = static_cast<int32_t>(box.Height);
}

// The string's measure with its trailing spaces left out, as GDI+ measures with no format: the
// rest of the string, or, for spaces alone, the string padding. Wine's GDI+ counts trailing
// spaces; leaving them out here makes a lone space (the one appended to every text among them)
// measure as the padding there too, so that a text's width does not depend on whose GDI+ ran.
void Measure(GpGraphics* graphics, const WCHAR* text, INT length, GpFont* font, int32_t* width,
             int32_t* height) {
  INT kept = length;
  while (kept > 0 && text[kept - 1] == L' ') --kept;
  if (kept == length) {
    MeasureAll(graphics, text, length, font, width, height);
  } else if (kept > 0) {
    MeasureAll(graphics, text, kept, font, width, height);
  } else {
    // One and two spaces measure alike where trailing spaces are left out; where they are
    // counted, the second adds one space's advance, and twice the one less the two is still the
    // padding.
    const WCHAR spaces[2] = {L' ', L' '};
    int32_t one = 0, two = 0;
    MeasureAll(graphics, spaces, 1, font, &one, height);
    MeasureAll(graphics, spaces, 2, font, &two, height);
    *width = 2 * one - two;
  }
}

MovableHandle DrawGlyphs(const DrawRequest* r, const WCHAR* text, INT length, GpFont* font) {
  GdiplusCanvas canvas;
  OpenGdiplusCanvas(&canvas, r->measuredWidth, r->measuredHeight);
  GdipSetTextRenderingHint(canvas.graphics, r->antialias ? TextRenderingHintAntiAlias
                                                         : TextRenderingHintSingleBitPerPixel);
  GdipFlush(canvas.graphics, FlushIntentionFlush);
  GdipGraphicsClear(canvas.graphics, 0xFF000000);
  GpSolidFill* brush = nullptr;
  GdipCreateSolidFill(OpaqueArgb(r->textColour), &brush);
  const RectF origin(0, 0, 0, 0);
  GdipDrawString(canvas.graphics, text, length, font, &origin, nullptr, brush);
  GdipDeleteBrush(brush);
  return CloseGdiplusCanvas(&canvas);
}

MovableHandle DrawPath(const DrawRequest* r, const WCHAR* text, INT length, GpFontFamily* family) {
  // Neither cleared nor flushed: the new bitmap's black is the background.
  GdiplusCanvas canvas;
  OpenGdiplusCanvas(&canvas, r->measuredWidth, r->measuredHeight);
  GdipSetSmoothingMode(canvas.graphics, r->antialias ? SmoothingModeAntiAlias : SmoothingModeNone);
  GdipSetInterpolationMode(canvas.graphics, r->antialias ? InterpolationModeHighQualityBicubic
                                                         : InterpolationModeLowQuality);
  GpPath* path = nullptr;
  GdipCreatePath(FillModeWinding, &path);
  GpStringFormat* format = nullptr;
  GdipCreateStringFormat(0, 0, &format);
  const INT style = (r->bold ? FontStyleBold : 0) | (r->italic > 0 ? FontStyleItalic : 0) |
                    (r->underline > 0 ? FontStyleUnderline : 0);
  const REAL em =
      static_cast<REAL>(static_cast<int32_t>(static_cast<int64_t>(r->fontSize) * 88 / 100));
  const RectF origin(0, 0, 0, 0);
  GdipAddPathString(path, text, length, family, style, em, &origin, format);
  if (r->textMode == 3) {
    // The outline pen is built from the colour's two low bytes alone: ARGB 0xFFFFRRGG.
    const ARGB colour = 0xFFFF0000u | (r->textColour & 0xFF) << 8 | (r->textColour >> 8 & 0xFF);
    GpPen* pen = nullptr;
    GdipCreatePen1(colour, static_cast<REAL>(r->textPenWidth), UnitWorld, &pen);
    GdipSetPenLineJoin(pen, LineJoinRound);
    GdipDrawPath(canvas.graphics, pen, path);
    GdipDeletePen(pen);
  } else {
    GpSolidFill* brush = nullptr;
    GdipCreateSolidFill(OpaqueArgb(r->textColour), &brush);
    GdipFillPath(canvas.graphics, brush, path);
    GdipDeleteBrush(brush);
  }
  GdipDeleteStringFormat(format);
  GdipDeletePath(path);
  return CloseGdiplusCanvas(&canvas);
}

}  // namespace

uint64_t DrawingText(DrawRequest* r) {
  HDC dc = static_cast<HDC>(r->deviceContext);
  WCHAR buffer[kTextBufferCharacters];
  Widen(r->faceName, buffer);
  GpFontFamily* family = nullptr;
  GdipCreateFontFamilyFromName(buffer, nullptr, &family);
  GpFont* font = nullptr;
  if (r->logFont) GdipCreateFontFromLogfontA(dc, static_cast<LOGFONTA*>(r->logFont), &font);
  // A face GDI+ can't find by its description is taken from the font selected into the context,
  // so that measuring and drawing still share one face.
  if (!font) GdipCreateFontFromDC(dc, &font);
  GpGraphics* graphics = nullptr;
  GdipCreateFromHDC(dc, &graphics);
  const INT length = Widen(r->text, buffer);
  Measure(graphics, buffer, length, font, &r->measuredWidth, &r->measuredHeight);

  uint64_t result = 0;
  switch (r->textMode) {
    case 0:
      if (r->text && static_cast<uint8_t>(r->text[0]) > 32) {
        // A lone space measures as the string padding, so the advance keeps the glyph's width.
        const WCHAR space[2] = {L' ', 0};
        int32_t padding = 0, height = 0;
        Measure(graphics, space, 1, font, &padding, &height);
        r->measuredWidth -= padding;
      }
      result = 1;
      break;
    case 1: {
      GpGraphics* device = nullptr;
      GdipCreateFromHDC(dc, &device);
      GdipSetTextRenderingHint(device, TextRenderingHintSingleBitPerPixel);
      GpSolidFill* brush = nullptr;
      const ARGB colour =
          (OpaqueArgb(r->textColour) & 0x00FFFFFF) | static_cast<ARGB>(r->level & 0xFF) << 24;
      GdipCreateSolidFill(colour, &brush);
      const RectF at(static_cast<REAL>(r->textX), static_cast<REAL>(r->textY), 0, 0);
      GdipDrawString(device, buffer, length, font, &at, nullptr, brush);
      GdipDeleteBrush(brush);
      GdipDeleteGraphics(device);
      result = 1;
      break;
    }
    case 2:
      result = reinterpret_cast<uint64_t>(DrawGlyphs(r, buffer, length, font));
      break;
    case 3:
    case 4:
      result = reinterpret_cast<uint64_t>(DrawPath(r, buffer, length, family));
      break;
    default:
      break;
  }
  if (graphics) GdipDeleteGraphics(graphics);
  if (font) GdipDeleteFont(font);
  if (family) GdipDeleteFontFamily(family);
  return result;
}
