// Where the settings live without Windows: "Cobalt Lanternary/" in the XDG configuration folder
// ($XDG_CONFIG_HOME, else ~/.config), and the stand-in for the Shift key.
#include <cstdio>
#include <cstdlib>
#include <sys/stat.h>

#include "documents/settings.h"

int PlatformSettingsFolder(char* folder, size_t size) {
  const char* base = std::getenv("XDG_CONFIG_HOME");
  char home[1024];
  if (!base || !base[0]) {
    const char* user = std::getenv("HOME");
    if (!user || !user[0]) return 0;
    if (std::snprintf(home, sizeof home, "%s/.config", user) >= static_cast<int>(sizeof home))
      return 0;
    base = home;
  }
  const int n = std::snprintf(folder, size, "%s/Cobalt Lanternary/", base);
  if (n < 0 || static_cast<size_t>(n) >= size) return 0;
  // Finding the folder creates nothing: reading the settings or printing the path leaves no trace.
  return 1;
}

int SettingsShiftHeld() {
  const char* shift = std::getenv("GM5_SHIFT");
  return shift && ParseAtoi(shift) != 0;
}
