// Shared pieces of the Windows drawing layer: the bitmap frame every drawing operation shares, on
// the GDI+ flat interface.
#pragma once

#include <windows.h>
#include <objidl.h>  // PROPID and IStream, left out by WIN32_LEAN_AND_MEAN
#include <gdiplus.h>

#include "platform/memory.h"

// COLORREF 0x00BBGGRR as opaque ARGB 0xFFRRGGBB.
inline Gdiplus::ARGB OpaqueArgb(uint32_t colour) {
  return 0xFF000000u | (colour & 0xFF) << 16 | (colour & 0xFF00) | (colour >> 16 & 0xFF);
}

// A 24-bit GDI+ bitmap and its graphics object.
struct GdiplusCanvas {
  Gdiplus::GpBitmap* bitmap;
  Gdiplus::GpGraphics* graphics;
};

// Makes the bitmap and its graphics; on failure either may be null and the later calls fail.
void OpenGdiplusCanvas(GdiplusCanvas* canvas, int32_t width, int32_t height);
// Flushes, converts the bitmap to a Packed DIB through an HBITMAP and frees both GDI+ objects.
MovableHandle CloseGdiplusCanvas(GdiplusCanvas* canvas);
