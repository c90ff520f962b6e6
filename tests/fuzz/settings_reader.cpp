// Feeds arbitrary bytes to the settings reader as a file, with and without Shift, and checks that
// every string setting stays terminated and the rows that are never read keep their values.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "documents/settings.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  ResetSettings();
  if (size == 0) return 0;
  std::FILE* file = fmemopen(const_cast<uint8_t*>(data), size, "r");
  if (!file) return 0;
  LoadSettingsFromFile(file, size > 0 && (data[0] & 1));
  std::fclose(file);
  for (const SettingEntry& e : SettingTable)
    if ((e.flags & kSettingString) && !std::memchr(e.value, 0, kSettingTextSize)) std::abort();
  if (*SettingInteger("PatchLevel") != 1 || *SettingInteger("VersionNumber") != 512) std::abort();
  return 0;
}
