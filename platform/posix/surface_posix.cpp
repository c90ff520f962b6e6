// Render surfaces on Cairo: an RGB24 image surface (32 bits a pixel, top-down) with antialiasing
// off, so that filled shapes have hard edges as on GDI. Shapes follow GDI's pixel rules where Cairo
// can express them: rectangles and fills are exact; ellipses, polygons and wide pens differ from
// GDI by at most a pixel along their edges. The write-back turns the rows into the bottom-up
// 24-bit Packed DIB.
#include <cairo.h>

#include <algorithm>
#include <cmath>
#include <cstring>

#include "shell/packed_dib.h"
#include "platform/posix/font_face_posix.h"
#include "platform/surface_image.h"

namespace {

cairo_t* Context(RenderSurface* surface) { return static_cast<cairo_t*>(surface->memoryDc); }

void SetColour(cairo_t* cr, uint32_t colour) {
  cairo_set_source_rgb(cr, (colour & 0xFF) / 255.0, ((colour >> 8) & 0xFF) / 255.0,
                       ((colour >> 16) & 0xFF) / 255.0);
}

// Strokes the current path with the pen, or drops it when there is none.
void StrokeWithPen(cairo_t* cr, const SurfacePaint* paint) {
  if (paint->pen == kSurfaceNone) {
    cairo_new_path(cr);
    return;
  }
  SetColour(cr, static_cast<uint32_t>(paint->pen));
  cairo_set_line_width(cr, std::max(1, paint->penWidth));
  cairo_set_line_join(cr, CAIRO_LINE_JOIN_ROUND);
  cairo_set_line_cap(cr, CAIRO_LINE_CAP_ROUND);
  cairo_stroke(cr);
}

void FillWithBrush(cairo_t* cr, const SurfacePaint* paint) {
  if (paint->brush == kSurfaceNone) return;
  SetColour(cr, static_cast<uint32_t>(paint->brush));
  cairo_fill_preserve(cr);
}

void EllipsePath(cairo_t* cr, double left, double top, double right, double bottom) {
  const double width = right - left;
  const double height = bottom - top;
  if (width <= 0 || height <= 0) return;
  cairo_save(cr);
  cairo_translate(cr, left + width / 2, top + height / 2);
  cairo_scale(cr, width / 2, height / 2);
  cairo_arc(cr, 0, 0, 1, 0, 2 * 3.14159265358979323846);
  cairo_restore(cr);
}

}  // namespace

int CreateRenderSurface(int32_t width, int32_t height, RenderSurface* surface) {
  if (!AllocateSurfaceImage(width, height, surface)) return 0;
  cairo_surface_t* image = cairo_image_surface_create(CAIRO_FORMAT_RGB24, width, height);
  if (cairo_surface_status(image) != CAIRO_STATUS_SUCCESS) {
    cairo_surface_destroy(image);
    ReleaseRenderSurface(surface, 0);
    return 0;
  }
  surface->bitmap = image;
  surface->bits = cairo_image_surface_get_data(image);
  cairo_t* cr = cairo_create(image);
  if (cairo_status(cr) != CAIRO_STATUS_SUCCESS) {
    cairo_destroy(cr);
    ReleaseRenderSurface(surface, 0);
    return 0;
  }
  cairo_set_antialias(cr, CAIRO_ANTIALIAS_NONE);
  surface->memoryDc = cr;
  // A new Cairo image is all zero, which is black.
  return 1;
}

int ReleaseRenderSurface(RenderSurface* surface, uint32_t flags) {
  cairo_surface_t* image = static_cast<cairo_surface_t*>(surface->bitmap);
  if (image) cairo_surface_flush(image);
  if (surface->bits && surface->header) {
    const int32_t width = surface->rect.right;
    const int32_t height = surface->rect.bottom;
    const int32_t sourceStride = cairo_image_surface_get_stride(image);
    const uint32_t targetStride = DibStride(width, 24);
    uint8_t* target = DibBits(surface->header);
    for (int32_t y = 0; y < height; ++y) {
      const uint32_t* source = reinterpret_cast<const uint32_t*>(
          static_cast<const uint8_t*>(surface->bits) + static_cast<size_t>(y) * sourceStride);
      uint8_t* row = target + static_cast<size_t>(height - 1 - y) * targetStride;
      for (int32_t x = 0; x < width; ++x) {
        const uint32_t pixel = source[x];  // 0x00RRGGBB in native order
        row[x * 3 + 0] = static_cast<uint8_t>(pixel);
        row[x * 3 + 1] = static_cast<uint8_t>(pixel >> 8);
        row[x * 3 + 2] = static_cast<uint8_t>(pixel >> 16);
      }
    }
  }
  if (surface->memoryDc) cairo_destroy(Context(surface));
  surface->memoryDc = nullptr;
  if (image) cairo_surface_destroy(image);
  surface->bitmap = nullptr;
  surface->bits = nullptr;
  FinishSurfaceImage(surface, flags);
  return 1;
}

