// The POSIX font behind LayoutFont and the drawing layer's text: a FreeType face sized so that its
// Windows ascent plus descent fill the cell height, as GDI sizes a font of positive height.
// Metrics are kept unrounded in pixels; tmHeight rounds ascent and descent separately.
#pragma once

#include <ft2build.h>
#include FT_FREETYPE_H

#include "platform/font.h"

struct PosixFont {
  uint32_t magic;  // kPosixFontMagic while alive
  FT_Face face;
  FontDescription description;
  double emPixels;     // the em square in pixels
  double ascent;       // pixels from the top of the cell to the baseline
  int32_t cellHeight;  // tmHeight
};

constexpr uint32_t kPosixFontMagic = 0x464D4735;  // "5GMF"

// Opens the installed face that best matches the description (see font.h for the fallback) and
// sizes it. Returns a new font, or null; free it with ClosePosixFont.
PosixFont* OpenPosixFont(const FontDescription* description);
void ClosePosixFont(PosixFont* font);
// The font a context handle stands for, or null when it is not one.
PosixFont* PosixFontFromContext(void* deviceContext);

// The character of a byte of the 8-bit code page (Windows-1252).
uint32_t CodePageCharacter(uint8_t byte);
