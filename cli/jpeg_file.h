// JPEG pictures through libjpeg(-turbo), for the pictures gm5 hands the engine. Greyscale and
// colour files come out as red, green, blue triples; CMYK files (as Adobe writes them, inverted)
// are turned into the same.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

// Decodes `size` bytes into width * height triples, top row first. Returns 1, or 0 when the bytes
// are not a JPEG that can be read whole, or the picture has sides over 16384 or more than
// `largestPixels` pixels.
int ReadJpegBytes(const uint8_t* bytes, size_t size, int32_t* width, int32_t* height,
                  std::vector<uint8_t>* rgb, uint64_t largestPixels);
