// Random pictures, block comparison and pixel read-out for the image tests.
#include "tests/support/test_images.h"

#include <cstring>

#include "shell/crt_random.h"
#include "shell/packed_dib.h"
#include "text/compositing.h"

MovableHandle RandomImage(int32_t width, int32_t height, int32_t depth, uint32_t seed) {
  MovableHandle image = CreatePackedDib(width, height, depth == 8 ? GreyRamp() : nullptr, depth);
  ScopedLock lock(image);
  if (!lock) return image;
  crt::srand(seed);
  uint8_t* bits = DibBits(lock.bytes);
  const size_t count = MovableSize(image) - (bits - lock.bytes);
  for (size_t i = 0; i < count; ++i) bits[i] = static_cast<uint8_t>(crt::rand() >> 3);
  return image;
}

int SameBlocks(MovableHandle a, MovableHandle b) {
  if (!a || !b || MovableSize(a) != MovableSize(b)) return 0;
  ScopedLock la(a), lb(b);
  return la && lb && std::memcmp(la.bytes, lb.bytes, MovableSize(a)) == 0;
}

PictureValues ReadPicture(MovableHandle image) {
  PictureValues p;
  ScopedLock lock(image);
  if (!lock) return p;
  const BitmapInfoHeader* h = reinterpret_cast<const BitmapInfoHeader*>(lock.bytes);
  p.width = h->biWidth, p.height = h->biHeight, p.bits = h->biBitCount;
  for (int32_t y = 0; y < p.height; ++y)
    for (int32_t x = 0; x < p.width; ++x) p.values.push_back(ReadDibPixel(lock.bytes, x, y));
  return p;
}

PictureValues TakePicture(MovableHandle image) {
  ScopedBlock owner(image);
  return ReadPicture(image);
}
