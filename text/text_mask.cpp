// Measuring and drawing text masks character by character through DispatchDraw (text modes 0 and
// 2), the outline ring built from two masks, and the small mask operations it needs.
#include "text/text_mask.h"

#include <algorithm>
#include <cstring>
#include <new>

#include "shell/packed_dib.h"
#include "text/mask_image.h"
#include "text/drawing_layer.h"
#include "text/image_copy.h"
#include "platform/font.h"

namespace {

int32_t gAccentCompensation = 1;

// Accented letters of the 8-bit code page and the plain letters they are measured as, walked from
// the start up to the 0 that ends the list. 0xDF as a capital B and 0xF0 as o are intended.
const uint8_t kAccented[] = {0xC0, 0xC1, 0xC2, 0xC3, 0xC4, 0xC5, 0xC7, 0xC8, 0xC9, 0xCA, 0xCB, 0xCC,
                             0xCD, 0xCE, 0xCF, 0xD1, 0xD2, 0xD3, 0xD4, 0xD5, 0xD6, 0xD8, 0xD9, 0xDA,
                             0xDB, 0xDC, 0xDD, 0xDF, 0xE0, 0xE1, 0xE2, 0xE3, 0xE4, 0xE5, 0xE7, 0xE8,
                             0xE9, 0xEA, 0xEB, 0xEC, 0xED, 0xEE, 0xEF, 0xF0, 0xF1, 0xF2, 0xF3, 0xF4,
                             0xF5, 0xF6, 0xF8, 0xF9, 0xFA, 0xFB, 0xFC, 0xFD, 0xFF, 0};
const char kPlain[] =
    "AAAAAA"
    "C"
    "EEEE"
    "IIII"
    "N"
    "OOOOOO"
    "UUUU"
    "Y"
    "B"
    "aaaaaa"
    "c"
    "eeee"
    "iiii"
    "o"
    "n"
    "oooooo"
    "uuuu"
    "yy";
static_assert(sizeof kAccented == 58 && sizeof kPlain == 58, "57 accented letters");

// A text request of the layer with the fields every text call of this file sets.
void FillTextRequest(DrawRequest* r, const char* oneCharacter, int32_t mode, int32_t level,
                     int32_t fontSize, int32_t bold, int32_t italic, const char* faceName,
                     void* logFont, void* deviceContext, uint32_t colour) {
  std::memset(r, 0, sizeof *r);
  r->operation = kDrawText;
  r->textMode = mode;
  r->depth = 8;
  r->level = level;
  std::memcpy(r->ramp, GreyRamp(), sizeof r->ramp);
  r->fontSize = fontSize;
  r->bold = bold;
  r->italic = italic;
  r->underline = 0;
  r->faceName = faceName;
  r->logFont = logFont;
  r->deviceContext = deviceContext;
  r->textColour = colour;
  r->text = oneCharacter;
}

// Merges a glyph picture into the mask at (x, y) by maximum.
void MergeGlyph(void* mask, const GlyphPicture* glyph, int32_t x, int32_t y) {
  const BitmapInfoHeader* h = static_cast<const BitmapInfoHeader*>(mask);
  // Only the part of the glyph over the mask is visited; the rest would be dropped anyway.
  const int32_t px0 = x < 0 ? -x : 0, py0 = y < 0 ? -y : 0;
  const int32_t px1 = glyph->width < h->biWidth - x ? glyph->width : h->biWidth - x;
  const int32_t py1 = glyph->height < h->biHeight - y ? glyph->height : h->biHeight - y;
  const uint32_t stride = DibStride(h->biWidth, 8);
  uint8_t* bits = DibBits(mask);
  for (int32_t py = py0; py < py1; ++py) {
    const uint8_t* from = glyph->coverage + static_cast<size_t>(py) * glyph->width;
    uint8_t* to = bits + static_cast<size_t>(h->biHeight - 1 - (y + py)) * stride + x;
    for (int32_t px = px0; px < px1; ++px) {
      to[px] = std::max(to[px], from[px]);
    }
  }
}

// The low bytes of a 24-bit glyph picture, row by row from the top, into `coverage`.
int ReadGlyph(MovableHandle picture, GlyphPicture* glyph, uint8_t** coverage) {
  ScopedLock lock(picture);
  if (!lock || MovableSize(picture) < kDibHeaderBytes) return 0;
  const BitmapInfoHeader* h = reinterpret_cast<const BitmapInfoHeader*>(lock.bytes);
  const int32_t width = h->biWidth, height = h->biHeight;
  if (width < 0 || height < 0 || h->biBitCount != 24 ||
      kDibHeaderBytes + static_cast<uint64_t>(DibStride(width, 24)) * height >
          MovableSize(picture)) {
    return 0;
  }
  const size_t count = static_cast<size_t>(width) * height;
  *coverage = new (std::nothrow) uint8_t[count ? count : 1];
  if (!*coverage) return 0;
  const uint32_t stride = DibStride(width, 24);
  const uint8_t* bits = DibBits(lock.bytes);
  for (int32_t y = 0; y < height; ++y) {
    const uint8_t* row = bits + static_cast<size_t>(height - 1 - y) * stride;
    for (int32_t x = 0; x < width; ++x) (*coverage)[y * width + x] = row[x * 3 + 2];  // red
  }
  *glyph = {width, height, *coverage};
  return 1;
}

}  // namespace

