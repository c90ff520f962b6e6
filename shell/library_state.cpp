// The library's globals: those that outlive one use of the plug-in and those of the use in hand.
#include "shell/library_state.h"

#include "documents/settings.h"

void* ModuleInstance = nullptr;
char PluginFolder[261];
void* DialogFonts[3];
int32_t SoftButtons = 0;

char* OpenPath() {
  // The row is in the table from the start, so there is always a buffer.
  static char unused[kOpenPathSize];
  char* setting = SettingString("OpenPath");
  return setting ? setting : unused;
}
