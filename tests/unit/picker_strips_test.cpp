#include "controls/picker_strips.h"

#include <gtest/gtest.h>

#include "controls/direction_picker.h"
#include "shell/packed_dib.h"
#include "tests/support/alloc_sweep.h"

namespace {

constexpr uint32_t kFill = 0xC0C0C0;
constexpr int32_t kSide = kPickerStripHeight;

int DarkPixels(const void* strip, int32_t cell) {
  int n = 0;
  for (int32_t y = 0; y < kSide; ++y)
    for (int32_t x = 0; x < kSide; ++x) n += ReadDibPixel(strip, cell * kSide + x, y) == 0;
  return n;
}

// Nonzero when cell `a` is cell `b` mirrored left to right (or top to bottom).
int Mirrored(const void* strip, int32_t a, int32_t b, int vertical) {
  for (int32_t y = 0; y < kSide; ++y)
    for (int32_t x = 0; x < kSide; ++x) {
      const int32_t mx = vertical ? x : kSide - 1 - x, my = vertical ? kSide - 1 - y : y;
      if (ReadDibPixel(strip, a * kSide + x, y) != ReadDibPixel(strip, b * kSide + mx, my))
        return 0;
    }
  return 1;
}

}  // namespace

// A strip holds one cell per direction on the fill colour, its arrow clear of the two-pixel
// margin that painting leaves out, opposite directions mirrored; a double arrow is its own
// mirror image; kinds that are not pickers have no strip.
TEST(PickerStrips, OnePictureACellWithOppositesMirrored) {
  ScopedBlock shadow(CreatePickerStrip(kControlShadowPicker, kFill));
  ScopedLock lock(shadow.handle);
  ASSERT_TRUE(lock);
  const BitmapInfoHeader* header = reinterpret_cast<const BitmapInfoHeader*>(lock.bytes);
  EXPECT_EQ(header->biWidth * 1000 + header->biHeight, 8 * kSide * 1000 + kSide);
  for (int32_t cell = 0; cell < 8; ++cell) {
    EXPECT_EQ(ReadDibPixel(lock.bytes, cell * kSide + 12, 12), 0u) << cell;  // the shaft
    EXPECT_GT(DarkPixels(lock.bytes, cell), 40) << cell;
    for (int32_t i = 0; i < kSide; ++i) {
      EXPECT_EQ(ReadDibPixel(lock.bytes, cell * kSide + i, 1), kFill) << cell;
      EXPECT_EQ(ReadDibPixel(lock.bytes, cell * kSide + 1, i), kFill) << cell;
    }
  }
  EXPECT_TRUE(Mirrored(lock.bytes, 3, 4, 0));  // right and left
  EXPECT_TRUE(Mirrored(lock.bytes, 1, 6, 1));  // up and down
  EXPECT_TRUE(Mirrored(lock.bytes, 0, 2, 0));  // up-left and up-right
  EXPECT_FALSE(Mirrored(lock.bytes, 3, 3, 0));
  // The up arrow's head is above its centre and its tail below; the right arrow's to the right.
  EXPECT_EQ(ReadDibPixel(lock.bytes, 1 * kSide + 12, 5), 0u);
  EXPECT_EQ(ReadDibPixel(lock.bytes, 1 * kSide + 12, 20), 0u);
  EXPECT_EQ(ReadDibPixel(lock.bytes, 3 * kSide + 15, 9), 0u);
  EXPECT_EQ(ReadDibPixel(lock.bytes, 3 * kSide + 5, 9), kFill);

  ScopedBlock hv(CreatePickerStrip(kControlScrollHVPicker, kFill));
  ScopedLock both(hv.handle);
  ASSERT_TRUE(both);
  EXPECT_TRUE(Mirrored(both.bytes, 0, 0, 0));
  EXPECT_EQ(ReadDibPixel(both.bytes, 4, 12), 0u);
  EXPECT_EQ(ReadDibPixel(both.bytes, kSide + 12, 4), 0u);
  EXPECT_EQ(CreatePickerStrip(kControlSpinEdit, kFill), nullptr);
  EXPECT_TRUE(SweepAllocationFailures([] {
    MovableHandle strip = CreatePickerStrip(kControlScroll4Picker, kFill);
    MovableFree(strip);
    return strip != nullptr;
  }));
}