int32_t AccentCompensation() {
  return gAccentCompensation;
}
void SetAccentCompensation(int32_t value) {
  gAccentCompensation = value;
}

uint8_t FoldAccent(uint8_t byte) {
  for (int i = 0; kAccented[i]; ++i) {
    if (kAccented[i] == byte) return static_cast<uint8_t>(kPlain[i]);
  }
  return byte;
}

int MeasureText(void* deviceContext, const void* context, const char* text, TextSize* size,
                int32_t bold, int32_t italic, int32_t fontSize, const char* faceName,
                int32_t spacePercent, void* logFont, uint32_t* advances) {
  (void)context;
  const int32_t cellHeight = FontCellHeight(deviceContext);
  size->width = 0;
  size->height = cellHeight;
  if (!text || !text[0]) return 1;
  int32_t total = 0;
  for (size_t i = 0; text[i]; ++i) {
    uint8_t byte = static_cast<uint8_t>(text[i]);
    if (AccentCompensation()) byte = FoldAccent(byte);
    const char one[2] = {static_cast<char>(byte), 0};
    DrawRequest request;
    FillTextRequest(&request, one, kTextMeasure, 255, fontSize, bold, italic, faceName, logFont,
                    deviceContext, 0xFFFFFF);
    if (DispatchDraw(&request) != 1) continue;
    const int32_t advance =
        static_cast<int32_t>(static_cast<int64_t>(request.measuredWidth) * spacePercent / 100);
    total += advance;
    if (advances) advances[i] = static_cast<uint32_t>(advance);
  }
  size->width = total;
  return 1;
}

MovableHandle RenderTextMask(WindowHandle window, void* deviceContext, int32_t x, int32_t y,
                             const char* text, int32_t width, int32_t height, int32_t level,
                             int32_t antialias, int32_t fontSize, int32_t bold, int32_t italic,
                             const char* faceName, const uint32_t* advances, void* logFont,
                             GlyphCache* cache) {
  (void)window;
  ScopedBlock mask(CreateMask(width, height));
  ScopedLock target(mask.handle);
  if (!target) return nullptr;
  const uint32_t grey = static_cast<uint32_t>(level) & 0xFF;
  const uint32_t pen = grey | grey << 8 | grey << 16;
  const GlyphFont font = {deviceContext, logFont, faceName, fontSize, bold, italic};
  for (size_t i = 0; text && text[i]; ++i) {
    const uint8_t byte = static_cast<uint8_t>(text[i]);
    const GlyphPicture* glyph = FindGlyph(cache, &font, byte, level, antialias);
    if (glyph) {
      MergeGlyph(target.bytes, glyph, x, y);
    } else {
      const char one[2] = {static_cast<char>(byte), 0};
      DrawRequest request;
      FillTextRequest(&request, one, kTextBitmap, level, fontSize, bold, italic, faceName, logFont,
                      deviceContext, pen);
      request.antialias = antialias;
      ScopedBlock picture(reinterpret_cast<MovableHandle>(DispatchDraw(&request)));
      GlyphPicture drawn;
      uint8_t* coverage = nullptr;
      if (!picture.handle || !ReadGlyph(picture.handle, &drawn, &coverage)) return nullptr;
      MergeGlyph(target.bytes, &drawn, x, y);
      KeepGlyph(cache, &font, byte, level, antialias, &drawn);
      delete[] coverage;
    }
    x += advances ? static_cast<int32_t>(advances[i]) : 0;
  }
  return mask.Release();
}

