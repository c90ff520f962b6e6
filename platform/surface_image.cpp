// The Packed DIB half of a render surface, shared by both ports.
#include "platform/surface_image.h"

#include <cstring>

#include "shell/packed_dib.h"

int AllocateSurfaceImage(int32_t width, int32_t height, RenderSurface* surface) {
  std::memset(surface, 0, sizeof *surface);
  if (width <= 0 || height <= 0) return 0;
  const uint64_t imageBytes = static_cast<uint64_t>(DibStride(width, 24)) * height;
  if (imageBytes > 0x7FFFFFFF) return 0;
  MovableHandle block = MovableAlloc(imageBytes + kDibHeaderBytes);
  if (!block) return 0;
  BitmapInfoHeader* header = static_cast<BitmapInfoHeader*>(MovableLock(block));
  if (!header) {
    MovableFree(block);
    return 0;
  }
  header->biSize = kDibHeaderBytes;
  header->biWidth = width;
  header->biHeight = height;
  header->biPlanes = 1;
  header->biBitCount = 24;
  header->biSizeImage = static_cast<uint32_t>(imageBytes);
  surface->handle = block;
  surface->header = header;
  surface->rect = {0, 0, width, height};
  return 1;
}

void FinishSurfaceImage(RenderSurface* surface, uint32_t flags) {
  if (surface->header) MovableUnlock(surface->handle);
  surface->header = nullptr;
  if (!(flags & kSurfaceKeepImage)) surface->handle = MovableFree(surface->handle);
}
