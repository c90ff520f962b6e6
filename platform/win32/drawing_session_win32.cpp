// Start-up and shutdown of GDI+ for the drawing layer: version 1, no debug callback, and GDI+'s own
// background thread, so that no notification hooks are needed.
#include <windows.h>
#include <objidl.h>  // PROPID and IStream, left out by WIN32_LEAN_AND_MEAN
#include <gdiplus.h>

#include "text/drawing_layer.h"

int DrawingStartup(uint64_t* token) {
  Gdiplus::GdiplusStartupInput input;
  input.GdiplusVersion = 1;
  input.DebugEventCallback = nullptr;
  input.SuppressBackgroundThread = FALSE;
  input.SuppressExternalCodecs = FALSE;
  ULONG_PTR started = 0;
  if (Gdiplus::GdiplusStartup(&started, &input, nullptr) != Gdiplus::Ok) return 0;
  *token = started;
  return 1;
}

int DrawingShutdown(uint64_t token) {
  Gdiplus::GdiplusShutdown(static_cast<ULONG_PTR>(token));
  return 1;
}