namespace {

// The text mask at level 255 copied four columns wider and one column right.
MovableHandle WideTextMask(WindowHandle window, void* deviceContext, int32_t x, int32_t y,
                           const char* text, int32_t width, int32_t height, int32_t antialias,
                           int32_t fontSize, int32_t bold, int32_t italic, const char* faceName,
                           const uint32_t* advances, void* logFont, GlyphCache* cache) {
  ScopedBlock mask(RenderTextMask(window, deviceContext, x, y, text, width, height, 255, antialias,
                                  fontSize, bold, italic, faceName, advances, logFont, cache));
  if (!mask.handle) return nullptr;
  return WidenMask(mask.handle, width + 4, height, 1);
}

// The header of a locked 8-bit mask whose pixels fit its block, or null.
const BitmapInfoHeader* MaskHeader(const ScopedLock& lock, int32_t bits) {
  if (!lock || MovableSize(lock.handle) < kDibHeaderBytes) return nullptr;
  const BitmapInfoHeader* h = reinterpret_cast<const BitmapInfoHeader*>(lock.bytes);
  if (h->biWidth < 0 || h->biHeight < 0 || (bits && h->biBitCount != bits)) return nullptr;
  const uint64_t need = static_cast<uint64_t>(DibBits(lock.bytes) - lock.bytes) +
                        static_cast<uint64_t>(DibStride(h->biWidth, h->biBitCount)) * h->biHeight;
  return need <= MovableSize(lock.handle) ? h : nullptr;
}

}  // namespace

MovableHandle RenderOutlineMask(WindowHandle window, void* deviceContext, int32_t x, int32_t y,
                                const char* text, int32_t width, int32_t height, int32_t antialias,
                                int32_t fontSize, int32_t bold, int32_t italic,
                                const char* faceName, const uint32_t* advances, void* logFont,
                                GlyphCache* cache) {
  ScopedBlock ring;
  {
    ScopedBlock wide(WideTextMask(window, deviceContext, x, y, text, width, height, antialias,
                                  fontSize, bold, italic, faceName, advances, logFont, cache));
    if (!wide.handle) return nullptr;
    ring.handle = DilateMask(wide.handle);
    if (!ring.handle) return nullptr;
  }
  ScopedBlock inner(WideTextMask(window, deviceContext, x, y, text, width, height, antialias,
                                 fontSize, bold, italic, faceName, advances, logFont, cache));
  ScopedLock r(ring.handle), in(inner.handle);
  if (!r || !in) return nullptr;
  // Both are 8-bit masks of the same size: the inner coverage v turns the ring to 255 - v.
  const size_t count = MovableSize(ring.handle) - (DibBits(r.bytes) - r.bytes);
  uint8_t* ringBits = DibBits(r.bytes);
  const uint8_t* innerBits = DibBits(in.bytes);
  for (size_t i = 0; i < count; ++i) {
    if (innerBits[i]) ringBits[i] = static_cast<uint8_t>(255 - innerBits[i]);
  }
  return ring.Release();
}

MovableHandle DilateMask(MovableHandle mask) {
  ScopedLock source(mask);
  const BitmapInfoHeader* h = MaskHeader(source, 8);
  if (!h) return nullptr;
  const int32_t width = h->biWidth, height = h->biHeight;
  ScopedBlock result(CreateMask(width, height));
  ScopedLock target(result.handle);
  if (!target) return nullptr;
  const uint32_t stride = DibStride(width, 8);
  const uint8_t* from = DibBits(source.bytes);
  uint8_t* to = DibBits(target.bytes);
  // The 3 by 3 maximum is the maximum across of the maximum down. Rows are bottom-up in memory,
  // which neither cares about.
  for (int32_t row = 0; row < height; ++row) {
    const uint8_t* above = from + static_cast<size_t>(row > 0 ? row - 1 : row) * stride;
    const uint8_t* here = from + static_cast<size_t>(row) * stride;
    const uint8_t* below = from + static_cast<size_t>(row + 1 < height ? row + 1 : row) * stride;
    uint8_t* out = to + static_cast<size_t>(row) * stride;
    for (int32_t x = 0; x < width; ++x) out[x] = std::max(std::max(above[x], here[x]), below[x]);
    uint8_t previous = out[0];
    for (int32_t x = 0; x < width; ++x) {
      const uint8_t current = out[x];
      const uint8_t next = x + 1 < width ? out[x + 1] : current;
      out[x] = std::max(std::max(previous, current), next);
      previous = current;
    }
  }
  return result.Release();
}

