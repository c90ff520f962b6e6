// The drawing layer's shapes, gradients and text paths on Cairo. Each operation draws into a
// black RGB24 Cairo image and copies it into a new 24-bit Packed DIB. Coordinates are shifted by
// half a pixel so that integer positions name pixel centres, as in GDI+; without antialiasing
// Cairo's aliased rasteriser takes the place of GDI+'s. GDI+'s path gradients, which run straight
// from the centre to each point of the boundary, are drawn as a fan of mesh triangles.
#include <cairo.h>

#include <cmath>
#include <cstring>

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_OUTLINE_H

#include "platform/posix/drawing_posix.h"
#include "platform/posix/font_face_posix.h"
#include "shell/packed_dib.h"

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr int32_t kNoColour = -1;

// LineCap values of GDI+.
constexpr uint32_t kCapFlat = 0, kCapSquare = 1, kCapRound = 2, kCapSquareAnchor = 0x11,
                   kCapRoundAnchor = 0x12;

// A Cairo image and its context, destroyed together.
struct Canvas {
  cairo_surface_t* surface = nullptr;
  cairo_t* cr = nullptr;
  ~Canvas() {
    if (cr) cairo_destroy(cr);
    if (surface) cairo_surface_destroy(surface);
  }
};

// A black canvas of width by height; false when Cairo cannot make it.
bool OpenCanvas(Canvas* canvas, int32_t width, int32_t height) {
  if (width < 1 || height < 1) return false;
  canvas->surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, width, height);
  if (cairo_surface_status(canvas->surface) != CAIRO_STATUS_SUCCESS) return false;
  canvas->cr = cairo_create(canvas->surface);
  if (cairo_status(canvas->cr) != CAIRO_STATUS_SUCCESS) return false;
  cairo_set_source_rgb(canvas->cr, 0, 0, 0);
  cairo_paint(canvas->cr);
  cairo_translate(canvas->cr, 0.5, 0.5);
  return true;
}

void SetAntialias(Canvas* canvas, bool on) {
  cairo_set_antialias(canvas->cr, on ? CAIRO_ANTIALIAS_GOOD : CAIRO_ANTIALIAS_NONE);
}

// COLORREF 0x00BBGGRR as the source colour.
void SetColour(cairo_t* cr, uint32_t colour) {
  cairo_set_source_rgb(cr, (colour & 0xFF) / 255.0, ((colour >> 8) & 0xFF) / 255.0,
                       ((colour >> 16) & 0xFF) / 255.0);
}

// The canvas as a new 24-bit Packed DIB, or null.
MovableHandle CanvasToPackedDib(Canvas* canvas) { return BitmapToPackedDib(canvas->surface); }

cairo_line_cap_t CairoCap(uint32_t cap) {
  if (cap == kCapRound || cap == kCapRoundAnchor) return CAIRO_LINE_CAP_ROUND;
  if (cap == kCapSquare || cap == kCapSquareAnchor) return CAIRO_LINE_CAP_SQUARE;
  return CAIRO_LINE_CAP_BUTT;
}

// Strokes then fills the current path, pen first so that the fill lies over its inner half.
void PaintPath(cairo_t* cr, int32_t outline, int32_t fill, double penWidth,
               cairo_fill_rule_t rule) {
  cairo_set_fill_rule(cr, rule);
  if (outline != kNoColour) {
    SetColour(cr, static_cast<uint32_t>(outline));
    cairo_set_line_width(cr, penWidth);
    cairo_stroke_preserve(cr);
  }
  if (fill != kNoColour) {
    SetColour(cr, static_cast<uint32_t>(fill));
    cairo_fill_preserve(cr);
  }
  cairo_new_path(cr);
}

void EllipsePath(cairo_t* cr, double x, double y, double w, double h) {
  cairo_save(cr);
  cairo_translate(cr, x + w / 2, y + h / 2);
  cairo_scale(cr, w / 2 > 0 ? w / 2 : 1e-9, h / 2 > 0 ? h / 2 : 1e-9);
  cairo_new_sub_path(cr);
  cairo_arc(cr, 0, 0, 1, 0, 2 * kPi);
  cairo_close_path(cr);
  cairo_restore(cr);
}

