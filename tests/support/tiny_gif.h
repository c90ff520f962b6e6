// A small looping animated GIF written byte by byte, for tests that need a picture file made
// outside the program: a global table of four colours and, for each frame, a graphic control block
// with its delay and an image of the whole screen. The codes go out uncompressed: a clear code
// follows every two pixels, before the decoder's table could grow past three-bit codes.
#pragma once

#include <cstdint>
#include <vector>

// `palette` holds four 0xRRGGBB colours; each frame width * height indices 0 to 3, rows top first;
// delays in hundredths of a second.
inline std::vector<uint8_t> TinyGif(int width, int height, const uint32_t (&palette)[4],
                                    const std::vector<std::vector<uint8_t>>& frames,
                                    const std::vector<int>& delays) {
  std::vector<uint8_t> out = {'G', 'I', 'F', '8', '9', 'a'};
  auto word = [&](int v) {
    out.push_back(static_cast<uint8_t>(v));
    out.push_back(static_cast<uint8_t>(v >> 8));
  };
  word(width);
  word(height);
  out.insert(out.end(), {0x91, 0, 0});  // a global table of 4 colours
  for (uint32_t c : palette)
    out.insert(out.end(), {static_cast<uint8_t>(c >> 16), static_cast<uint8_t>(c >> 8),
                           static_cast<uint8_t>(c)});
  const char loop[] = "\x21\xFF\x0BNETSCAPE2.0\x03\x01\x00\x00\x00";
  out.insert(out.end(), loop, loop + sizeof loop - 1);
  for (size_t f = 0; f < frames.size(); ++f) {
    out.insert(out.end(), {0x21, 0xF9, 4, 0x04});  // kept in place, no transparency
    word(delays[f]);
    out.insert(out.end(), {0, 0, 0x2C});
    word(0);
    word(0);
    word(width);
    word(height);
    out.insert(out.end(), {0, 2});  // no local table; codes start at 2 bits plus one
    std::vector<uint8_t> data;
    uint32_t bits = 0, count = 0;
    auto code = [&](uint32_t value) {
      bits |= value << count;
      for (count += 3; count >= 8; count -= 8, bits >>= 8) data.push_back(static_cast<uint8_t>(bits));
    };
    for (size_t i = 0; i < frames[f].size(); ++i) {
      if (i % 2 == 0) code(4);  // clear
      code(frames[f][i] & 3);
    }
    code(5);  // end of information
    if (count) data.push_back(static_cast<uint8_t>(bits));
    for (size_t at = 0; at < data.size(); at += 255) {
      const size_t n = data.size() - at < 255 ? data.size() - at : 255;
      out.push_back(static_cast<uint8_t>(n));
      out.insert(out.end(), data.begin() + at, data.begin() + at + n);
    }
    out.push_back(0);
  }
  out.push_back(0x3B);
  return out;
}
