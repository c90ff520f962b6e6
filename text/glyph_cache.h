// Glyph pictures of one font, kept for the life of a frame's layout so that the shadow, fill and
// outline masks do not rasterise the same character four times. A glyph is keyed by its byte, its
// grey level and the antialias flag; the cache remembers the font it was filled with and starts
// over when asked for another. It holds the low byte of each pixel, all a mask reads.
#pragma once

#include <cstdint>

struct GlyphCache;

// The font a glyph was drawn with, as the drawing layer's text operation reads it.
struct GlyphFont {
  void* deviceContext;
  void* logFont;
  const char* faceName;
  int32_t fontSize, bold, italic;
};

// A picture's width, height and low bytes, row by row from the top.
struct GlyphPicture {
  int32_t width, height;
  const uint8_t* coverage;
};

// A new empty cache, or null when memory is short (callers then draw every glyph).
GlyphCache* CreateGlyphCache();
void FreeGlyphCache(GlyphCache* cache);

// The cached picture for the key, or null.
const GlyphPicture* FindGlyph(GlyphCache* cache, const GlyphFont* font, uint8_t byte, int32_t level,
                              int32_t antialias);
// Keeps a copy of a picture; nothing happens when memory is short.
void KeepGlyph(GlyphCache* cache, const GlyphFont* font, uint8_t byte, int32_t level,
               int32_t antialias, const GlyphPicture* picture);
