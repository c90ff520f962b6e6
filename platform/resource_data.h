// Data built into the program: RCDATA and bitmap resources of the module and the system colours
// that pictures are flattened on. On Windows these are the module's own resources; elsewhere the
// bitmaps are compiled in as arrays and RCDATA lookups find nothing.
#pragma once

#include <cstddef>
#include <cstdint>

// The bytes of the RCDATA resource `id` of this module and their count, or null. The bytes stay
// valid for the life of the process and must not be freed.
const uint8_t* FindDataResource(int32_t id, size_t* size);

// The bytes of the bitmap resource `id`, a Packed DIB (the bitmap file without its file header),
// and their count, or null. The bytes stay valid for the life of the process and must not be freed.
const uint8_t* FindBitmapResource(int32_t id, size_t* size);

// A compiled-in bitmap, for the systems without a resource section.
struct BitmapResourceRow {
  int32_t id;
  const uint8_t* bytes;
  size_t size;
};

// The face colour of buttons, 0x00BBGGRR.
uint32_t ButtonFaceColour();