int SurfaceFillRect(RenderSurface* surface, const SurfaceRect* rect, uint32_t colour) {
  cairo_t* cr = Context(surface);
  if (!cr) return 0;
  if (rect->right <= rect->left || rect->bottom <= rect->top) return 1;
  SetColour(cr, colour);
  cairo_rectangle(cr, rect->left, rect->top, rect->right - rect->left, rect->bottom - rect->top);
  cairo_fill(cr);
  return 1;
}

int SurfacePolygon(RenderSurface* surface, const SurfacePoint* points, int32_t count,
                   const SurfacePaint* paint, int32_t fillMode) {
  cairo_t* cr = Context(surface);
  if (!cr || !points || count < 2) return 0;
  cairo_set_fill_rule(cr, fillMode == kFillWinding ? CAIRO_FILL_RULE_WINDING
                                                   : CAIRO_FILL_RULE_EVEN_ODD);
  // GDI takes a pixel whose corner lies inside the polygon; Cairo samples pixel centres. Moving
  // the polygon by just under half a pixel makes the two agree, and keeps the right and lower
  // edges of an axis-aligned polygon out, as GDI does.
  constexpr double kCornerToCentre = 0.49;
  cairo_move_to(cr, points[0].x + kCornerToCentre, points[0].y + kCornerToCentre);
  for (int32_t i = 1; i < count; ++i)
    cairo_line_to(cr, points[i].x + kCornerToCentre, points[i].y + kCornerToCentre);
  cairo_close_path(cr);
  FillWithBrush(cr, paint);
  if (paint->pen != kSurfaceNone) {
    cairo_new_path(cr);
    cairo_move_to(cr, points[0].x + 0.5, points[0].y + 0.5);
    for (int32_t i = 1; i < count; ++i) cairo_line_to(cr, points[i].x + 0.5, points[i].y + 0.5);
    cairo_close_path(cr);
  }
  StrokeWithPen(cr, paint);
  return 1;
}

int SurfaceEllipse(RenderSurface* surface, const SurfaceRect* box, const SurfacePaint* paint) {
  cairo_t* cr = Context(surface);
  if (!cr) return 0;
  // A box given with its corners swapped draws as the ordered box, as GDI's Ellipse does: the
  // glossy ball's innermost rings have their left past their right.
  const int32_t left = std::min(box->left, box->right), right = std::max(box->left, box->right);
  const int32_t top = std::min(box->top, box->bottom), bottom = std::max(box->top, box->bottom);
  // Sampled at pixel centres, the ellipse inscribed in the whole box gives GDI's interior.
  EllipsePath(cr, left, top, right, bottom);
  FillWithBrush(cr, paint);
  if (paint->pen != kSurfaceNone) {
    cairo_new_path(cr);
    EllipsePath(cr, left + 0.5, top + 0.5, right - 0.5, bottom - 0.5);
  }
  StrokeWithPen(cr, paint);
  return 1;
}

int SurfaceRectangle(RenderSurface* surface, const SurfaceRect* box, const SurfacePaint* paint) {
  cairo_t* cr = Context(surface);
  if (!cr) return 0;
  const int32_t left = std::min(box->left, box->right), right = std::max(box->left, box->right);
  const int32_t top = std::min(box->top, box->bottom), bottom = std::max(box->top, box->bottom);
  if (right - left < 2 || bottom - top < 2) return 1;
  if (paint->brush != kSurfaceNone) {
    SetColour(cr, static_cast<uint32_t>(paint->brush));
    cairo_rectangle(cr, left, top, right - left - 1, bottom - top - 1);
    cairo_fill(cr);
  }
  if (paint->pen != kSurfaceNone) {
    // The pen runs along the centres of the first and last columns and rows.
    cairo_rectangle(cr, left + 0.5, top + 0.5, right - left - 1, bottom - top - 1);
    StrokeWithPen(cr, paint);
  }
  return 1;
}

