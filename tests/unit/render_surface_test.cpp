#include "platform/surface.h"

#include <gtest/gtest.h>

#include "shell/packed_dib.h"
#include "tests/support/alloc_sweep.h"

namespace {

constexpr uint32_t kRed = 0x0000FF, kBlue = 0xFF0000, kWhite = 0xFFFFFF;

// Draws with `draw` on a width by height surface and returns the kept image.
template <typename Draw>
MovableHandle DrawOn(int32_t width, int32_t height, Draw draw) {
  RenderSurface surface;
  if (!CreateRenderSurface(width, height, &surface)) return nullptr;
  draw(&surface);
  ReleaseRenderSurface(&surface, kSurfaceKeepImage);
  return surface.handle;
}

}  // namespace

// Fills and rectangles land on exact pixels of a 24-bit top-down picture. Without a pen a
// rectangle's interior stops one short of the right and lower sides; with a one-pixel pen the
// outline covers the box's first and last columns and rows.
TEST(RenderSurface, FillsAndRectanglesLandOnExactPixels) {
  ScopedBlock image(DrawOn(12, 12, [](RenderSurface* s) {
    const SurfaceRect topLeft = {0, 0, 2, 1}, bottomRight = {11, 11, 12, 12};
    const SurfaceRect noPen = {1, 1, 5, 5}, withPen = {6, 6, 11, 11};
    const SurfacePaint fill = {static_cast<int32_t>(kWhite), kSurfaceNone, 0};
    const SurfacePaint outlined = {static_cast<int32_t>(kBlue), static_cast<int32_t>(kRed), 1};
    SurfaceRectangle(s, &noPen, &fill);
    SurfaceRectangle(s, &withPen, &outlined);
    SurfaceFillRect(s, &topLeft, 0x00332211);
    SurfaceFillRect(s, &bottomRight, kBlue);
  }));
  ScopedLock lock(image.handle);
  ASSERT_TRUE(lock);
  const BitmapInfoHeader* header = reinterpret_cast<const BitmapInfoHeader*>(lock.bytes);
  EXPECT_EQ(header->biBitCount, 24);
  EXPECT_EQ(header->biWidth, 12);
  EXPECT_EQ(header->biHeight, 12);
  EXPECT_EQ(MovableSize(image.handle), 40u + DibStride(12, 24) * 12);
  const uint32_t checks[][3] = {{0, 0, 0x332211}, {1, 0, 0x332211}, {2, 0, 0},      {0, 1, 0},
                                {11, 11, kBlue},  {10, 11, 0},      {1, 1, kWhite}, {3, 3, kWhite},
                                {4, 3, 0},        {3, 4, 0},        {6, 6, kRed},   {10, 10, kRed},
                                {10, 8, kRed},    {8, 8, kBlue},    {11, 8, 0}};
  for (const auto& c : checks)
    EXPECT_EQ(ReadDibPixel(lock.bytes, c[0], c[1]), c[2]) << c[0] << "," << c[1];
}

TEST(RenderSurface, ReleaseFreesOrKeepsAndFailedCreationLeavesNothing) {
  const long before = MovableLiveCount();
  RenderSurface surface;
  ASSERT_EQ(CreateRenderSurface(8, 8, &surface), 1);
  EXPECT_EQ(ReleaseRenderSurface(&surface, 0), 1);
  EXPECT_EQ(surface.handle, nullptr);
  EXPECT_EQ(surface.memoryDc, nullptr);
  EXPECT_EQ(surface.bitmap, nullptr);
  EXPECT_EQ(MovableLiveCount(), before);

  EXPECT_EQ(CreateRenderSurface(0, 8, &surface), 0);
  EXPECT_EQ(CreateRenderSurface(8, -1, &surface), 0);
  EXPECT_EQ(surface.handle, nullptr);
  EXPECT_EQ(ReleaseRenderSurface(&surface, 0), 1);  // releasing a failed surface is harmless
  EXPECT_EQ(MovableLiveCount(), before);

  EXPECT_TRUE(SweepAllocationFailures([] {
    RenderSurface s;
    if (!CreateRenderSurface(16, 9, &s)) return 0;
    ReleaseRenderSurface(&s, 0);
    return 1;
  }));
}

