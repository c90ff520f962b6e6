// Gradient library bytes: any input is either refused at the header or read entry by entry, and
// every entry that reads writes back to the same 340 bytes apart from the reserved tail.
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "materials/fountain_library.h"

namespace {

int Check(void*, const FountainGradient* gradient) {
  if (gradient->markerCount > kFountainMarkers || gradient->flags != 0) abort();
  uint8_t entry[kLibraryEntrySize];
  FountainToLibraryEntry(gradient, entry);
  FountainGradient again;
  if (!FountainFromLibraryEntry(entry, &again)) abort();
  if (std::memcmp(&again, gradient, sizeof again) != 0) abort();
  return 1;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  ReadLibraryBytes(data, size, Check, nullptr);
  return 0;
}