// A quarter arc of the ellipse in the box, from `start` degrees clockwise, joined to the path.
void ArcPath(cairo_t* cr, double x, double y, double d, double start) {
  if (d <= 0) {
    cairo_line_to(cr, x, y);
    return;
  }
  const double r = d / 2;
  cairo_arc(cr, x + r, y + r, r, start * kPi / 180, (start + 90) * kPi / 180);
}

}  // namespace

MovableHandle BitmapToPackedDib(void* bitmap) {
  cairo_surface_t* surface = static_cast<cairo_surface_t*>(bitmap);
  if (!surface || cairo_surface_get_type(surface) != CAIRO_SURFACE_TYPE_IMAGE) return nullptr;
  const cairo_format_t format = cairo_image_surface_get_format(surface);
  if (format != CAIRO_FORMAT_RGB24 && format != CAIRO_FORMAT_ARGB32) return nullptr;
  cairo_surface_flush(surface);
  const int32_t width = cairo_image_surface_get_width(surface);
  const int32_t height = cairo_image_surface_get_height(surface);
  const int32_t stride = cairo_image_surface_get_stride(surface);
  const uint8_t* data = cairo_image_surface_get_data(surface);
  ScopedBlock image(CreatePackedDib(width, height, nullptr, 24));
  ScopedLock lock(image.handle);
  if (!lock || !data) return nullptr;
  for (int32_t y = 0; y < height; ++y) {
    const uint32_t* row = reinterpret_cast<const uint32_t*>(data + static_cast<size_t>(y) * stride);
    for (int32_t x = 0; x < width; ++x) {
      const uint32_t v = row[x];  // 0xXXRRGGBB
      WriteDibPixel(lock.bytes, x, y, (v >> 16 & 0xFF) | (v & 0xFF00) | (v & 0xFF) << 16);
    }
  }
  return image.Release();
}

uint64_t DrawingLine(DrawRequest* r) {
  const int32_t w = r->lineWidth;
  const int32_t margin = (w / 2 + w) * 2 + 8;
  Canvas canvas;
  if (!OpenCanvas(&canvas, r->bounds.right - r->bounds.left + margin,
                  r->bounds.bottom - r->bounds.top + margin)) {
    return 0;
  }
  SetAntialias(&canvas, r->antialias > 0);
  const int32_t minX = r->lineX1 < r->lineX2 ? r->lineX1 : r->lineX2;
  const int32_t minY = r->lineY1 < r->lineY2 ? r->lineY1 : r->lineY2;
  const int32_t shift = w + 4 + w / 2;
  cairo_t* cr = canvas.cr;
  uint32_t startCap = r->lineStartCap, endCap = r->lineEndCap;
  if (r->lineCapKind != -1) startCap = endCap = r->lineCapKind == 0 ? kCapRound : kCapFlat;
  // Cairo has one cap for both ends: the start's, unless only the end asks for more.
  cairo_set_line_cap(cr, CairoCap(startCap != kCapFlat ? startCap : endCap));
  SetColour(cr, r->lineColour);
  cairo_set_line_width(cr, w);
  cairo_move_to(cr, r->lineX1 - minX + shift, r->lineY1 - minY + shift);
  cairo_line_to(cr, r->lineX2 - minX + shift, r->lineY2 - minY + shift);
  cairo_stroke(cr);
  return reinterpret_cast<uint64_t>(CanvasToPackedDib(&canvas));
}

uint64_t DrawingEllipse(DrawRequest* r) {
  const DrawShapeBox box = DrawShapeGeometry(r);
  Canvas canvas;
  if (!OpenCanvas(&canvas, box.width, box.height)) return 0;
  SetAntialias(&canvas, r->antialias > 0);
  EllipsePath(canvas.cr, box.c, box.c, box.w, box.h);
  PaintPath(canvas.cr, r->shapeOutline, r->shapeFill, r->shapePenWidth, CAIRO_FILL_RULE_EVEN_ODD);
  return reinterpret_cast<uint64_t>(CanvasToPackedDib(&canvas));
}

