// A cyclic shift is two block copies: the band's first length - d pixels moved on by d, and its
// last d brought round to the start. No picture is made, so a frame costs one copy of the picture.
#include "effects/band_shift.h"

#include "shell/packed_dib.h"
#include "text/image_copy.h"

int ShiftBand(MovableHandle frame, MovableHandle picture, bool columns, int32_t start, int32_t size,
              int32_t distance) {
  int32_t width, height;
  if (!PictureSize(picture, &width, &height)) return 1;
  const int32_t length = columns ? height : width;
  if (length < 1 || size < 1) return 1;
  int32_t d = distance % length;
  if (d < 0) d += length;
  if (columns) {
    CopyImageRect(frame, start, d, picture, start, 0, size, length - d);
    CopyImageRect(frame, start, 0, picture, start, length - d, size, d);
  } else {
    CopyImageRect(frame, d, start, picture, 0, start, length - d, size);
    CopyImageRect(frame, 0, start, picture, length - d, start, d, size);
  }
  return 1;
}

int PictureSize(MovableHandle picture, int32_t* width, int32_t* height) {
  ScopedLock lock(picture);
  if (!lock) return 0;
  const BitmapInfoHeader* h = reinterpret_cast<const BitmapInfoHeader*>(lock.bytes);
  *width = h->biWidth;
  *height = h->biHeight;
  return 1;
}
