// The steps from the typed string to a frame's masks: padding from softness and outline, the text
// with its trailing space, the layout font, the advance table, the canvas size, and where shadow
// and text stand. A frame renderer begins a layout, asks for as many masks as it has layers, and
// ends the layout, which frees everything it made.
#pragma once

#include <cstdint>

#include "platform/dialog.h"
#include "platform/font.h"
#include "platform/memory.h"
#include "text/glyph_cache.h"
#include "text/text_mask.h"

// What the dialog and the effect's page give the layout.
struct TextLayoutInput {
  const char* text;      // as typed, in the 8-bit code page
  const char* faceName;  // the typeface
  int32_t fontSize;      // cell height in pixels
  int32_t bold, italic, antialias;
  int32_t spacePercent;  // character space, 50 to 150
  int32_t padding;       // pixels around the text
  int32_t softness;      // blur of the shadow, 0 for none
  int32_t outlineEnabled, shadowEnabled;
  int32_t shadowOffset;   // pixels
  int32_t useGlyphCache;  // nonzero: draw each glyph once per level for the whole layout
};

struct TextLayout {
  WindowHandle window;
  LayoutFont font;
  MovableHandle text;      // the text, one space appended, with its terminating 0
  MovableHandle advances;  // one unsigned 32-bit advance per byte, 16 spare entries
  TextSize size;           // the width of all advances, the font's cell height
  int32_t pad;             // the padding after softness and outline
  int32_t canvasWidth, canvasHeight;
  int32_t fontSize, bold, italic, antialias;
  const char* faceName;
  GlyphCache* cache;
};

// The padding: one more plus a tenth of the softness when the shadow is soft, and at least 1 with
// an outline.
int32_t TextPadding(int32_t padding, int32_t softness, int32_t outlineEnabled);

// Shifts of the shadow and of the text for a shadow direction (0 to 7, anything else: the shadow
// on the text) and offset, so that one moves away from the other and neither goes negative.
struct TextShifts {
  int32_t shadowX, shadowY, textX, textY;
};
TextShifts ShadowPlacement(int32_t direction, int32_t offset);

// Makes the font, measures the text and sizes the canvas. Returns 1; 0 when the text is empty or
// something cannot be made, with nothing left to end.
int BeginTextLayout(WindowHandle window, const TextLayoutInput* input, TextLayout* layout);
// A canvas-sized mask of the text at (x, y) drawn at `level`, or null.
MovableHandle LayoutTextMask(TextLayout* layout, int32_t x, int32_t y, int32_t level);
// The canvas-sized outline ring of the text at (x, y) (see RenderOutlineMask), or null.
MovableHandle LayoutOutlineMask(TextLayout* layout, int32_t x, int32_t y);
// Frees the text, the advances, the cache and the font. Safe on a zeroed layout.
void EndTextLayout(TextLayout* layout);