TEST(RenderSurface, FillModesDecideTheStarsCentre) {
  const SurfacePoint star[] = {{32, 2}, {50, 60}, {3, 22}, {61, 22}, {14, 60}};
  const SurfacePaint white = {static_cast<int32_t>(kWhite), kSurfaceNone, 0};
  ScopedBlock alternate(DrawOn(
      64, 64, [&](RenderSurface* s) { SurfacePolygon(s, star, 5, &white, kFillAlternate); }));
  ScopedBlock winding(
      DrawOn(64, 64, [&](RenderSurface* s) { SurfacePolygon(s, star, 5, &white, kFillWinding); }));
  ScopedLock a(alternate.handle), w(winding.handle);
  EXPECT_EQ(ReadDibPixel(a.bytes, 32, 32), 0u);
  EXPECT_EQ(ReadDibPixel(w.bytes, 32, 32), kWhite);
  EXPECT_EQ(ReadDibPixel(a.bytes, 32, 10), kWhite);  // a tip is filled either way
  EXPECT_EQ(ReadDibPixel(w.bytes, 32, 10), kWhite);
}

TEST(RenderSurface, EllipseIsSymmetricInsideItsBox) {
  ScopedBlock image(DrawOn(40, 30, [](RenderSurface* s) {
    const SurfaceRect box = {5, 5, 35, 25};
    const SurfacePaint paint = {static_cast<int32_t>(kWhite), kSurfaceNone, 0};
    SurfaceEllipse(s, &box, &paint);
  }));
  ScopedLock lock(image.handle);
  int filled = 0;
  for (int32_t y = 0; y < 30; ++y)
    for (int32_t x = 0; x < 40; ++x) {
      const bool on = ReadDibPixel(lock.bytes, x, y) == kWhite;
      filled += on;
      if (on) {
        EXPECT_TRUE(x >= 5 && x < 35 && y >= 5 && y < 25) << x << "," << y;
        EXPECT_EQ(ReadDibPixel(lock.bytes, 39 - x, y), kWhite) << x << "," << y;
        EXPECT_EQ(ReadDibPixel(lock.bytes, x, 29 - y), kWhite) << x << "," << y;
      }
    }
  // Close to the area of a 30 by 20 ellipse, pi * 15 * 10.
  EXPECT_NEAR(filled, 471, 25);
}

// A box with its corners swapped draws exactly the ordered box, filled and outlined with a wide
// pen, for ellipses and rectangles alike.
TEST(RenderSurface, SwappedCornersDrawTheOrderedBox) {
  const SurfacePaint paint = {static_cast<int32_t>(kWhite), static_cast<int32_t>(kRed), 4};
  for (auto shape : {SurfaceEllipse, SurfaceRectangle}) {
    const SurfaceRect ordered = {6, 4, 27, 17};
    const SurfaceRect swapped[] = {{27, 4, 6, 17}, {6, 17, 27, 4}, {27, 17, 6, 4}};
    ScopedBlock reference(DrawOn(32, 24, [&](RenderSurface* s) { shape(s, &ordered, &paint); }));
    ScopedLock r(reference.handle);
    ASSERT_TRUE(r);
    EXPECT_EQ(ReadDibPixel(r.bytes, 16, 10), kWhite);
    EXPECT_EQ(ReadDibPixel(r.bytes, 16, 4), kRed);
    for (const SurfaceRect& box : swapped) {
      ScopedBlock image(DrawOn(32, 24, [&](RenderSurface* s) { shape(s, &box, &paint); }));
      ScopedLock i(image.handle);
      ASSERT_TRUE(i);
      for (int32_t y = 0; y < 24; ++y)
        for (int32_t x = 0; x < 32; ++x)
          ASSERT_EQ(ReadDibPixel(i.bytes, x, y), ReadDibPixel(r.bytes, x, y))
              << box.left << "," << box.top << " at " << x << "," << y;
    }
  }
}
