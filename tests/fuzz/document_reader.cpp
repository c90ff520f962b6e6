// Feeds arbitrary bytes to the document reader over a dialog holding every control: nothing may
// crash, and string settings must stay terminated. Writing the lines again is left to the tests,
// since it costs more than the reading and finds nothing the reading doesn't reach.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "controls/page_setup.h"
#include "controls/value_controls.h"
#include "documents/effect_document.h"
#include "documents/settings.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static WindowHandle dialog = CreateValueDialog();
  if (!dialog) return 0;
  if (size == 0) return 0;
  std::FILE* file = fmemopen(const_cast<uint8_t*>(data), size, "r");
  if (!file) return 0;
  LoadDocumentFrom(dialog, file);
  std::fclose(file);
  for (const SettingEntry& e : SettingTable)
    if ((e.flags & kSettingString) && !std::memchr(e.value, 0, kSettingTextSize)) std::abort();
  return 0;
}
