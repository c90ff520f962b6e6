// The material button's record and document line. The record travels as raw bytes, so the hex
// text holds whatever handle values were live when it was written; the reader clears them.
#include "materials/material_button.h"

#include <cctype>
#include <cstring>

#include "imaging/palette.h"
#include "materials/record_hex.h"
#include "materials/tile.h"
#include "shell/packed_dib.h"

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
    if (lock && MovableSize(material) >= kMaterialSize)
      FreeMaterialImages(reinterpret_cast<Material*>(lock.bytes));
  }
  MovableFree(material);
}

MovableHandle ButtonMaterialHandle(WindowHandle button) {
  return button ? static_cast<MovableHandle>(DialogGetUserData(button)) : nullptr;
}

int CreateMaterialForButton(WindowHandle button, uint32_t creationColour) {
  if (!button) return 0;
  if (!ButtonMaterialHandle(button))
    DialogSetUserData(button, CreateButtonMaterial(creationColour));
  return ButtonMaterialHandle(button) != nullptr;
}

void FreeMaterialOfButton(WindowHandle button) {
  FreeButtonMaterial(ButtonMaterialHandle(button));
  DialogSetUserData(button, nullptr);
}

int MaterialButtonTakeLine(WindowHandle button, const char* line) {
  MovableHandle handle = ButtonMaterialHandle(button);
  if (!handle || !ReadMaterialDocumentLine(line, &handle)) return 0;
  DialogSetUserData(button, handle);
  return 1;
}

size_t MaterialButtonFormatLine(WindowHandle button, char* line, size_t size) {
  MovableHandle handle = ButtonMaterialHandle(button);
  if (!handle || !line) return 0;
  std::string text = MaterialDocumentLine(DialogItemId(button), handle);
  if (text.empty()) return 0;
  text.pop_back();  // the caller ends the line
  if (text.size() + 1 > size) return 0;
  std::memcpy(line, text.c_str(), text.size() + 1);
  return text.size();
}

Material* MaterialForButton(WindowHandle button) {
  MovableHandle handle = ButtonMaterialHandle(button);
  if (!handle) return nullptr;
  return static_cast<Material*>(MovableLock(handle));
}

uint32_t ButtonSolidColour(WindowHandle button, uint32_t fallback) {
  const Material* material = MaterialForButton(button);
  if (!material) return fallback;
  const uint32_t colour = material->solidColour;
  MovableUnlock(ButtonMaterialHandle(button));
  return colour;
}

MovableHandle DuplicateButtonMaterial(MovableHandle material) {
  ScopedBlock copy(CopyMovableBlock(material));
  ScopedLock lock(copy.handle);
  if (!lock || MovableSize(copy.handle) < kMaterialSize) return nullptr;
  Material* record = reinterpret_cast<Material*>(lock.bytes);
  record->preview = nullptr;
  if (record->tileImage) {
    record->tileImage = DuplicateHandle(record->tileImage);
    if (!record->tileImage) return nullptr;
  }
  return copy.Release();
}

uint32_t AverageImageColour(MovableHandle image) {
  ScopedLock lock(image);
  if (!lock) return 0;
  const BitmapInfoHeader* h = reinterpret_cast<const BitmapInfoHeader*>(lock.bytes);
  const uint64_t count = static_cast<uint64_t>(h->biWidth) * static_cast<uint64_t>(h->biHeight);
  if (h->biWidth <= 0 || h->biHeight <= 0) return 0;
  uint64_t sums[3] = {};
  for (int32_t y = 0; y < h->biHeight; ++y)
    for (int32_t x = 0; x < h->biWidth; ++x) {
      const uint32_t pixel = ReadDibPixel(lock.bytes, x, y);
      for (int c = 0; c < 3; ++c) sums[c] += (pixel >> (8 * c)) & 0xFF;
    }
  return static_cast<uint32_t>(sums[0] / count | (sums[1] / count) << 8 | (sums[2] / count) << 16);
}

int RefreshMaterialPreview(Material* material, int32_t width, int32_t height) {
  MovableHandle preview = MaterialFill(material, width, height);
  if (!preview) return 0;
  MovableFree(material->preview);
  material->preview = preview;
  material->averageColour = AverageImageColour(preview);
  return 1;
}

uint32_t MaterialCaptionColour(uint32_t average) {
  const uint8_t luminance =
      LuminanceKey(average & 0xFF, (average >> 8) & 0xFF, (average >> 16) & 0xFF);
  return luminance <= 0x80 ? 0xFFFFFF : 0x000000;
}

std::string MaterialDocumentLine(int32_t controlId, MovableHandle material) {
  ScopedLock lock(material);
  if (!lock || MovableSize(material) < kMaterialSize) return std::string();
  std::string line = kMaterialLineKey + std::to_string(controlId) + "=";
  AppendHexBytes(&line, lock.bytes, kMaterialSize);
  line += '\n';
  return line;
}

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
  if (!ReadHexBytes(text, lock.bytes, kMaterialSize)) return 0;
  Material* record = reinterpret_cast<Material*>(lock.bytes);
  record->tileImage = nullptr;
  record->preview = nullptr;
  ReloadMaterialTile(record);

  FreeButtonMaterial(*material);
  *material = block.Release();
  return 1;
}
