// GIF's LZW compression of one image, for pixels that may take either of two values: a pixel that
// shows the same whatever it holds (unchanged, under a transparent index) is written as whichever
// of its values makes the longer string the table already has. With such pixels each step writes,
// of the strings the table has from there, the one after which the next string reaches furthest
// (a lookahead of one string), not simply the longest, so that fewer codes are written; without
// them it writes the longest.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

// Compresses `count` pixels of at most `minCodeSize` bits (2 to 8) into `codes`: the packed code
// stream from the first clear code to the end code, without GIF's sub-block lengths. Pixel i is
// `pixels[i]`, or, where `either` is given and `either[i]` is nonzero, `pixels[i]` or `mark`.
// Codes grow and the table is cleared as giflib's encoder does.
void CompressGifPixels(const uint8_t* pixels, const uint8_t* either, size_t count, int minCodeSize,
                       int mark, std::vector<uint8_t>* codes);
