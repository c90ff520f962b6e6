// The library's globals that outlive one use of the plug-in.
#include "shell/library_state.h"

void* ModuleInstance = nullptr;
char PluginFolder[261];
char OpenPath[261];
void* DialogFonts[3];
