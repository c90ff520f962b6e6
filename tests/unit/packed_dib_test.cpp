#include "shell/packed_dib.h"

#include <cstring>
#include <functional>

#include <gtest/gtest.h>

#include "tests/support/alloc_sweep.h"

namespace {

struct DepthCase {
  int32_t depth;
  uint16_t bits;
  uint32_t entries;
};

}  // namespace

TEST(PackedDib, DepthClassesGiveBitsTableAndSize) {
  const DepthCase cases[] = {{0, 32, 0},  {1, 1, 2},   {2, 4, 16},  {3, 4, 16}, {4, 4, 16},
                             {5, 8, 256}, {7, 8, 256}, {8, 8, 256}, {9, 24, 0}, {24, 24, 0},
                             {25, 32, 0}, {32, 32, 0}, {-3, 32, 0}};
  for (const DepthCase& c : cases) {
    MovableHandle h = CreatePackedDib(13, 5, nullptr, c.depth);
    ASSERT_NE(h, nullptr) << c.depth;
    const uint32_t stride = ((13 * c.bits + 31) / 32) * 4;
    EXPECT_EQ(MovableSize(h), 40 + c.entries * 4 + stride * 5) << c.depth;
    {
      ScopedLock lock(h);
      const BitmapInfoHeader* header = reinterpret_cast<const BitmapInfoHeader*>(lock.bytes);
      EXPECT_EQ(header->biSize, 40u);
      EXPECT_EQ(header->biWidth, 13);
      EXPECT_EQ(header->biHeight, 5);
      EXPECT_EQ(header->biPlanes, 1);
      EXPECT_EQ(header->biBitCount, c.bits) << c.depth;
      EXPECT_EQ(header->biCompression, 0u);
      EXPECT_EQ(header->biSizeImage, stride * 5);
      EXPECT_EQ(header->biClrUsed, c.entries);
      EXPECT_EQ(DibBits(lock.bytes), lock.bytes + 40 + c.entries * 4);
    }
    MovableFree(h);
  }
  EXPECT_EQ(CreatePackedDib(-1, 4, nullptr, 24), nullptr);
  EXPECT_EQ(CreatePackedDib(4, -1, nullptr, 24), nullptr);
  EXPECT_EQ(CreatePackedDib(0x7FFFFFFF, 0x7FFFFFFF, nullptr, 24), nullptr);
}

TEST(PackedDib, PaletteFillsOnlyTheTableEntriesAsBlueGreenRed) {
  uint8_t palette[768];
  for (int i = 0; i < 768; ++i) palette[i] = static_cast<uint8_t>(i * 7 + 1);
  ScopedBlock image(CreatePackedDib(3, 3, palette, 3));
  ScopedLock lock(image.handle);
  const uint8_t* table = DibTable(lock.bytes);
  for (int i = 0; i < 16; ++i) {
    EXPECT_EQ(table[i * 4 + 0], palette[i * 3 + 2]);
    EXPECT_EQ(table[i * 4 + 1], palette[i * 3 + 1]);
    EXPECT_EQ(table[i * 4 + 2], palette[i * 3 + 0]);
    EXPECT_EQ(table[i * 4 + 3], 0);
  }
  // The bits of a 4-bit image follow a 16-entry table directly and start zeroed.
  EXPECT_EQ(DibBits(lock.bytes)[0], 0);
}

TEST(PackedDib, PixelBytesSitInBottomUpRows) {
  // y = 0 is the last row in memory; red is stored at +2; the leftmost 1-bit pixel is bit 7 and
  // only bit 0 of a value counts.
  ScopedBlock colour(CreatePackedDib(5, 3, nullptr, 24)), bits(CreatePackedDib(9, 2, nullptr, 1));
  ScopedLock c(colour.handle), b(bits.handle);
  WriteDibPixel(c.bytes, 1, 0, 0x00332211);
  const uint8_t* top = DibBits(c.bytes) + 2 * DibStride(5, 24) + 3;
  EXPECT_EQ(top[0] << 16 | top[1] << 8 | top[2], 0x332211);
  WriteDibPixel(b.bytes, 0, 0, 1);
  WriteDibPixel(b.bytes, 8, 0, 3);
  const uint8_t* lastRow = DibBits(b.bytes) + DibStride(9, 1);
  EXPECT_EQ(lastRow[0] << 8 | lastRow[1], 0x8080);
  WriteDibPixel(b.bytes, 0, 0, 2);
  EXPECT_EQ(lastRow[0], 0x00);
}

