// Text masks: 8-bit grey Packed DIBs whose pixels are the text's coverage, laid out by the system
// one character at a time from a table of advances measured once per frame. Characters are drawn
// and measured through the drawing layer's text operation; neighbours merge by maximum.
// Coordinates run from the top-left corner; every picture returned is the caller's to free.
#pragma once

#include <cstdint>

#include "platform/dialog.h"
#include "platform/memory.h"
#include "text/glyph_cache.h"

struct TextSize {
  int32_t width;   // the sum of the advances
  int32_t height;  // the font's cell height
};

// Whether accented letters are measured as their plain letters (the configuration's
// AccentCompensation, 1 unless the configuration says otherwise).
int32_t AccentCompensation();
void SetAccentCompensation(int32_t value);
// The plain letter an accented byte of the 8-bit code page is measured as, or the byte itself.
uint8_t FoldAccent(uint8_t byte);

// Measures each byte of `text` on its own and stores width * spacePercent / 100 in `advances`
// (null allowed; one entry per byte, left alone where measuring fails), their sum and the cell
// height of `deviceContext` in `size`. `context` is the caller's build context, not read here.
// Returns 1.
int MeasureText(void* deviceContext, const void* context, const char* text, TextSize* size,
                int32_t bold, int32_t italic, int32_t fontSize, const char* faceName,
                int32_t spacePercent, void* logFont, uint32_t* advances);

// A new width by height mask with `text` drawn at grey `level`, its first character at (x, y) and
// each next one `advances` further right (all at x when it is null); or null. With a cache, glyphs
// already drawn at this level are reused, giving the same mask.
MovableHandle RenderTextMask(WindowHandle window, void* deviceContext, int32_t x, int32_t y,
                             const char* text, int32_t width, int32_t height, int32_t level,
                             int32_t antialias, int32_t fontSize, int32_t bold, int32_t italic,
                             const char* faceName, const uint32_t* advances, void* logFont,
                             GlyphCache* cache = nullptr);

// A one-pixel ring around the text, width + 4 wide and shifted one column right (read it at
// x + 1); inside the text it is 0, on antialiased edges the complement of their coverage. Null
// on failure.
MovableHandle RenderOutlineMask(WindowHandle window, void* deviceContext, int32_t x, int32_t y,
                                const char* text, int32_t width, int32_t height, int32_t antialias,
                                int32_t fontSize, int32_t bold, int32_t italic,
                                const char* faceName, const uint32_t* advances, void* logFont,
                                GlyphCache* cache = nullptr);

// The 3 by 3 maximum of an 8-bit mask, as a new mask of the same size, or null.
MovableHandle DilateMask(MovableHandle mask);
// A new zeroed picture of width by height with the depth and table of `image`, holding its pixels
// moved `shift` columns right; or null.
MovableHandle WidenMask(MovableHandle image, int32_t width, int32_t height, int32_t shift);
// A new 32-bit picture of the image's colours with the mask's low bytes as alpha (255 where the
// mask is smaller), or null. Neither input is freed.
MovableHandle CombineAlpha(MovableHandle image, MovableHandle mask);
// A new 24-bit picture of right - left by bottom - top pixels, all `colour`, or null.
MovableHandle FilledImage(int32_t left, int32_t top, int32_t right, int32_t bottom,
                          uint32_t colour);
