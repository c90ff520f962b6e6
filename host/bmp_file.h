// BMP files to and from Packed DIBs, for the host's frame dumps and for the pictures it hands to
// the plug-in. Only uncompressed files with a 40-byte header are read; every size in them is
// checked against the file's length. Packed DIBs always carry the full colour table of their depth.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "platform/memory.h"

// Bytes that a Packed DIB of this header needs (header, full table, bits), or 0 when the header is
// not one the program makes: 40-byte header, 1, 4, 8, 24 or 32 bits, no compression, positive
// width and height within 65535.
size_t PackedDibBytes(const uint8_t* header, size_t available);

// The BMP file for a Packed DIB of `size` bytes: a 14-byte file header and the DIB. Empty when the
// DIB is not valid.
std::vector<uint8_t> PackedDibToBmp(const uint8_t* dib, size_t size);

// A new Packed DIB from the bytes of a BMP file, or null when they are not a BMP that is read.
MovableHandle BmpToPackedDib(const uint8_t* file, size_t size);

// Whole-file helpers; 0 or empty on failure.
int WriteWholeFile(const char* path, const std::vector<uint8_t>& bytes);
std::vector<uint8_t> ReadWholeFile(const char* path);
