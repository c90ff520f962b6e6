#include "host/animation_block.h"

#include <cstring>

#include "shell/host_interface.h"
#include "shell/packed_dib.h"

void PutRgbAsDib24(uint8_t* dib, const uint8_t* rgb, int32_t width, int32_t height) {
  const size_t stride = DibStride(width, 24);
  BitmapInfoHeader info{};
  info.biSize = kDibHeaderBytes;
  info.biWidth = width;
  info.biHeight = height;
  info.biPlanes = 1;
  info.biBitCount = 24;
  info.biSizeImage = static_cast<uint32_t>(stride * height);
  std::memcpy(dib, &info, sizeof info);
  for (int32_t y = 0; y < height; ++y) {
    uint8_t* row = dib + kDibHeaderBytes + static_cast<size_t>(height - 1 - y) * stride;
    for (int32_t x = 0; x < width; ++x, rgb += 3) {
      row[3 * x] = rgb[2];
      row[3 * x + 1] = rgb[1];
      row[3 * x + 2] = rgb[0];
    }
  }
}

MovableHandle MakeAnimationBlockOf(const ComposedAnimation& animation) {
  constexpr size_t kHead = 20, kEntry = 24;
  const int32_t w = animation.width, h = animation.height;
  if (w <= 0 || h <= 0 || animation.frames.size() != animation.delays.size()) return nullptr;
  const size_t stride = DibStride(w, 24), dib = kDibHeaderBytes + stride * h;
  const size_t count = animation.frames.size();
  for (const std::vector<uint8_t>& frame : animation.frames)
    if (frame.size() != static_cast<size_t>(w) * h * 3) return nullptr;
  const size_t total = kHead + count * (kEntry + dib) + 4;
  MovableHandle block = MovableAlloc(total);
  ScopedLock lock(block);
  if (!lock) return MovableFree(block);
  uint8_t* b = lock.bytes;
  std::memset(b, 0, total);
  std::memcpy(b, &kAnimationBlockMagic, 4);
  const uint32_t head = kHead, entry = kEntry, version = kInterfaceVersion;
  std::memcpy(b + 4, &head, 4);
  std::memcpy(b + 8, &version, 4);
  const uint32_t n = static_cast<uint32_t>(count);
  std::memcpy(b + 16, &n, 4);
  size_t at = kHead;
  for (size_t f = 0; f < count; ++f) {
    const uint32_t dataSize = static_cast<uint32_t>(dib);
    const int32_t delay = animation.delays[f];
    std::memcpy(b + at, &kAnimationEntryMagic, 4);
    std::memcpy(b + at + 4, &entry, 4);
    std::memcpy(b + at + 8, &version, 4);
    std::memcpy(b + at + 16, &dataSize, 4);
    std::memcpy(b + at + 20, &delay, 4);
    PutRgbAsDib24(b + at + kEntry, animation.frames[f].data(), w, h);
    at += kEntry + dib;
  }
  std::memcpy(b + at, &kAnimationEndMagic, 4);
  return block;
}
