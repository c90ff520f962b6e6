// Records that travel in document lines as their raw bytes in hex, two upper-case digits a byte.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

void AppendHexBytes(std::string* line, const uint8_t* bytes, size_t count);

// Fills `bytes` (which the caller zeroes) nibble by nibble from `text`; the end of the line, not
// a length, stops the digits, so a short line leaves the rest zero. 0 on a character not a digit.
int ReadHexBytes(const char* text, uint8_t* bytes, size_t count);
