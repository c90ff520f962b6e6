// The glyph cache: an open-addressed table of a fixed number of slots; a full table simply stops
// keeping glyphs. Memory comes from the C++ heap without exceptions, not from movable blocks,
// because the cache is the frame's private helper and never reaches the host.
#include "text/glyph_cache.h"

#include <cstring>
#include <new>

namespace {

constexpr uint32_t kSlots = 1024;  // a power of two; 256 bytes at up to four levels

struct GlyphSlot {
  bool used;
  uint8_t byte;
  int32_t level, antialias;
  GlyphPicture picture;
};

}  // namespace

struct GlyphCache {
  GlyphFont font;
  char faceName[64];
  bool hasFont;
  GlyphSlot slots[kSlots];
};

namespace {

bool SameFont(const GlyphCache* cache, const GlyphFont* font) {
  const GlyphFont& f = cache->font;
  const char* face = font->faceName ? font->faceName : "";
  return cache->hasFont && f.deviceContext == font->deviceContext && f.logFont == font->logFont &&
         f.fontSize == font->fontSize && f.bold == font->bold && f.italic == font->italic &&
         std::strncmp(cache->faceName, face, sizeof cache->faceName) == 0 &&
         std::strlen(face) < sizeof cache->faceName;
}

void Clear(GlyphCache* cache) {
  for (GlyphSlot& slot : cache->slots) {
    if (slot.used) delete[] slot.picture.coverage;
    slot = GlyphSlot();
  }
  cache->hasFont = false;
}

uint32_t Hash(uint8_t byte, int32_t level, int32_t antialias) {
  return (byte * 2654435761u ^ static_cast<uint32_t>(level) * 40503u ^ (antialias ? 0x9E37u : 0u)) &
         (kSlots - 1);
}

}  // namespace

GlyphCache* CreateGlyphCache() {
  return new (std::nothrow) GlyphCache();
}

void FreeGlyphCache(GlyphCache* cache) {
  if (!cache) return;
  Clear(cache);
  delete cache;
}

const GlyphPicture* FindGlyph(GlyphCache* cache, const GlyphFont* font, uint8_t byte, int32_t level,
                              int32_t antialias) {
  if (!cache || !SameFont(cache, font)) return nullptr;
  const bool smooth = antialias != 0;
  for (uint32_t i = 0, at = Hash(byte, level, smooth); i < kSlots;
       ++i, at = (at + 1) & (kSlots - 1)) {
    const GlyphSlot& slot = cache->slots[at];
    if (!slot.used) return nullptr;
    if (slot.byte == byte && slot.level == level && slot.antialias == smooth) return &slot.picture;
  }
  return nullptr;
}

void KeepGlyph(GlyphCache* cache, const GlyphFont* font, uint8_t byte, int32_t level,
               int32_t antialias, const GlyphPicture* picture) {
  if (!cache || picture->width < 0 || picture->height < 0) return;
  if (!SameFont(cache, font)) {
    Clear(cache);
    const char* face = font->faceName ? font->faceName : "";
    if (std::strlen(face) >= sizeof cache->faceName) return;  // too long to remember: no caching
    cache->font = *font;
    std::strcpy(cache->faceName, face);
    cache->hasFont = true;
  }
  const bool smooth = antialias != 0;
  for (uint32_t i = 0, at = Hash(byte, level, smooth); i < kSlots;
       ++i, at = (at + 1) & (kSlots - 1)) {
    GlyphSlot& slot = cache->slots[at];
    if (slot.used) continue;
    const size_t count = static_cast<size_t>(picture->width) * picture->height;
    uint8_t* copy = new (std::nothrow) uint8_t[count ? count : 1];
    if (!copy) return;
    if (count) std::memcpy(copy, picture->coverage, count);
    slot.used = true;
    slot.byte = byte;
    slot.level = level;
    slot.antialias = smooth;
    slot.picture = {picture->width, picture->height, copy};
    return;
  }
}
