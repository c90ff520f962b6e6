// The POSIX programs link no RCDATA resources; their bitmaps are arrays made by the build from
// the same files the Windows resource script names. The button face is the light grey that
// Windows uses by default, so flattened pictures look the same on both platforms.
#include "platform/resource_data.h"

extern const BitmapResourceRow kBitmapResources[];
extern const size_t kBitmapResourceCount;

const uint8_t* FindDataResource(int32_t id, size_t* size) {
  *size = 0;
  return nullptr;
}

uint32_t ButtonFaceColour() {
  return 0x00F0F0F0;
}

const uint8_t* FindBitmapResource(int32_t id, size_t* size) {
  *size = 0;
  for (size_t i = 0; i < kBitmapResourceCount; ++i)
    if (kBitmapResources[i].id == id) {
      *size = kBitmapResources[i].size;
      return kBitmapResources[i].bytes;
    }
  return nullptr;
}
