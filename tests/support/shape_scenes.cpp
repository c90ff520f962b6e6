// The shape scenes: each draws on a black 64 by 64 surface through the render-surface port.
#include "tests/support/shape_scenes.h"

#include "platform/surface.h"

namespace {

constexpr int32_t kRed = 0x0000FF, kGreen = 0x00FF00, kBlue = 0xFF0000, kWhite = 0xFFFFFF;
constexpr SurfacePaint kWhiteFill = {kWhite, kSurfaceNone, 0};
const SurfacePoint kStar[] = {{32, 2}, {50, 60}, {3, 22}, {61, 22}, {14, 60}};

void Rectangle(RenderSurface* s, SurfaceRect box, SurfacePaint paint) {
  SurfaceRectangle(s, &box, &paint);
}
void Ellipse(RenderSurface* s, SurfaceRect box, SurfacePaint paint) {
  SurfaceEllipse(s, &box, &paint);
}

}  // namespace

const ShapeScene kShapeScenes[] = {
    {"fill-rects", 0,
     [](RenderSurface* s) {
       const SurfaceRect a = {3, 4, 40, 20}, b = {50, 60, 30, 30}, c = {-5, -5, 6, 70};
       SurfaceFillRect(s, &a, kRed);
       SurfaceFillRect(s, &b, kGreen);  // given right-to-left and bottom-up
       SurfaceFillRect(s, &c, kBlue);   // clipped by the surface
     }},
    {"rectangle-null-pen", 0,
     [](RenderSurface* s) {
       Rectangle(s, {5, 7, 33, 50}, kWhiteFill);
     }},
    {"rectangle-thin-pen", 0,
     [](RenderSurface* s) {
       Rectangle(s, {10, 12, 60, 40}, {kBlue, kRed, 1});
     }},
    {"polygon-axis", 0,
     [](RenderSurface* s) {
       const SurfacePoint square[] = {{6, 6}, {40, 6}, {40, 30}, {6, 30}};
       const SurfacePaint paint = {kRed, kSurfaceNone, 0};
       SurfacePolygon(s, square, 4, &paint, kFillAlternate);
     }},
    // Measured against GDI under Wine: 0, 8, 2, 1, 22 and 48 pixels. Thin lines differ in
    // which end point is drawn and in the stepping of diagonals; wide pens by a pixel along one
    // side.
    {"ellipse-null-pen", 4,
     [](RenderSurface* s) {
       Ellipse(s, {4, 9, 59, 44}, {kGreen, kSurfaceNone, 0});
     }},
    {"ellipse-thin-pen", 16,
     [](RenderSurface* s) {
       Ellipse(s, {8, 8, 56, 56}, {kWhite, kRed, 1});
     }},
    {"star-alternate", 8,
     [](RenderSurface* s) { SurfacePolygon(s, kStar, 5, &kWhiteFill, kFillAlternate); }},
    {"star-winding", 8,
     [](RenderSurface* s) { SurfacePolygon(s, kStar, 5, &kWhiteFill, kFillWinding); }},
    {"lines-thin", 30,
     [](RenderSurface* s) {
       SurfaceLine(s, 2, 5, 60, 5, kWhite, 1);
       SurfaceLine(s, 5, 60, 5, 10, kRed, 1);
       SurfaceLine(s, 10, 10, 60, 40, kGreen, 1);
       SurfaceLine(s, 60, 62, 12, 20, kBlue, 1);
     }},
    {"line-wide", 60, [](RenderSurface* s) { SurfaceLine(s, 8, 50, 56, 14, kWhite, 7); }},
};
const int32_t kShapeSceneCount = sizeof kShapeScenes / sizeof kShapeScenes[0];

MovableHandle RenderShapeScene(const ShapeScene* scene) {
  RenderSurface surface;
  if (!CreateRenderSurface(kShapeSceneSize, kShapeSceneSize, &surface)) return nullptr;
  scene->draw(&surface);
  ReleaseRenderSurface(&surface, kSurfaceKeepImage);
  return surface.handle;
}
