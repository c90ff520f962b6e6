// The still pictures gm5 hands the engine for HostOpLoadImageFile: BMP files as they stand, and the
// first frame of a GIF, PNG or WebP (composed over white as a viewer shows it) or a JPEG picture as
// a 24-bit Packed DIB. The caller owns the block it gets.
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/memory.h"

// The most pixels a picture may have: a tile never needs more, and a file of a few bytes can claim
// a canvas of hundreds of megabytes.
constexpr uint64_t kPictureLargestPixels = uint64_t{1} << 26;

// A new Packed DIB of the picture in `size` bytes, told by its content, or null when the bytes
// are no picture that is read or claim more than kPictureLargestPixels.
MovableHandle ReadPictureBytes(const uint8_t* bytes, size_t size);
MovableHandle ReadPictureFile(const char* path);

// A new 24-bit Packed DIB of the triples, or null.
MovableHandle RgbToPackedDib(const uint8_t* rgb, int32_t width, int32_t height);
