// The drawing layer's text operation on FreeType. Measuring follows GDI+'s string measure: the box
// is the advances of the string without its trailing spaces, plus a padding of a sixth of the em
// on each side, and as high as the font's cell; so a lone space measures as the padding alone.
// Drawing puts the first glyph's origin one padding in from the left and the baseline at the
// ascent, unhinted, with FreeType's coverage (antialiased) or its one-bit rendering.
#include <cmath>
#include <cstring>

#include "platform/posix/font_face_posix.h"
#include "platform/posix/drawing_posix.h"
#include "shell/packed_dib.h"
#include "text/drawing_layer.h"

namespace {

// The font the request names: its description, else its context, else its face and size fields.
// `owned` receives a font opened here, for the caller to close.
PosixFont* RequestFont(const DrawRequest* request, PosixFont** owned) {
  *owned = nullptr;
  // As on Windows, a description names the font even when a context is given; the context's own
  // description, which is what callers pass, needs no second font.
  PosixFont* font = PosixFontFromContext(request->deviceContext);
  if (font && (!request->logFont || request->logFont == &font->description)) return font;
  FontDescription d = {};
  if (request->logFont) {
    d = *static_cast<const FontDescription*>(request->logFont);
    d.faceName[kFaceNameBytes - 1] = 0;
  } else {
    d.height = request->fontSize;
    d.weight = request->bold ? kFontWeightBold : kFontWeightNormal;
    d.italic = request->italic > 0;
    if (request->faceName) std::strncpy(d.faceName, request->faceName, kFaceNameBytes - 1);
  }
  *owned = OpenPosixFont(&d);
  return *owned;
}

double GlyphAdvance(PosixFont* font, uint8_t byte) {
  FT_Set_Transform(font->face, nullptr, nullptr);
  if (FT_Load_Char(font->face, CodePageCharacter(byte), FT_LOAD_NO_HINTING | FT_LOAD_NO_BITMAP)) {
    return 0.0;
  }
  return font->face->glyph->linearHoriAdvance / 65536.0;
}

double Padding(const PosixFont* font) {
  return font->emPixels / 6.0;
}

void MeasureString(PosixFont* font, const char* text, int32_t* width, int32_t* height) {
  const size_t length = text ? std::strlen(text) : 0;
  if (!length) {
    *width = *height = 0;
    return;
  }
  size_t measured = length;
  while (measured > 0 && text[measured - 1] == ' ') --measured;
  double total = 2.0 * Padding(font);
  for (size_t i = 0; i < measured; ++i) total += GlyphAdvance(font, static_cast<uint8_t>(text[i]));
  *width = static_cast<int32_t>(total);
  *height = static_cast<int32_t>(font->description.height);
}

// Draws the rendered glyph in the slot at (left, top), each channel of `colour` scaled by the
// coverage, keeping the brighter of it and what is there.
void BlitGlyph(void* image, FT_GlyphSlot slot, int32_t left, int32_t top, uint32_t colour) {
  const FT_Bitmap& bitmap = slot->bitmap;
  for (uint32_t row = 0; row < bitmap.rows; ++row) {
    const uint8_t* line = bitmap.buffer + static_cast<ptrdiff_t>(row) * bitmap.pitch;
    for (uint32_t column = 0; column < bitmap.width; ++column) {
      uint32_t coverage;
      if (bitmap.pixel_mode == FT_PIXEL_MODE_MONO) {
        coverage = (line[column >> 3] >> (7 - (column & 7))) & 1 ? 255 : 0;
      } else {
        coverage = line[column];
      }
      if (!coverage) continue;
      const int32_t x = left + static_cast<int32_t>(column), y = top + static_cast<int32_t>(row);
      const uint32_t old = ReadDibPixel(image, x, y);
      uint32_t value = 0;
      for (int shift = 0; shift < 24; shift += 8) {
        const uint32_t ink = (((colour >> shift) & 0xFF) * coverage + 127) / 255;
        const uint32_t was = (old >> shift) & 0xFF;
        value |= (ink > was ? ink : was) << shift;
      }
      WriteDibPixel(image, x, y, value);
    }
  }
}

MovableHandle DrawString(PosixFont* font, const char* text, int32_t width, int32_t height,
                         int32_t antialias, uint32_t colour) {
  if (width < 1 || height < 1) return nullptr;
  ScopedBlock image(CreatePackedDib(width, height, nullptr, 24));
  ScopedLock lock(image.handle);
  if (!lock) return nullptr;
  const FT_Int32 load = FT_LOAD_NO_HINTING | FT_LOAD_NO_BITMAP |
                        (antialias ? FT_LOAD_TARGET_NORMAL : FT_LOAD_TARGET_MONO);
  const FT_Render_Mode mode = antialias ? FT_RENDER_MODE_NORMAL : FT_RENDER_MODE_MONO;
  double penX = Padding(font);
  const double baseline = font->ascent;
  const double baseRow = std::floor(baseline);
  for (const char* p = text; *p; ++p) {
    const uint8_t byte = static_cast<uint8_t>(*p);
    const double column = std::floor(penX);
    // The fraction of a pixel goes to FreeType as a shift, so glyphs land where they would on a
    // continuous line.
    FT_Vector shift = {static_cast<FT_Pos>(std::lround((penX - column) * 64)),
                       -static_cast<FT_Pos>(std::lround((baseline - baseRow) * 64))};
    FT_Set_Transform(font->face, nullptr, &shift);
    if (!FT_Load_Char(font->face, CodePageCharacter(byte), load) &&
        !FT_Render_Glyph(font->face->glyph, mode)) {
      FT_GlyphSlot slot = font->face->glyph;
      BlitGlyph(lock.bytes, slot, static_cast<int32_t>(column) + slot->bitmap_left,
                static_cast<int32_t>(baseRow) - slot->bitmap_top, colour);
    }
    penX += GlyphAdvance(font, byte);
  }
  FT_Set_Transform(font->face, nullptr, nullptr);
  return image.Release();
}

}  // namespace

uint64_t DrawingText(DrawRequest* request) {
  PosixFont* owned = nullptr;
  PosixFont* font = RequestFont(request, &owned);
  if (!font) {
    request->measuredWidth = request->measuredHeight = 0;
    return 0;
  }
  const char* text = request->text ? request->text : "";
  MeasureString(font, text, &request->measuredWidth, &request->measuredHeight);
  uint64_t result = 0;
  switch (request->textMode) {
    case 0:
      if (static_cast<uint8_t>(text[0]) > 32) {
        int32_t space = 0, spaceHeight = 0;
        MeasureString(font, " ", &space, &spaceHeight);
        request->measuredWidth -= space;
      }
      result = 1;
      break;
    case 1:
      // Outside Windows the context is the font itself and has no pixels: nothing is drawn, and
      // 0 says so. No caller draws on a device.
      break;
    case 2:
      result = reinterpret_cast<uint64_t>(DrawString(font, text, request->measuredWidth,
                                                     request->measuredHeight, request->antialias,
                                                     request->textColour));
      break;
    case 3:
    case 4:
      result = reinterpret_cast<uint64_t>(DrawTextPath(request));
      break;
    default:
      break;
  }
  ClosePosixFont(owned);
  return result;
}
