// Watches what a loaded library does with GDI objects and GDI+ sessions, for the reference host's
// leak checks: the library's import table is redirected through counting wrappers, so the counts
// cover exactly the objects that the library itself creates and deletes.
#pragma once

#include <cstdint>

struct ImportWatchCounts {
  int64_t liveGdiObjects;    // created by the library and not yet deleted
  int64_t gdiplusStartups;   // GdiplusStartup calls that succeeded
  int64_t gdiplusShutdowns;  // GdiplusShutdown calls
};

// Redirects the library's imports of gdi32 and gdiplus; `module` is its module handle. Returns the
// number of imports redirected.
int WatchLibraryImports(void* module);
ImportWatchCounts ImportWatchNow();
