// Resources of the module that holds this code (the DLL, or the test program it is linked into),
// found by an address inside it so that the host's own resources are never searched.
#include <windows.h>

#include "platform/resource_data.h"
#include "platform/win32/code_module_win32.h"

namespace {

const uint8_t* FindResourceBytes(int32_t id, int32_t type, size_t* size) {
  *size = 0;
  HMODULE module = CodeModule();
  HRSRC found = FindResourceA(module, MAKEINTRESOURCEA(id), MAKEINTRESOURCEA(type));
  if (!found) return nullptr;
  HGLOBAL loaded = LoadResource(module, found);
  if (!loaded) return nullptr;
  const uint8_t* bytes = static_cast<const uint8_t*>(LockResource(loaded));
  if (bytes) *size = SizeofResource(module, found);
  return bytes;
}

}  // namespace

const uint8_t* FindDataResource(int32_t id, size_t* size) {
  return FindResourceBytes(id, 10, size);  // RT_RCDATA
}

const uint8_t* FindBitmapResource(int32_t id, size_t* size) {
  return FindResourceBytes(id, 2, size);  // RT_BITMAP
}

uint32_t ButtonFaceColour() {
  return GetSysColor(COLOR_BTNFACE);
}
