// Render surfaces on GDI: a 24-bit DIB section selected into a memory DC compatible with the
// screen, in MM_ISOTROPIC mapping with equal extents so that one unit is one pixel. The DIB
// section's pixels already have the Packed DIB's row layout; the write-back copies them.
#include <windows.h>

#include <cstring>

#include "shell/packed_dib.h"
#include "platform/surface_image.h"

namespace {

HDC MemoryDc(RenderSurface* surface) { return static_cast<HDC>(surface->memoryDc); }

// Selects a GDI object for one drawing call and restores the previous one on every path; deletes
// the object when it owns it.
struct ScopedSelect {
  HDC dc;
  HGDIOBJ object;
  HGDIOBJ previous;
  bool owned;
  ScopedSelect(HDC d, HGDIOBJ o, bool own) : dc(d), object(o), previous(nullptr), owned(own) {
    if (object) previous = SelectObject(dc, object);
  }
  ~ScopedSelect() {
    if (previous) SelectObject(dc, previous);
    if (owned && object) DeleteObject(object);
  }
  ScopedSelect(const ScopedSelect&) = delete;
  ScopedSelect& operator=(const ScopedSelect&) = delete;
};

HGDIOBJ MakeBrush(const SurfacePaint* paint) {
  return paint->brush == kSurfaceNone ? GetStockObject(NULL_BRUSH)
                                      : CreateSolidBrush(static_cast<COLORREF>(paint->brush));
}

HGDIOBJ MakePen(const SurfacePaint* paint) {
  return paint->pen == kSurfaceNone
             ? GetStockObject(NULL_PEN)
             : CreatePen(PS_SOLID, paint->penWidth, static_cast<COLORREF>(paint->pen));
}

}  // namespace

int CreateRenderSurface(int32_t width, int32_t height, RenderSurface* surface) {
  if (!AllocateSurfaceImage(width, height, surface)) return 0;
  surface->screenDc = GetDC(nullptr);
  if (!surface->screenDc) return ReleaseRenderSurface(surface, 0), 0;
  surface->memoryDc = CreateCompatibleDC(static_cast<HDC>(surface->screenDc));
  if (!surface->memoryDc) return ReleaseRenderSurface(surface, 0), 0;
  void* bits = nullptr;
  surface->bitmap = CreateDIBSection(MemoryDc(surface), static_cast<BITMAPINFO*>(surface->header),
                                     DIB_RGB_COLORS, &bits, nullptr, 0);
  surface->bits = bits;
  if (!surface->bitmap || !surface->bits) return ReleaseRenderSurface(surface, 0), 0;
  GdiFlush();
  SetMapMode(MemoryDc(surface), MM_ISOTROPIC);
  surface->previousBitmap = SelectObject(MemoryDc(surface), static_cast<HBITMAP>(surface->bitmap));
  SetWindowExtEx(MemoryDc(surface), width, height, nullptr);
  SetViewportExtEx(MemoryDc(surface), width, height, nullptr);
  return 1;
}

int ReleaseRenderSurface(RenderSurface* surface, uint32_t flags) {
  GdiFlush();
  if (surface->bits && surface->header) {
    const BitmapInfoHeader* header = static_cast<const BitmapInfoHeader*>(surface->header);
    const size_t size = static_cast<size_t>(DibStride(header->biWidth, header->biBitCount)) *
                        static_cast<size_t>(header->biHeight);
    std::memcpy(DibBits(surface->header), surface->bits, size);
  }
  if (surface->memoryDc && surface->previousBitmap)
    SelectObject(MemoryDc(surface), static_cast<HGDIOBJ>(surface->previousBitmap));
  surface->previousBitmap = nullptr;
  if (surface->bitmap) DeleteObject(static_cast<HGDIOBJ>(surface->bitmap));
  surface->bitmap = nullptr;
  surface->bits = nullptr;
  if (surface->memoryDc) DeleteDC(MemoryDc(surface));
  surface->memoryDc = nullptr;
  if (surface->screenDc) ReleaseDC(nullptr, static_cast<HDC>(surface->screenDc));
  surface->screenDc = nullptr;
  FinishSurfaceImage(surface, flags);
  return 1;
}