TEST(PackedDib, EveryDepthRoundTripsAndKeepsNeighbours) {
  const int32_t depths[] = {1, 4, 8, 24, 32};
  const uint32_t masks[] = {0x1, 0xF, 0xFF, 0xFFFFFF, 0xFFFFFFFF};
  auto value = [](int x, int y) { return x * 2654435761u + y * 40503u; };
  for (int d = 0; d < 5; ++d) {
    // Odd width so that rows carry padding and 4-bit pixels end on a half byte.
    ScopedBlock image(CreatePackedDib(11, 4, nullptr, depths[d]));
    ScopedLock lock(image.handle);
    for (int y = 0; y < 4; ++y)
      for (int x = 0; x < 11; ++x) WriteDibPixel(lock.bytes, x, y, value(x, y));
    for (int y = 0; y < 4; ++y)
      for (int x = 0; x < 11; ++x)
        ASSERT_EQ(ReadDibPixel(lock.bytes, x, y), value(x, y) & masks[d])
            << "depth " << depths[d] << " at " << x << "," << y;
  }
}

TEST(PackedDib, OutsideReadsAllOnesAndWritesNothing) {
  MovableHandle h = CreatePackedDib(4, 4, nullptr, 8);
  uint8_t* image = static_cast<uint8_t*>(MovableLock(h));
  const size_t size = MovableSize(h);
  const int32_t outside[][2] = {{4, 0},         {0, 4}, {-1, 0}, {0, -1}, {-2147483647 - 1, 2},
                                {2, 2147483647}};
  for (const auto& p : outside) {
    EXPECT_EQ(ReadDibPixel(image, p[0], p[1]), 0xFFFFFFFFu);
    WriteDibPixel(image, p[0], p[1], 0xFF);
  }
  for (size_t i = 0; i < size; ++i) ASSERT_EQ(image[i], i < 40 ? image[i] : 0) << i;
  // An unknown depth reads as all ones and is never written.
  reinterpret_cast<BitmapInfoHeader*>(image)->biBitCount = 16;
  EXPECT_EQ(ReadDibPixel(image, 1, 1), 0xFFFFFFFFu);
  WriteDibPixel(image, 1, 1, 0x12345678);
  for (size_t i = 40; i < size; ++i) ASSERT_EQ(image[i], 0) << i;
  MovableUnlock(h);
  MovableFree(h);
}

TEST(PackedDib, CopiesAreWholeAndIndependentAndLeakNothingWhenAllocationFails) {
  const char text[] = "packed";
  ScopedBlock a(CopyToMovableBlock(text, sizeof text));
  ScopedBlock b(CopyMovableBlock(a.handle)), c(DuplicateHandle(a.handle));
  ASSERT_TRUE(a.handle && b.handle && c.handle);
  EXPECT_NE(b.handle, a.handle);
  ScopedLock la(a.handle), lb(b.handle), lc(c.handle);
  la.bytes[0] = 'P';
  EXPECT_STREQ(reinterpret_cast<char*>(lb.bytes), "packed");
  EXPECT_STREQ(reinterpret_cast<char*>(lc.bytes), "packed");
  EXPECT_EQ(CopyMovableBlock(nullptr), nullptr);
  const std::function<MovableHandle()> makers[] = {[] { return CreatePackedDib(7, 7, nullptr, 8); },
                                                   [&] { return CopyMovableBlock(a.handle); }};
  for (const auto& make : makers)
    EXPECT_TRUE(SweepAllocationFailures([&] {
      MovableHandle h = make();
      MovableFree(h);
      return h != nullptr;
    }));
}
