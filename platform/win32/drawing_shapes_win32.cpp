// The drawing layer's bitmap operations on the GDI+ flat interface: line, ellipse, rectangle,
// polygon and gradient, each in its own 24-bit bitmap cleared to black, and the conversion of the
// result through an HBITMAP into a Packed DIB. Status results of pens, brushes and paths are not
// checked: only the final conversion decides success.
#include "platform/win32/drawing_gdiplus_win32.h"
#include "text/drawing_layer.h"

using namespace Gdiplus;
using namespace Gdiplus::DllExports;

namespace {

constexpr int32_t kNoColour = -1;

void PrepareCanvas(GdiplusCanvas* canvas, int32_t width, int32_t height, int32_t antialias,
                   bool smoothing) {
  OpenGdiplusCanvas(canvas, width, height);
  if (smoothing) {
    GdipSetSmoothingMode(canvas->graphics,
                         antialias > 0 ? SmoothingModeHighQuality : SmoothingModeNone);
  }
  GdipFlush(canvas->graphics, FlushIntentionFlush);
  GdipGraphicsClear(canvas->graphics, 0xFF000000);
}

uint64_t Finish(GdiplusCanvas* canvas) {
  return reinterpret_cast<uint64_t>(CloseGdiplusCanvas(canvas));
}

GpPen* MakePen(uint32_t colour, REAL width) {
  GpPen* pen = nullptr;
  GdipCreatePen1(OpaqueArgb(colour), width, UnitWorld, &pen);
  return pen;
}

GpSolidFill* MakeBrush(uint32_t colour) {
  GpSolidFill* brush = nullptr;
  GdipCreateSolidFill(OpaqueArgb(colour), &brush);
  return brush;
}

}  // namespace

void OpenGdiplusCanvas(GdiplusCanvas* canvas, int32_t width, int32_t height) {
  canvas->bitmap = nullptr;
  canvas->graphics = nullptr;
  GdipCreateBitmapFromScan0(width, height, 0, PixelFormat24bppRGB, nullptr, &canvas->bitmap);
  if (canvas->bitmap) {
    GdipGetImageGraphicsContext(canvas->bitmap, &canvas->graphics);
  }
}

MovableHandle CloseGdiplusCanvas(GdiplusCanvas* canvas) {
  MovableHandle result = nullptr;
  if (canvas->graphics) GdipFlush(canvas->graphics, FlushIntentionFlush);
  HBITMAP bitmap = nullptr;
  if (canvas->bitmap && GdipCreateHBITMAPFromBitmap(canvas->bitmap, &bitmap, 0xFF000000) == Ok &&
      bitmap) {
    result = BitmapToPackedDib(bitmap);
    DeleteObject(bitmap);
  }
  if (canvas->graphics) GdipDeleteGraphics(canvas->graphics);
  if (canvas->bitmap) GdipDisposeImage(canvas->bitmap);
  canvas->graphics = nullptr;
  canvas->bitmap = nullptr;
  return result;
}

MovableHandle BitmapToPackedDib(void* bitmapHandle) {
  HBITMAP bitmap = static_cast<HBITMAP>(bitmapHandle);
  if (!bitmap) return nullptr;
  BITMAP info;
  if (!GetObjectA(bitmap, sizeof info, &info)) return nullptr;
  int32_t depth = info.bmPlanes * info.bmBitsPixel;
  if (depth > 8) depth = 24;
  // The table counts one byte a colour when sizing and four when the pixels come; only depths of
  // 8 or fewer have one, and this layer's bitmaps are all deeper.
  const size_t colours = depth <= 8 ? static_cast<size_t>(1) << depth : 0;
  HDC screen = GetDC(nullptr);
  if (!screen) return nullptr;
  HPALETTE previous =
      SelectPalette(screen, static_cast<HPALETTE>(GetStockObject(DEFAULT_PALETTE)), FALSE);
  RealizePalette(screen);
  MovableHandle block = MovableAlloc(sizeof(BITMAPINFOHEADER) + 40 + colours);
  bool done = false;
  BITMAPINFOHEADER* header = block ? static_cast<BITMAPINFOHEADER*>(MovableLock(block)) : nullptr;
  if (header) {
    header->biSize = sizeof(BITMAPINFOHEADER);
    header->biWidth = info.bmWidth;
    header->biHeight = info.bmHeight;
    header->biPlanes = 1;
    header->biBitCount = static_cast<WORD>(depth);
    header->biCompression = BI_RGB;
    GetDIBits(screen, bitmap, 0, info.bmHeight, nullptr, reinterpret_cast<BITMAPINFO*>(header),
              DIB_RGB_COLORS);
    if (header->biSizeImage == 0) {
      header->biSizeImage = ((depth * info.bmWidth + 31) / 32) * info.bmHeight * 4;
    }
    const size_t total = header->biSize + header->biSizeImage + colours * 4;
    MovableUnlock(block);
    MovableHandle grown = MovableReAlloc(block, total);
    if (grown) {
      block = grown;
      BITMAPINFOHEADER* h = static_cast<BITMAPINFOHEADER*>(MovableLock(block));
      if (h) {
        uint8_t* bits = reinterpret_cast<uint8_t*>(h) + h->biSize + colours * 4;
        done = GetDIBits(screen, bitmap, 0, info.bmHeight, bits, reinterpret_cast<BITMAPINFO*>(h),
                         DIB_RGB_COLORS) != 0;
        MovableUnlock(block);
      }
    }
  }
  SelectPalette(screen, previous, FALSE);
  ReleaseDC(nullptr, screen);
  if (!done) {
    MovableFree(block);
    return nullptr;
  }
  return block;
}

