// The font port: the one font of a frame's text layout, made from a face name, a cell height in
// pixels, a weight and an italic flag, and handed to the drawing layer as a device context and a
// LOGFONT-like description. On Windows these are a screen DC with the GDI font selected and the
// font's LOGFONTA; elsewhere both point into the POSIX font, found through fontconfig. A face that
// is not installed falls back to "DejaVu Sans" (fonts-dejavu-core), the face Wine also substitutes.
#pragma once

#include <cstdint>

#include "platform/dialog.h"

constexpr int32_t kFontWeightNormal = 400;
constexpr int32_t kFontWeightBold = 700;
constexpr int32_t kFaceNameBytes = 32;  // LOGFONT's face field, terminator included

// The portable part of a LOGFONT: enough to make the same font again.
struct FontDescription {
  int32_t height;  // positive: the cell height in pixels
  int32_t weight;  // 400 or 700
  int32_t italic;  // nonzero for italic
  char faceName[kFaceNameBytes];
};

struct LayoutFont {
  void* deviceContext;  // DrawRequest.deviceContext: the context the font is selected into
  void* logFont;        // DrawRequest.logFont: LOGFONTA on Windows, FontDescription elsewhere
  FontDescription description;  // the font as created (the face asked for, not the one found)
  WindowHandle window;          // the window whose context is borrowed, or null for the screen
  void* font;                   // the platform's font object
  void* previousFont;           // what the context held before
};

// Makes the font with `cellHeight` pixels of cell height, weight 700 when `bold` is nonzero and
// 400 otherwise, and italic when `italic` is nonzero, on a context of `window` (null: the
// screen). Returns 1, or 0 with nothing left allocated.
int CreateLayoutFont(WindowHandle window, const char* faceName, int32_t cellHeight, int32_t bold,
                     int32_t italic, LayoutFont* font);
// Restores the context, deletes the font and releases the context. Safe on a zeroed record.
void DeleteLayoutFont(LayoutFont* font);

// The cell height (tmHeight) of the font selected into `deviceContext`, or 0.
int32_t FontCellHeight(void* deviceContext);