uint64_t DrawingRectangle(DrawRequest* r) {
  const DrawShapeBox box = DrawShapeGeometry(r);
  Canvas canvas;
  if (!OpenCanvas(&canvas, box.width, box.height)) return 0;
  SetAntialias(&canvas, r->antialias > 0);
  cairo_t* cr = canvas.cr;
  if (r->cornerPercent == 0) {
    cairo_rectangle(cr, box.c, box.c, box.w, box.h);
  } else {
    // The right and lower arcs stand at w and h, not c + w and c + h: the rounded shape is c
    // smaller on those sides than the square one, and is kept so.
    const int32_t side = box.w - box.c < box.h - box.c ? box.w - box.c : box.h - box.c;
    const double d = static_cast<int32_t>(static_cast<int64_t>(side) * r->cornerPercent / 100);
    cairo_new_sub_path(cr);
    ArcPath(cr, box.w - d, box.c, d, 270);
    ArcPath(cr, box.w - d, box.h - d, d, 0);
    ArcPath(cr, box.c, box.h - d, d, 90);
    ArcPath(cr, box.c, box.c, d, 180);
    cairo_close_path(cr);
  }
  PaintPath(cr, r->shapeOutline, r->shapeFill, r->shapePenWidth, CAIRO_FILL_RULE_EVEN_ODD);
  return reinterpret_cast<uint64_t>(CanvasToPackedDib(&canvas));
}

uint64_t DrawingPolygon(DrawRequest* r) {
  Canvas canvas;
  if (!OpenCanvas(&canvas, r->bounds.right - r->bounds.left + 8,
                  r->bounds.bottom - r->bounds.top + 8)) {
    return 0;
  }
  SetAntialias(&canvas, r->antialias > 0);
  cairo_t* cr = canvas.cr;
  if (r->vertices && r->vertexCount > 0) {
    for (int32_t i = 0; i < r->vertexCount; ++i) {
      cairo_line_to(cr, r->vertices[2 * i], r->vertices[2 * i + 1]);
    }
    cairo_close_path(cr);
  }
  cairo_set_line_join(cr, CAIRO_LINE_JOIN_ROUND);
  cairo_set_line_cap(cr, CAIRO_LINE_CAP_ROUND);
  PaintPath(cr, r->polygonOutline, r->polygonFill, static_cast<double>(r->polygonPenWidth),
            CAIRO_FILL_RULE_EVEN_ODD);
  return reinterpret_cast<uint64_t>(CanvasToPackedDib(&canvas));
}

namespace {

void AddMeshTriangle(cairo_pattern_t* mesh, double cx, double cy, double x1, double y1, double x2,
                     double y2, uint32_t centre, uint32_t surround) {
  cairo_mesh_pattern_begin_patch(mesh);
  cairo_mesh_pattern_move_to(mesh, cx, cy);
  cairo_mesh_pattern_line_to(mesh, x1, y1);
  cairo_mesh_pattern_line_to(mesh, x2, y2);
  const uint32_t colours[3] = {centre, surround, surround};
  for (unsigned corner = 0; corner < 3; ++corner) {
    const uint32_t c = colours[corner];
    cairo_mesh_pattern_set_corner_color_rgb(mesh, corner, (c & 0xFF) / 255.0,
                                            ((c >> 8) & 0xFF) / 255.0, ((c >> 16) & 0xFF) / 255.0);
  }
  cairo_mesh_pattern_end_patch(mesh);
}

}  // namespace