uint64_t DrawingLine(DrawRequest* r) {
  const int32_t w = r->lineWidth;
  const int32_t margin = (w / 2 + w) * 2 + 8;
  GdiplusCanvas canvas;
  PrepareCanvas(&canvas, r->bounds.right - r->bounds.left + margin,
                r->bounds.bottom - r->bounds.top + margin, r->antialias, true);
  const int32_t minX = r->lineX1 < r->lineX2 ? r->lineX1 : r->lineX2;
  const int32_t minY = r->lineY1 < r->lineY2 ? r->lineY1 : r->lineY2;
  const int32_t shift = w + 4 + w / 2;
  GpPen* pen = MakePen(r->lineColour, static_cast<REAL>(w));
  if (r->lineCapKind != -1) {
    const LineCap cap = r->lineCapKind == 0 ? LineCapRound : LineCapFlat;
    GdipSetPenStartCap(pen, cap);
    GdipSetPenEndCap(pen, cap);
  } else {
    GdipSetPenStartCap(pen, static_cast<LineCap>(r->lineStartCap));
    GdipSetPenEndCap(pen, static_cast<LineCap>(r->lineEndCap));
  }
  GdipDrawLineI(canvas.graphics, pen, r->lineX1 - minX + shift, r->lineY1 - minY + shift,
                r->lineX2 - minX + shift, r->lineY2 - minY + shift);
  GdipDeletePen(pen);
  return Finish(&canvas);
}

uint64_t DrawingEllipse(DrawRequest* r) {
  const DrawShapeBox box = DrawShapeGeometry(r);
  GdiplusCanvas canvas;
  PrepareCanvas(&canvas, box.width, box.height, r->antialias, true);
  if (r->shapeOutline != kNoColour) {
    GpPen* pen =
        MakePen(static_cast<uint32_t>(r->shapeOutline), static_cast<REAL>(r->shapePenWidth));
    GdipDrawEllipseI(canvas.graphics, pen, box.c, box.c, box.w, box.h);
    GdipDeletePen(pen);
  }
  if (r->shapeFill != kNoColour) {
    GpSolidFill* brush = MakeBrush(static_cast<uint32_t>(r->shapeFill));
    GdipFillEllipseI(canvas.graphics, brush, box.c, box.c, box.w, box.h);
    GdipDeleteBrush(brush);
  }
  return Finish(&canvas);
}

