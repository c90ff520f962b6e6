// Helpers of the Windows tests: whether windows can be made, and the build's programs by path.
#pragma once

#include <windows.h>

#include <algorithm>
#include <string>

// False without a display (Wine without X): dialogs cannot open, so dialog cases are skipped.
inline bool DisplayAvailable() {
  HWND probe =
      CreateWindowA("STATIC", "", WS_POPUP, 0, 0, 10, 10, nullptr, nullptr, nullptr, nullptr);
  if (!probe) return false;
  DestroyWindow(probe);
  return true;
}

// A path of the build (a Unix path) as Windows sees it under Wine: on drive Z:.
inline std::string BuildPath(const char* unixPath) {
  std::string path = std::string("Z:") + unixPath;
  std::replace(path.begin(), path.end(), '/', '\\');
  return path;
}