int SurfaceLine(RenderSurface* surface, int32_t x0, int32_t y0, int32_t x1, int32_t y1,
                uint32_t colour, int32_t penWidth) {
  cairo_t* cr = Context(surface);
  if (!cr) return 0;
  SetColour(cr, colour);
  cairo_set_line_width(cr, std::max(1, penWidth));
  cairo_set_line_cap(cr, penWidth > 1 ? CAIRO_LINE_CAP_ROUND : CAIRO_LINE_CAP_BUTT);
  cairo_move_to(cr, x0 + 0.5, y0 + 0.5);
  cairo_line_to(cr, x1 + 0.5, y1 + 0.5);
  cairo_stroke(cr);
  return 1;
}

int SurfaceRotatedChar(RenderSurface* surface, const LayoutFont* font, int32_t escapement,
                       int32_t antialias, int32_t x, int32_t y, uint8_t byte, uint32_t colour) {
  cairo_surface_t* image = static_cast<cairo_surface_t*>(surface->bitmap);
  PosixFont* posix = font ? PosixFontFromContext(font->font) : nullptr;
  if (!image || !surface->bits || !posix) return 0;
  // FreeType turns the outline about the pen position, counter-clockwise with y up, which is how
  // the glyph bitmap's rows are laid out below its top.
  const double radians = escapement / 10.0 * 3.14159265358979323846 / 180.0;
  FT_Matrix turn;
  turn.xx = static_cast<FT_Fixed>(std::lround(std::cos(radians) * 65536.0));
  turn.xy = static_cast<FT_Fixed>(std::lround(-std::sin(radians) * 65536.0));
  turn.yx = -turn.xy;
  turn.yy = turn.xx;
  FT_Set_Transform(posix->face, &turn, nullptr);
  const FT_Int32 flags = FT_LOAD_RENDER | FT_LOAD_NO_BITMAP | FT_LOAD_NO_HINTING |
                         (antialias ? FT_LOAD_TARGET_NORMAL : FT_LOAD_TARGET_MONO);
  const FT_Error error = FT_Load_Char(posix->face, CodePageCharacter(byte), flags);
  FT_Set_Transform(posix->face, nullptr, nullptr);
  if (error) return 0;
  const FT_Bitmap& glyph = posix->face->glyph->bitmap;
  const bool mono = glyph.pixel_mode == FT_PIXEL_MODE_MONO;
  const int32_t left = x + posix->face->glyph->bitmap_left;
  const int32_t top = y - posix->face->glyph->bitmap_top;
  const int32_t width = surface->rect.right, height = surface->rect.bottom;
  const int32_t stride = cairo_image_surface_get_stride(image);
  cairo_surface_flush(image);
  for (int32_t row = 0; row < static_cast<int32_t>(glyph.rows); ++row) {
    const int32_t py = top + row;
    if (py < 0 || py >= height) continue;
    const uint8_t* line = glyph.buffer + static_cast<ptrdiff_t>(row) * glyph.pitch;
    uint32_t* target = reinterpret_cast<uint32_t*>(static_cast<uint8_t*>(surface->bits) +
                                                   static_cast<size_t>(py) * stride);
    for (int32_t column = 0; column < static_cast<int32_t>(glyph.width); ++column) {
      const int32_t px = left + column;
      if (px < 0 || px >= width) continue;
      const uint32_t cover =
          mono ? ((line[column >> 3] >> (7 - (column & 7))) & 1) * 255u : line[column];
      if (!cover) continue;
      // The pixel is 0x00RRGGBB, the colour 0x00BBGGRR.
      const uint32_t under = target[px];
      uint32_t pixel = 0;
      for (int c = 0; c < 3; ++c) {
        const uint32_t u = (under >> (8 * c)) & 0xFF, o = (colour >> (16 - 8 * c)) & 0xFF;
        pixel |= (u * (255 - cover) / 255 + o * cover / 255) << (8 * c);
      }
      target[px] = pixel;
    }
  }
  cairo_surface_mark_dirty(image);
  return 1;
}