uint64_t DrawingGradient(DrawRequest* r) {
  const int32_t width = r->gradientWidth, height = r->gradientHeight;
  Canvas canvas;
  if (!OpenCanvas(&canvas, width, height)) return 0;
  cairo_t* cr = canvas.cr;
  cairo_pattern_t* pattern = nullptr;
  if (r->gradientKind == 0) {
    // The angle is that of a square stretched to the rectangle (-1, -1, w + 1, h + 1): the
    // gradient's normal scales inversely. The colours span the rectangle's projection on it.
    const double x0 = -1, y0 = -1, w = width + 1.0, h = height + 1.0;
    const double a = static_cast<float>(r->gradientAngle) * kPi / 180;
    double dx = std::cos(a) / w, dy = std::sin(a) / h;
    const double length = std::sqrt(dx * dx + dy * dy);
    dx /= length, dy /= length;
    double lo = 1e300, hi = -1e300;
    for (int corner = 0; corner < 4; ++corner) {
      const double t = (x0 + (corner & 1) * w) * dx + (y0 + (corner >> 1) * h) * dy;
      lo = t < lo ? t : lo;
      hi = t > hi ? t : hi;
    }
    pattern = cairo_pattern_create_linear(lo * dx, lo * dy, hi * dx, hi * dy);
    const uint32_t from = r->gradientFrom, to = r->gradientTo;
    cairo_pattern_add_color_stop_rgb(pattern, 0, (from & 0xFF) / 255.0, (from >> 8 & 0xFF) / 255.0,
                                     (from >> 16 & 0xFF) / 255.0);
    cairo_pattern_add_color_stop_rgb(pattern, 1, (to & 0xFF) / 255.0, (to >> 8 & 0xFF) / 255.0,
                                     (to >> 16 & 0xFF) / 255.0);
    cairo_pattern_set_extend(pattern, CAIRO_EXTEND_REPEAT);  // the tiled wrap of GDI+
    cairo_rectangle(cr, x0, y0, w, h);
  } else {
    const float hw = width * 0.5f, hh = height * 0.5f;
    const double cx = static_cast<int32_t>(r->gradientCentreX * hw / 100 + hw);
    const double cy = static_cast<int32_t>(r->gradientCentreY * hh / 100 + hh);
    pattern = cairo_pattern_create_mesh();
    constexpr int kSegments = 128;
    double px = 0, py = 0;
    for (int i = 0; i <= kSegments; ++i) {
      double x, y;
      if (r->gradientKind == 1) {
        const double t = 2 * kPi * i / kSegments;
        x = hw + hw * std::cos(t), y = hh + hh * std::sin(t);
      } else {
        // Around the rectangle's edge, a quarter of the segments to each side.
        const double t = 4.0 * i / kSegments;
        const int side = static_cast<int>(t) % 4;
        const double f = t - std::floor(t);
        const double xs[4] = {f * width, static_cast<double>(width), (1 - f) * width, 0};
        const double ys[4] = {0, f * height, static_cast<double>(height), (1 - f) * height};
        x = xs[side], y = ys[side];
      }
      if (i > 0) AddMeshTriangle(pattern, cx, cy, px, py, x, y, r->gradientFrom, r->gradientTo);
      px = x, py = y;
    }
    if (r->gradientKind == 1) {
      SetColour(cr, r->gradientTo);
      cairo_paint(cr);
      EllipsePath(cr, 0, 0, width, height);
    } else {
      cairo_rectangle(cr, 0, 0, width, height);
    }
  }
  cairo_set_source(cr, pattern);
  cairo_fill(cr);
  cairo_pattern_destroy(pattern);
  return reinterpret_cast<uint64_t>(CanvasToPackedDib(&canvas));
}

namespace {

struct OutlineWalk {
  cairo_t* cr;
  double x, y;  // the glyph origin on the canvas
  double lastX, lastY;
};

double PathX(const OutlineWalk* walk, const FT_Vector* v) {
  return walk->x + v->x / 64.0;
}
double PathY(const OutlineWalk* walk, const FT_Vector* v) {
  return walk->y - v->y / 64.0;
}

int OutlineMove(const FT_Vector* to, void* user) {
  OutlineWalk* walk = static_cast<OutlineWalk*>(user);
  cairo_close_path(walk->cr);
  cairo_move_to(walk->cr, PathX(walk, to), PathY(walk, to));
  walk->lastX = to->x, walk->lastY = to->y;
  return 0;
}

int OutlineLine(const FT_Vector* to, void* user) {
  OutlineWalk* walk = static_cast<OutlineWalk*>(user);
  cairo_line_to(walk->cr, PathX(walk, to), PathY(walk, to));
  walk->lastX = to->x, walk->lastY = to->y;
  return 0;
}

int OutlineConic(const FT_Vector* control, const FT_Vector* to, void* user) {
  OutlineWalk* walk = static_cast<OutlineWalk*>(user);
  // A quadratic as the cubic with control points two thirds of the way to its control point.
  const double x0 = walk->lastX, y0 = walk->lastY;
  const FT_Vector c1 = {static_cast<FT_Pos>(x0 + 2.0 / 3 * (control->x - x0)),
                        static_cast<FT_Pos>(y0 + 2.0 / 3 * (control->y - y0))};
  const FT_Vector c2 = {static_cast<FT_Pos>(to->x + 2.0 / 3 * (control->x - to->x)),
                        static_cast<FT_Pos>(to->y + 2.0 / 3 * (control->y - to->y))};
  cairo_curve_to(walk->cr, PathX(walk, &c1), PathY(walk, &c1), PathX(walk, &c2), PathY(walk, &c2),
                 PathX(walk, to), PathY(walk, to));
  walk->lastX = to->x, walk->lastY = to->y;
  return 0;
}

int OutlineCubic(const FT_Vector* c1, const FT_Vector* c2, const FT_Vector* to, void* user) {
  OutlineWalk* walk = static_cast<OutlineWalk*>(user);
  cairo_curve_to(walk->cr, PathX(walk, c1), PathY(walk, c1), PathX(walk, c2), PathY(walk, c2),
                 PathX(walk, to), PathY(walk, to));
  walk->lastX = to->x, walk->lastY = to->y;
  return 0;
}

}  // namespace

