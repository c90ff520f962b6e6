// Windows-1252: Latin-1 but for 0x80 to 0x9F, which hold the typographer's characters.
#include "cli/text_encoding.h"

#include <cstdint>
#include <cstdio>

namespace {

// The characters of 0x80 to 0x9F; 0 where the code page defines none.
const uint16_t kHigh[32] = {
    0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0,      0x017D, 0,      0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178,
};

// Reads one UTF-8 character at `at`, moving past it. Returns 0 on a malformed sequence.
int ReadCodePoint(const std::string& text, size_t* at, uint32_t* code) {
  const unsigned char lead = static_cast<unsigned char>(text[*at]);
  int extra = lead < 0x80                   ? 0
              : lead >= 0xC2 && lead < 0xE0 ? 1
              : lead >= 0xE0 && lead < 0xF0 ? 2
              : lead >= 0xF0 && lead < 0xF5 ? 3
                                            : -1;
  if (extra < 0 || *at + extra >= text.size() + (extra ? 0 : 1)) return 0;
  uint32_t value = extra ? lead & (0x3F >> extra) : lead;
  for (int i = 1; i <= extra; ++i) {
    const unsigned char next = static_cast<unsigned char>(text[*at + i]);
    if ((next & 0xC0) != 0x80) return 0;
    value = value << 6 | (next & 0x3F);
  }
  static const uint32_t kLeast[4] = {0, 0x80, 0x800, 0x10000};
  if (value < kLeast[extra] || value > 0x10FFFF || (value >= 0xD800 && value < 0xE000)) return 0;
  *at += extra + 1;
  *code = value;
  return 1;
}

void AppendUtf8(uint32_t code, std::string* out) {
  if (code < 0x80) {
    *out += static_cast<char>(code);
  } else if (code < 0x800) {
    *out += static_cast<char>(0xC0 | code >> 6);
    *out += static_cast<char>(0x80 | (code & 0x3F));
  } else {
    *out += static_cast<char>(0xE0 | code >> 12);
    *out += static_cast<char>(0x80 | (code >> 6 & 0x3F));
    *out += static_cast<char>(0x80 | (code & 0x3F));
  }
}

std::string Named(uint32_t code, const std::string& text, size_t from, size_t to) {
  char name[16];
  snprintf(name, sizeof name, "U+%04X", static_cast<unsigned>(code));
  return code < 32 || code == 127 || (code >= 0x80 && code < 0xA0)
             ? std::string(name)
             : std::string(name) + " (" + text.substr(from, to - from) + ")";
}

}  // namespace

int Utf8ToWindows1252(const std::string& text, int singleLine, std::string* out,
                      std::string* error) {
  out->clear();
  for (size_t at = 0; at < text.size();) {
    const size_t from = at;
    uint32_t code = 0;
    if (!ReadCodePoint(text, &at, &code)) {
      char byte[8];
      snprintf(byte, sizeof byte, "0x%02X", static_cast<unsigned char>(text[from]));
      *error = std::string("the text is not UTF-8 (byte ") + byte + " at offset " +
               std::to_string(from) + ")";
      return 0;
    }
    if (singleLine && (code < 32 || code == 127 || (code >= 0x80 && code < 0xA0))) {
      *error = "the text holds a control character, " + Named(code, text, from, at) +
               " (the text is a single line)";
      return 0;
    }
    int byte = code < 0x80 || (code >= 0xA0 && code < 0x100) ? static_cast<int>(code) : -1;
    for (int i = 0; i < 32 && byte < 0; ++i)
      if (kHigh[i] == code) byte = 0x80 + i;
    if (byte < 0) {
      *error = "the text holds " + Named(code, text, from, at) +
               ", which the engine's code page (Windows-1252) cannot hold";
      return 0;
    }
    *out += static_cast<char>(byte);
  }
  return 1;
}

std::string Windows1252ToUtf8(const std::string& text) {
  std::string out;
  for (const char c : text) {
    const unsigned char byte = static_cast<unsigned char>(c);
    const uint32_t code =
        byte >= 0x80 && byte < 0xA0 && kHigh[byte - 0x80] ? kHigh[byte - 0x80] : byte;
    AppendUtf8(code, &out);
  }
  return out;
}

int IsUtf8(const std::string& text) {
  uint32_t code = 0;
  for (size_t at = 0; at < text.size();)
    if (!ReadCodePoint(text, &at, &code)) return 0;
  return 1;
}
