// No resources are linked into the POSIX programs yet; the button face is the light grey that
// Windows uses by default, so flattened pictures look the same on both platforms.
#include "platform/resource_data.h"

const uint8_t* FindDataResource(int32_t id, size_t* size) {
  *size = 0;
  return nullptr;
}

uint32_t ButtonFaceColour() {
  return 0x00F0F0F0;
}
