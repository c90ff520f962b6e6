#include "materials/record_hex.h"

namespace {

int HexValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return -1;
}

}  // namespace

void AppendHexBytes(std::string* line, const uint8_t* bytes, size_t count) {
  static const char kDigits[] = "0123456789ABCDEF";
  line->reserve(line->size() + 2 * count + 1);
  for (size_t i = 0; i < count; ++i) {
    *line += kDigits[bytes[i] >> 4];
    *line += kDigits[bytes[i] & 0x0F];
  }
}

int ReadHexBytes(const char* text, uint8_t* bytes, size_t count) {
  for (size_t digit = 0; digit < 2 * count; ++digit) {
    const char c = text[digit];
    if (c == '\0' || c == '\r' || c == '\n') break;
    const int value = HexValue(c);
    if (value < 0) return 0;
    bytes[digit / 2] |= static_cast<uint8_t>(digit % 2 ? value : value << 4);
  }
  return 1;
}
