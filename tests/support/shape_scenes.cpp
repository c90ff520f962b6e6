#include "tests/support/shape_scenes.h"

#include "platform/surface.h"
#include "shell/packed_dib.h"

namespace {

constexpr uint32_t kRed = 0x000000FF, kGreen = 0x0000FF00, kBlue = 0x00FF0000, kWhite = 0x00FFFFFF;

void FillRects(RenderSurface* s) {
  const SurfaceRect a = {3, 4, 40, 20}, b = {50, 60, 30, 30}, c = {-5, -5, 6, 70};
  SurfaceFillRect(s, &a, kRed);
  SurfaceFillRect(s, &b, kGreen);  // given right-to-left and bottom-up
  SurfaceFillRect(s, &c, kBlue);   // clipped by the surface
}

void RectangleNullPen(RenderSurface* s) {
  const SurfaceRect box = {5, 7, 33, 50};
  const SurfacePaint paint = {static_cast<int32_t>(kWhite), kSurfaceNone, 0};
  SurfaceRectangle(s, &box, &paint);
}

void RectangleThinPen(RenderSurface* s) {
  const SurfaceRect box = {10, 12, 60, 40};
  const SurfacePaint paint = {static_cast<int32_t>(kBlue), static_cast<int32_t>(kRed), 1};
  SurfaceRectangle(s, &box, &paint);
}

void EllipseNullPen(RenderSurface* s) {
  const SurfaceRect box = {4, 9, 59, 44};
  const SurfacePaint paint = {static_cast<int32_t>(kGreen), kSurfaceNone, 0};
  SurfaceEllipse(s, &box, &paint);
}

void EllipseThinPen(RenderSurface* s) {
  const SurfaceRect box = {8, 8, 56, 56};
  const SurfacePaint paint = {static_cast<int32_t>(kWhite), static_cast<int32_t>(kRed), 1};
  SurfaceEllipse(s, &box, &paint);
}

const SurfacePoint kStar[] = {{32, 2}, {50, 60}, {3, 22}, {61, 22}, {14, 60}};

void StarAlternate(RenderSurface* s) {
  const SurfacePaint paint = {static_cast<int32_t>(kWhite), kSurfaceNone, 0};
  SurfacePolygon(s, kStar, 5, &paint, kFillAlternate);
}

void StarWinding(RenderSurface* s) {
  const SurfacePaint paint = {static_cast<int32_t>(kWhite), kSurfaceNone, 0};
  SurfacePolygon(s, kStar, 5, &paint, kFillWinding);
}

void AxisPolygon(RenderSurface* s) {
  const SurfacePoint square[] = {{6, 6}, {40, 6}, {40, 30}, {6, 30}};
  const SurfacePaint paint = {static_cast<int32_t>(kRed), kSurfaceNone, 0};
  SurfacePolygon(s, square, 4, &paint, kFillAlternate);
}

void ThinLines(RenderSurface* s) {
  SurfaceLine(s, 2, 5, 60, 5, kWhite, 1);
  SurfaceLine(s, 5, 60, 5, 10, kRed, 1);
  SurfaceLine(s, 10, 10, 60, 40, kGreen, 1);
  SurfaceLine(s, 60, 62, 12, 20, kBlue, 1);
}

void WideLine(RenderSurface* s) {
  SurfaceLine(s, 8, 50, 56, 14, kWhite, 7);
}

}  // namespace

const ShapeScene kShapeScenes[] = {
    {"fill-rects", 0, FillRects},
    {"rectangle-null-pen", 0, RectangleNullPen},
    {"rectangle-thin-pen", 0, RectangleThinPen},
    {"polygon-axis", 0, AxisPolygon},
    // Measured against GDI under Wine: 0, 8, 2, 1, 22 and 48 pixels. Thin lines differ in
    // which end point is drawn and in the stepping of diagonals; wide pens by a pixel along one
    // side.
    {"ellipse-null-pen", 4, EllipseNullPen},
    {"ellipse-thin-pen", 16, EllipseThinPen},
    {"star-alternate", 8, StarAlternate},
    {"star-winding", 8, StarWinding},
    {"lines-thin", 30, ThinLines},
    {"line-wide", 60, WideLine},
};
const int32_t kShapeSceneCount = sizeof kShapeScenes / sizeof kShapeScenes[0];

MovableHandle RenderShapeScene(const ShapeScene* scene) {
  RenderSurface surface;
  if (!CreateRenderSurface(kShapeSceneSize, kShapeSceneSize, &surface)) return nullptr;
  scene->draw(&surface);
  ReleaseRenderSurface(&surface, kSurfaceKeepImage);
  return surface.handle;
}