MovableHandle WidenMask(MovableHandle image, int32_t width, int32_t height, int32_t shift) {
  ScopedLock source(image);
  const BitmapInfoHeader* h = MaskHeader(source, 0);
  if (!h || width < 0 || height < 0) return nullptr;
  const uint32_t bits = h->biBitCount;
  const uint32_t table = DibTableBytes(bits);
  const uint64_t pixelBytes = static_cast<uint64_t>(DibStride(width, bits)) * height;
  if (pixelBytes > 0x7FFFFFFF) return nullptr;
  ScopedBlock result(MovableAlloc(kDibHeaderBytes + table + pixelBytes));
  ScopedLock target(result.handle);
  if (!target) return nullptr;
  std::memcpy(target.bytes, source.bytes, kDibHeaderBytes + table);
  BitmapInfoHeader* out = reinterpret_cast<BitmapInfoHeader*>(target.bytes);
  out->biSize = kDibHeaderBytes;
  out->biWidth = width;
  out->biHeight = height;
  out->biSizeImage = static_cast<uint32_t>(pixelBytes);
  if (bits == 8) {
    // Whole rows at once: the columns that land inside the new picture, at their new place.
    const int64_t first = std::max<int64_t>(0, -static_cast<int64_t>(shift));
    const int64_t last = std::min<int64_t>(h->biWidth, static_cast<int64_t>(width) - shift);
    const int32_t rows = std::min(h->biHeight, height);
    const uint32_t fromStride = DibStride(h->biWidth, 8), toStride = DibStride(width, 8);
    for (int32_t y = 0; y < rows && first < last; ++y) {
      const uint8_t* from =
          DibBits(source.bytes) + static_cast<size_t>(h->biHeight - 1 - y) * fromStride;
      uint8_t* to = DibBits(target.bytes) + static_cast<size_t>(height - 1 - y) * toStride;
      std::memcpy(to + first + shift, from + first, static_cast<size_t>(last - first));
    }
    return result.Release();
  }
  for (int32_t y = 0; y < h->biHeight; ++y) {
    for (int32_t x = 0; x < h->biWidth; ++x) {
      WriteDibPixel(target.bytes, x + shift, y, ReadDibPixel(source.bytes, x, y));
    }
  }
  return result.Release();
}

MovableHandle CombineAlpha(MovableHandle image, MovableHandle mask) {
  ScopedLock colours(image), alpha(mask);
  const BitmapInfoHeader* h = MaskHeader(colours, 0);
  if (!h || !MaskHeader(alpha, 0)) return nullptr;
  const int32_t width = h->biWidth, height = h->biHeight;
  ScopedBlock result(CreatePackedDib32(width, height));
  ScopedLock target(result.handle);
  if (!target) return nullptr;
  for (int32_t y = 0; y < height; ++y) {
    for (int32_t x = 0; x < width; ++x) {
      const uint32_t a = ReadDibPixel(alpha.bytes, x, y) & 0xFF;
      WriteDibPixel(target.bytes, x, y, (ReadDibPixel(colours.bytes, x, y) & 0x00FFFFFF) | a << 24);
    }
  }
  return result.Release();
}

MovableHandle FilledImage(int32_t left, int32_t top, int32_t right, int32_t bottom,
                          uint32_t colour) {
  const int32_t width = right - left, height = bottom - top;
  ScopedBlock image(CreatePackedDib(width, height, nullptr, 24));
  ScopedLock lock(image.handle);
  if (!lock) return nullptr;
  FillRows24(lock.bytes, colour);
  return image.Release();
}
