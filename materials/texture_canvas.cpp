// The ground picture of a texture.
#include "materials/texture_canvas.h"

#include "text/image_copy.h"

void TextureSize(const TextureItem* item, int32_t* width, int32_t* height) {
  const int64_t w = static_cast<int64_t>(item->rect[2]) - item->rect[0];
  const int64_t h = static_cast<int64_t>(item->rect[3]) - item->rect[1];
  *width = w < 0 ? 0 : w > INT32_MAX ? INT32_MAX : static_cast<int32_t>(w);
  *height = h < 0 ? 0 : h > INT32_MAX ? INT32_MAX : static_cast<int32_t>(h);
}

MovableHandle NewTextureCanvas(int32_t width, int32_t height, uint32_t colour) {
  ScopedBlock image(CreatePackedDib(width, height, nullptr, 24));
  if (!image.handle) return nullptr;
  {
    ScopedLock pixels(image.handle);
    if (!pixels) return nullptr;
    FillRows24(pixels.bytes, colour);
  }
  return image.Release();
}
