// A small PNG writer for the reference host's screenshots: 8-bit RGB, no filtering, the picture
// data in stored (uncompressed) deflate blocks. Plain and exact rather than small.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

// The PNG file of a picture of `width` by `height` pixels, rows top first, three bytes a pixel
// (red, green, blue). Empty when the sizes are not positive or `rgb` is too short.
std::vector<uint8_t> EncodeRgbPng(const uint8_t* rgb, size_t size, int32_t width, int32_t height);
