// The text layout of one frame. The text and its advances live in movable blocks locked only
// while a mask is made; the font stays selected into its context until the layout ends.
#include "text/text_layout.h"

#include <cstring>

int32_t TextPadding(int32_t padding, int32_t softness, int32_t outlineEnabled) {
  int32_t pad = padding;
  if (softness > 0) pad = pad + 1 + softness / 10;
  if (outlineEnabled && pad < 1) pad = 1;
  return pad;
}

TextShifts ShadowPlacement(int32_t direction, int32_t offset) {
  // Per direction: the shadow's shift and the text's, in units of the offset.
  static const int8_t kShifts[8][4] = {
      {0, 0, 1, 1},  // 0: up and left
      {0, 0, 0, 1},  // 1: up
      {1, 0, 0, 1},  // 2: up and right
      {1, 0, 0, 0},  // 3: right
      {0, 0, 1, 0},  // 4: left
      {0, 1, 1, 0},  // 5: down and left
      {0, 1, 0, 0},  // 6: down
      {1, 1, 0, 0},  // 7: down and right
  };
  if (direction < 0 || direction > 7) return {0, 0, 0, 0};
  const int8_t* s = kShifts[direction];
  return {s[0] * offset, s[1] * offset, s[2] * offset, s[3] * offset};
}

int BeginTextLayout(WindowHandle window, const TextLayoutInput* input, TextLayout* layout) {
  *layout = TextLayout();
  const size_t length = input->text ? std::strlen(input->text) : 0;
  if (length < 1) return 0;
  layout->window = window;
  layout->pad = TextPadding(input->padding, input->softness, input->outlineEnabled);
  layout->fontSize = input->fontSize;
  layout->bold = input->bold;
  layout->italic = input->italic;
  layout->antialias = input->antialias;
  layout->faceName = input->faceName;
  // The appended space is measured and drawn like any character.
  layout->text = MovableAlloc(length + 2);
  layout->advances = MovableAlloc((length + 1 + 16) * sizeof(uint32_t));
  if (!layout->text || !layout->advances ||
      !CreateLayoutFont(window, input->faceName, input->fontSize, input->bold, input->italic,
                        &layout->font)) {
    EndTextLayout(layout);
    return 0;
  }
  {
    ScopedLock text(layout->text), advances(layout->advances);
    if (!text || !advances) {
      EndTextLayout(layout);
      return 0;
    }
    std::memcpy(text.bytes, input->text, length);
    text.bytes[length] = ' ';
    MeasureText(layout->font.deviceContext, nullptr, reinterpret_cast<const char*>(text.bytes),
                &layout->size, input->bold, input->italic, input->fontSize, input->faceName,
                input->spacePercent, layout->font.logFont,
                reinterpret_cast<uint32_t*>(advances.bytes));
  }
  layout->canvasWidth = layout->size.width + 2 * layout->pad;
  layout->canvasHeight = layout->size.height + 2 * layout->pad;
  if (input->shadowEnabled) {
    layout->canvasWidth += input->shadowOffset;
    layout->canvasHeight += input->shadowOffset;
  }
  if (input->useGlyphCache) layout->cache = CreateGlyphCache();
  return 1;
}

MovableHandle LayoutTextMask(TextLayout* layout, int32_t x, int32_t y, int32_t level) {
  ScopedLock text(layout->text), advances(layout->advances);
  if (!text || !advances) return nullptr;
  return RenderTextMask(
      layout->window, layout->font.deviceContext, x, y, reinterpret_cast<const char*>(text.bytes),
      layout->canvasWidth, layout->canvasHeight, level, layout->antialias, layout->fontSize,
      layout->bold, layout->italic, layout->faceName,
      reinterpret_cast<const uint32_t*>(advances.bytes), layout->font.logFont, layout->cache);
}

MovableHandle LayoutOutlineMask(TextLayout* layout, int32_t x, int32_t y) {
  ScopedLock text(layout->text), advances(layout->advances);
  if (!text || !advances) return nullptr;
  return RenderOutlineMask(
      layout->window, layout->font.deviceContext, x, y, reinterpret_cast<const char*>(text.bytes),
      layout->canvasWidth, layout->canvasHeight, layout->antialias, layout->fontSize, layout->bold,
      layout->italic, layout->faceName, reinterpret_cast<const uint32_t*>(advances.bytes),
      layout->font.logFont, layout->cache);
}

void EndTextLayout(TextLayout* layout) {
  MovableFree(layout->text);
  MovableFree(layout->advances);
  FreeGlyphCache(layout->cache);
  DeleteLayoutFont(&layout->font);
  *layout = TextLayout();
}
