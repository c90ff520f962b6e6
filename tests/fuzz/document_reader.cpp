// Feeds arbitrary bytes to the document reader over a dialog holding every control, then writes
// every control's line again: nothing may crash, and string settings must stay terminated.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "controls/page_setup.h"
#include "controls/value_controls.h"
#include "documents/effect_document.h"
#include "documents/settings.h"

namespace {

int WriteAgain(WindowHandle control, void* file) {
  DialogWriteLine(control, file);
  return 1;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static WindowHandle dialog = CreateValueDialog();
  if (!dialog) return 0;
  std::FILE* file = std::tmpfile();
  if (!file) return 0;
  std::fwrite(data, 1, size, file);
  std::rewind(file);
  LoadDocumentFrom(dialog, file);
  std::rewind(file);
  DialogEnumChildren(dialog, WriteAgain, file);
  std::fclose(file);
  for (const SettingEntry& e : SettingTable)
    if ((e.flags & kSettingString) && !std::memchr(e.value, 0, kSettingTextSize)) std::abort();
  return 0;
}
