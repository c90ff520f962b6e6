// Render surfaces: a 24-bit bottom-up raster in pixel units that shapes and text can be drawn on,
// backed by a Packed DIB. Drawing reaches the Packed DIB only when the surface is released
// (the write-back); released with flag 1 the caller then owns `handle`, with flag 0 it is freed.
// On Windows the fields hold the GDI objects of a DIB section selected into a memory DC; elsewhere
// `bitmap` is a Cairo image surface and `memoryDc` its Cairo context.
#pragma once

#include <cstdint>

#include "platform/font.h"
#include "platform/memory.h"

struct SurfaceRect {
  int32_t left, top, right, bottom;
};

struct SurfacePoint {
  int32_t x, y;
};

struct RenderSurface {
  MovableHandle handle;  // the backing Packed DIB, 24 bits, no colour table
  void* header;          // the locked start of `handle`
  void* bitmap;          // HBITMAP of the DIB section / cairo_surface_t*
  void* previousBitmap;  // what was selected in memoryDc before
  void* bits;            // the surface's own pixels
  void* memoryDc;        // HDC compatible with the screen / cairo_t*
  void* screenDc;        // HDC of the whole screen; unused elsewhere
  SurfaceRect rect;      // 0, 0, width, height
};

constexpr uint32_t kSurfaceKeepImage = 1;

// Makes a surface of width by height pixels, all black. Returns 1, or 0 with nothing left allocated.
int CreateRenderSurface(int32_t width, int32_t height, RenderSurface* surface);
// Writes the drawing back into `handle`, frees the drawing objects, and frees `handle` unless
// `flags` has kSurfaceKeepImage. Safe on a surface whose creation failed part way. Returns 1.
int ReleaseRenderSurface(RenderSurface* surface, uint32_t flags);

// How a shape is painted: `brush` fills the interior and `pen` draws the outline `penWidth` wide;
// either may be kSurfaceNone. Colours are 0x00BBGGRR.
constexpr int32_t kSurfaceNone = -1;
struct SurfacePaint {
  int32_t brush;
  int32_t pen;
  int32_t penWidth;
};

// Polygon fill modes, with the values of the platform's constants.
constexpr int32_t kFillAlternate = 1;
constexpr int32_t kFillWinding = 2;

// Fills left <= x < right, top <= y < bottom; an empty or inverted rectangle fills nothing.
int SurfaceFillRect(RenderSurface* surface, const SurfaceRect* rect, uint32_t colour);
// A closed polygon; with no pen its interior leaves out the right and lower edges, as a rectangle's.
int SurfacePolygon(RenderSurface* surface, const SurfacePoint* points, int32_t count,
                   const SurfacePaint* paint, int32_t fillMode);
// The ellipse inscribed in the box; with no pen its interior is one pixel smaller on the right and
// lower sides. A box whose corners are swapped (left past right, top below bottom) draws as the
// ordered box, on every platform, as does a rectangle's.
int SurfaceEllipse(RenderSurface* surface, const SurfaceRect* box, const SurfacePaint* paint);
// With no pen the interior covers left..right-2 and top..bottom-2; with a pen of width 1 the outline
// runs on the box's first and last columns and rows.
int SurfaceRectangle(RenderSurface* surface, const SurfaceRect* box, const SurfacePaint* paint);
// A line from (x0, y0) to (x1, y1), the end point excluded for a one-pixel pen.
int SurfaceLine(RenderSurface* surface, int32_t x0, int32_t y0, int32_t x1, int32_t y1,
                uint32_t colour, int32_t penWidth);

// One byte of text in `colour` on a transparent background, in the face, cell height, weight and
// slant of `font`, turned `escapement` tenths of a degree counter-clockwise (any value, not only
// one turn), with its baseline starting at (x, y). With `antialias` the glyph's edges are
// antialiased, otherwise hard. The font is used as given and left unchanged.
int SurfaceRotatedChar(RenderSurface* surface, const LayoutFont* font, int32_t escapement,
                       int32_t antialias, int32_t x, int32_t y, uint8_t byte, uint32_t colour);
