// The library's globals: those that outlive one use of the plug-in and those of the use in hand.
#include "shell/library_state.h"

void* ModuleInstance = nullptr;
char PluginFolder[261];
char OpenPath[261];
void* DialogFonts[3];
int32_t SoftButtons = 0;
