// The material button's record and document line. The record travels as raw bytes, so the hex
// text holds whatever handle values were live when it was written; the reader clears them.
#include "materials/material_button.h"

#include <cctype>
#include <cstring>

MovableHandle CreateButtonMaterial(uint32_t creationColour) {
  ScopedBlock block(MovableAlloc(kMaterialSize));
  ScopedLock lock(block.handle);
  if (!lock) return nullptr;
  Material* material = reinterpret_cast<Material*>(lock.bytes);
  InitMaterial(material);
  material->solidColour = creationColour;
  return block.Release();
}

void FreeButtonMaterial(MovableHandle material) {
  if (!material) return;
  {
    ScopedLock lock(material);
    if (lock && MovableSize(material) >= kMaterialSize) {
      Material* record = reinterpret_cast<Material*>(lock.bytes);
      MovableFree(record->tileImage);
      MovableFree(record->preview);
      record->tileImage = nullptr;
      record->preview = nullptr;
    }
  }
  MovableFree(material);
}

std::string MaterialDocumentLine(int32_t controlId, MovableHandle material) {
  static const char kDigits[] = "0123456789ABCDEF";
  ScopedLock lock(material);
  if (!lock || MovableSize(material) < kMaterialSize) return std::string();
  std::string line = kMaterialLineKey + std::to_string(controlId) + "=";
  line.reserve(line.size() + kMaterialHexDigits + 1);
  for (uint32_t i = 0; i < kMaterialSize; ++i) {
    line += kDigits[lock.bytes[i] >> 4];
    line += kDigits[lock.bytes[i] & 0x0F];
  }
  line += '\n';
  return line;
}

namespace {

int HexValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return -1;
}

}  // namespace

int ReadMaterialDocumentLine(const char* line, MovableHandle* material) {
  if (!line || !material) return 0;
  const size_t keyLength = sizeof(kMaterialLineKey) - 1;
  for (size_t i = 0; i < keyLength; ++i)
    if (std::toupper(static_cast<unsigned char>(line[i])) != kMaterialLineKey[i]) return 0;
  const char* text = std::strchr(line + keyLength, '=');
  if (!text) return 0;
  while (*text == '=' || *text == ' ' || *text == '\t') ++text;

  ScopedBlock block(MovableAlloc(kMaterialSize));
  ScopedLock lock(block.handle);
  if (!lock) return 0;
  // Digits fill the record nibble by nibble; the line's end, not a length, stops them.
  for (uint32_t digit = 0; digit < kMaterialHexDigits; ++digit) {
    const char c = text[digit];
    if (c == '\0' || c == '\r' || c == '\n') break;
    const int value = HexValue(c);
    if (value < 0) return 0;
    lock.bytes[digit / 2] |= static_cast<uint8_t>(digit % 2 ? value : value << 4);
  }
  Material* record = reinterpret_cast<Material*>(lock.bytes);
  record->tileImage = nullptr;
  record->preview = nullptr;

  FreeButtonMaterial(*material);
  *material = block.Release();
  return 1;
}
