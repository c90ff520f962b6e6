// FOUNTB document lines: any text is either refused, leaving the record as it was, or read into a
// record with at most 64 markers and no run-time state, which writes a line that reads back to
// the same record.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "materials/fountain_button.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string line(reinterpret_cast<const char*>(data), size);
  FountainGradient record;
  std::memset(&record, 0xA5, sizeof record);
  const FountainGradient before = record;
  if (!ReadFountainDocumentLine(line.c_str(), &record)) {
    if (std::memcmp(&record, &before, sizeof record) != 0) abort();
    return 0;
  }
  if (record.markerCount > kFountainMarkers) abort();
  FountainGradient cleared = record;
  ClearFountainRunTime(&cleared);
  if (std::memcmp(&cleared, &record, sizeof record) != 0) abort();
  FountainGradient again;
  if (!ReadFountainDocumentLine(FountainDocumentLine(336, &record).c_str(), &again)) abort();
  if (std::memcmp(&again, &record, sizeof record) != 0) abort();
  return 0;
}
