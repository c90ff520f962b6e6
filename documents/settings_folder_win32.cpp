// Where the settings live on Windows: "Cobalt Lanternary\" in the user's application data folder
// (special folder 26), which is assumed to exist; and the state of the Shift key.
#include <windows.h>
#include <shlobj.h>

#include <cstdio>

#include "documents/settings.h"

int PlatformSettingsFolder(char* folder, size_t size) {
  LPITEMIDLIST list = nullptr;
  if (SHGetSpecialFolderLocation(nullptr, 26, &list) != S_OK || !list) return 0;
  char base[MAX_PATH] = "";
  const BOOL found = SHGetPathFromIDListA(list, base);
  IMalloc* shellMalloc = nullptr;
  if (SHGetMalloc(&shellMalloc) == S_OK && shellMalloc) {
    shellMalloc->Free(list);
    shellMalloc->Release();
  }
  if (!found || !base[0]) return 0;
  const int n = std::snprintf(folder, size, "%s\\Cobalt Lanternary\\", base);
  return n > 0 && static_cast<size_t>(n) < size;
}

int SettingsShiftHeld() {
  return GetKeyState(VK_SHIFT) < 0;
}