MovableHandle DrawTextPath(const DrawRequest* r) {
  Canvas canvas;
  if (!OpenCanvas(&canvas, r->measuredWidth, r->measuredHeight)) return nullptr;
  cairo_t* cr = canvas.cr;
  cairo_translate(cr, -0.5, -0.5);  // outlines are in continuous coordinates already
  SetAntialias(&canvas, r->antialias != 0);
  // The path's font is the family at 88% of fontSize as its em, in the request's style.
  FontDescription d = {};
  d.height = r->fontSize > 0 ? r->fontSize : 1;
  d.weight = r->bold ? kFontWeightBold : kFontWeightNormal;
  d.italic = r->italic > 0;
  if (r->faceName) std::strncpy(d.faceName, r->faceName, kFaceNameBytes - 1);
  PosixFont* font = OpenPosixFont(&d);
  if (!font) return nullptr;
  const double em = static_cast<int32_t>(static_cast<int64_t>(r->fontSize) * 88 / 100);
  FT_Face face = font->face;
  FT_Set_Char_Size(face, 0, static_cast<FT_F26Dot6>(std::lround(em * 64)), 72, 72);
  const double ascent = font->ascent * em / font->emPixels;
  OutlineWalk walk = {cr, em / 6.0, ascent, 0, 0};
  const FT_Outline_Funcs funcs = {OutlineMove, OutlineLine, OutlineConic, OutlineCubic, 0, 0};
  for (const char* p = r->text ? r->text : ""; *p; ++p) {
    if (FT_Load_Char(face, CodePageCharacter(static_cast<uint8_t>(*p)),
                     FT_LOAD_NO_HINTING | FT_LOAD_NO_BITMAP)) {
      continue;
    }
    if (face->glyph->format == FT_GLYPH_FORMAT_OUTLINE) {
      FT_Outline_Decompose(&face->glyph->outline, &funcs, &walk);
      cairo_close_path(cr);
    }
    walk.x += face->glyph->linearHoriAdvance / 65536.0;
  }
  if (r->underline > 0 && walk.x > em / 6.0) {
    // The face's underline, under the whole run of advances, as part of the same path.
    const double scale = em / face->units_per_EM;
    const double thickness = face->underline_thickness * scale;
    const double top = ascent - face->underline_position * scale - thickness / 2;
    cairo_rectangle(cr, em / 6.0, top, walk.x - em / 6.0, thickness > 1 ? thickness : 1);
  }
  ClosePosixFont(font);
  cairo_set_fill_rule(cr, CAIRO_FILL_RULE_WINDING);
  if (r->textMode == kTextPathOutline) {
    // The outline pen is built from the colour's two low bytes alone: ARGB 0xFFFFRRGG.
    const uint32_t c = r->textColour;
    cairo_set_source_rgb(cr, 1.0, (c & 0xFF) / 255.0, ((c >> 8) & 0xFF) / 255.0);
    cairo_set_line_join(cr, CAIRO_LINE_JOIN_ROUND);
    cairo_set_line_width(cr, r->textPenWidth);
    cairo_stroke(cr);
  } else {
    SetColour(cr, r->textColour);
    cairo_fill(cr);
  }
  return CanvasToPackedDib(&canvas);
}