uint64_t DrawingRectangle(DrawRequest* r) {
  const DrawShapeBox box = DrawShapeGeometry(r);
  GdiplusCanvas canvas;
  PrepareCanvas(&canvas, box.width, box.height, r->antialias, true);
  GpPen* pen = r->shapeOutline != kNoColour ? MakePen(static_cast<uint32_t>(r->shapeOutline),
                                                      static_cast<REAL>(r->shapePenWidth))
                                            : nullptr;
  GpSolidFill* brush =
      r->shapeFill != kNoColour ? MakeBrush(static_cast<uint32_t>(r->shapeFill)) : nullptr;
  if (r->cornerPercent == 0) {
    if (pen) GdipDrawRectangleI(canvas.graphics, pen, box.c, box.c, box.w, box.h);
    if (brush) GdipFillRectangleI(canvas.graphics, brush, box.c, box.c, box.w, box.h);
  } else {
    // The right and lower arcs stand at w and h, not c + w and c + h: the rounded shape is c
    // smaller on those sides than the square one, and is kept so.
    const int32_t side = box.w - box.c < box.h - box.c ? box.w - box.c : box.h - box.c;
    const int32_t d = static_cast<int32_t>(static_cast<int64_t>(side) * r->cornerPercent / 100);
    GpPath* path = nullptr;
    GdipCreatePath(FillModeAlternate, &path);
    GdipAddPathArcI(path, box.w - d, box.c, d, d, 270, 90);
    GdipAddPathArcI(path, box.w - d, box.h - d, d, d, 0, 90);
    GdipAddPathArcI(path, box.c, box.h - d, d, d, 90, 90);
    GdipAddPathArcI(path, box.c, box.c, d, d, 180, 90);
    GdipClosePathFigure(path);
    if (pen) GdipDrawPath(canvas.graphics, pen, path);
    if (brush) GdipFillPath(canvas.graphics, brush, path);
    GdipDeletePath(path);
  }
  if (pen) GdipDeletePen(pen);
  if (brush) GdipDeleteBrush(brush);
  return Finish(&canvas);
}

uint64_t DrawingPolygon(DrawRequest* r) {
  GdiplusCanvas canvas;
  PrepareCanvas(&canvas, r->bounds.right - r->bounds.left + 8, r->bounds.bottom - r->bounds.top + 8,
                r->antialias, true);
  const GpPoint* points = reinterpret_cast<const GpPoint*>(r->vertices);
  const INT count = r->vertices ? r->vertexCount : 0;
  if (r->polygonOutline != kNoColour) {
    GpPen* pen =
        MakePen(static_cast<uint32_t>(r->polygonOutline), static_cast<REAL>(r->polygonPenWidth));
    GdipSetPenLineJoin(pen, LineJoinRound);
    GdipSetPenStartCap(pen, LineCapRound);
    GdipSetPenEndCap(pen, LineCapRound);
    GdipDrawPolygonI(canvas.graphics, pen, points, count);
    GdipDeletePen(pen);
  }
  if (r->polygonFill != kNoColour) {
    GpSolidFill* brush = MakeBrush(static_cast<uint32_t>(r->polygonFill));
    GdipFillPolygonI(canvas.graphics, brush, points, count, FillModeAlternate);
    GdipDeleteBrush(brush);
  }
  return Finish(&canvas);
}

uint64_t DrawingGradient(DrawRequest* r) {
  const int32_t width = r->gradientWidth, height = r->gradientHeight;
  GdiplusCanvas canvas;
  PrepareCanvas(&canvas, width, height, 0, false);
  if (r->gradientKind == 0) {
    const GpRect rect(-1, -1, width + 1, height + 1);
    GpLineGradient* brush = nullptr;
    GdipCreateLineBrushFromRectWithAngleI(
        &rect, OpaqueArgb(r->gradientFrom), OpaqueArgb(r->gradientTo),
        static_cast<REAL>(r->gradientAngle), TRUE, WrapModeTile, &brush);
    GdipFillRectangleI(canvas.graphics, brush, rect.X, rect.Y, rect.Width, rect.Height);
    GdipDeleteBrush(brush);
  } else {
    GpPath* path = nullptr;
    GdipCreatePath(FillModeAlternate, &path);
    if (r->gradientKind == 1) {
      GdipAddPathEllipseI(path, 0, 0, width, height);
    } else {
      GdipAddPathRectangleI(path, 0, 0, width, height);
    }
    GpPathGradient* brush = nullptr;
    GdipCreatePathGradientFromPath(path, &brush);
    GdipSetPathGradientCenterColor(brush, OpaqueArgb(r->gradientFrom));
    INT points = 0;
    GdipGetPathGradientPointCount(brush, &points);
    if (points > 0) {
      ARGB surround = OpaqueArgb(r->gradientTo);
      INT one = 1;
      GdipSetPathGradientSurroundColorsWithCount(brush, &surround, &one);
    }
    const float hw = width * 0.5f, hh = height * 0.5f;
    const GpPoint centre(static_cast<INT>(r->gradientCentreX * hw / 100 + hw),
                         static_cast<INT>(r->gradientCentreY * hh / 100 + hh));
    GdipSetPathGradientCenterPointI(brush, &centre);
    if (r->gradientKind == 1) GdipGraphicsClear(canvas.graphics, OpaqueArgb(r->gradientTo));
    GdipFillPath(canvas.graphics, brush, path);
    GdipDeleteBrush(brush);
    GdipDeletePath(path);
  }
  return Finish(&canvas);
}