int SurfaceFillRect(RenderSurface* surface, const SurfaceRect* rect, uint32_t colour) {
  if (!surface->memoryDc) return 0;
  // An empty or inverted rectangle fills nothing, on every platform.
  if (rect->right <= rect->left || rect->bottom <= rect->top) return 1;
  HBRUSH brush = CreateSolidBrush(colour);
  if (!brush) return 0;
  RECT r = {rect->left, rect->top, rect->right, rect->bottom};
  FillRect(MemoryDc(surface), &r, brush);
  DeleteObject(brush);
  return 1;
}

int SurfacePolygon(RenderSurface* surface, const SurfacePoint* points, int32_t count,
                   const SurfacePaint* paint, int32_t fillMode) {
  HDC dc = MemoryDc(surface);
  if (!dc || !points || count < 2) return 0;
  ScopedSelect brush(dc, MakeBrush(paint), paint->brush != kSurfaceNone);
  ScopedSelect pen(dc, MakePen(paint), paint->pen != kSurfaceNone);
  const int previousMode = SetPolyFillMode(dc, fillMode);
  static_assert(sizeof(SurfacePoint) == sizeof(POINT), "points pass to GDI as they are");
  const BOOL drawn = Polygon(dc, reinterpret_cast<const POINT*>(points), count);
  SetPolyFillMode(dc, previousMode);
  return drawn ? 1 : 0;
}

namespace {

// Ellipse and Rectangle: one GDI call in a box with the paint's brush and pen selected.
int PaintBoxShape(RenderSurface* surface, const SurfaceRect* box, const SurfacePaint* paint,
                  BOOL(WINAPI* shape)(HDC, int, int, int, int)) {
  HDC dc = MemoryDc(surface);
  if (!dc) return 0;
  ScopedSelect brush(dc, MakeBrush(paint), paint->brush != kSurfaceNone);
  ScopedSelect pen(dc, MakePen(paint), paint->pen != kSurfaceNone);
  return shape(dc, box->left, box->top, box->right, box->bottom) ? 1 : 0;
}

}  // namespace

int SurfaceEllipse(RenderSurface* surface, const SurfaceRect* box, const SurfacePaint* paint) {
  return PaintBoxShape(surface, box, paint, Ellipse);
}

int SurfaceRectangle(RenderSurface* surface, const SurfaceRect* box, const SurfacePaint* paint) {
  return PaintBoxShape(surface, box, paint, Rectangle);
}

int SurfaceLine(RenderSurface* surface, int32_t x0, int32_t y0, int32_t x1, int32_t y1,
                uint32_t colour, int32_t penWidth) {
  HDC dc = MemoryDc(surface);
  if (!dc) return 0;
  const SurfacePaint paint = {kSurfaceNone, static_cast<int32_t>(colour), penWidth};
  ScopedSelect pen(dc, MakePen(&paint), true);
  MoveToEx(dc, x0, y0, nullptr);
  return LineTo(dc, x1, y1) ? 1 : 0;
}

int SurfaceRotatedChar(RenderSurface* surface, const LayoutFont* font, int32_t escapement,
                       int32_t antialias, int32_t x, int32_t y, uint8_t byte, uint32_t colour) {
  HDC dc = MemoryDc(surface);
  if (!dc || !font || !font->logFont) return 0;
  LOGFONTA description = *static_cast<const LOGFONTA*>(font->logFont);
  description.lfEscapement = escapement;
  description.lfOrientation = escapement;
  description.lfCharSet = DEFAULT_CHARSET;
  description.lfQuality = antialias ? ANTIALIASED_QUALITY : 0;
  HFONT rotated = CreateFontIndirectA(&description);
  if (!rotated) return 0;
  // Advanced mode lets the orientation turn the glyphs. The surface's mapping already has one
  // unit a pixel with y down, as text mapping would. Mode, colour, background mode and alignment
  // are put back.
  const int graphicsMode = SetGraphicsMode(dc, GM_ADVANCED);
  const UINT align = SetTextAlign(dc, TA_BASELINE);
  const COLORREF oldColour = SetTextColor(dc, static_cast<COLORREF>(colour));
  const int background = SetBkMode(dc, TRANSPARENT);
  BOOL written = FALSE;
  {
    ScopedSelect select(dc, rotated, true);
    const char text = static_cast<char>(byte);
    written = TextOutA(dc, x, y, &text, 1);
  }
  SetBkMode(dc, background);
  SetTextColor(dc, oldColour);
  SetTextAlign(dc, align);
  if (graphicsMode) SetGraphicsMode(dc, graphicsMode);
  GdiFlush();
  return written ? 1 : 0;
}
