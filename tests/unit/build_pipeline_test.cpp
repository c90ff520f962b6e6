#include "shell/build_pipeline.h"

#include <gtest/gtest.h>

#include "shell/packed_dib.h"
#include "tests/support/alloc_sweep.h"
#include "tests/support/test_images.h"

namespace {

// Three frames: the second changes pixel (1, 1) of the first, the third changes (2, 0) and keeps
// the second's change.
void AppendThreeFrames(FrameList* list) {
  MovableHandle first = RandomImage(4, 3, 24, 9);
  MovableHandle second = CopyMovableBlock(first), third = nullptr;
  if (second) {
    ScopedLock p(second);
    if (p) WriteDibPixel(p.bytes, 1, 1, ~ReadDibPixel(p.bytes, 1, 1) & 0xFFFFFF);
  }
  third = CopyMovableBlock(second);
  if (third) {
    ScopedLock p(third);
    if (p) WriteDibPixel(p.bytes, 2, 0, ~ReadDibPixel(p.bytes, 2, 0) & 0xFFFFFF);
  }
  for (MovableHandle image : {first, second, third}) {
    FrameRecord record{};
    record.image = image;
    record.transparentIndex = -1;
    if (!image || !AppendFrame(list, &record)) MovableFree(image);
  }
}

}  // namespace

TEST(BuildPipeline, PaletteDepths) {
  const int32_t cases[][2] = {{1, 1},  {2, 1},   {3, 2},   {5, 3},
                              {17, 5}, {129, 8}, {256, 8}, {257, 24}};
  for (const auto& c : cases) EXPECT_EQ(PaletteBits(c[0]), c[1]) << c[0];
}

TEST(BuildPipeline, SupercompressionMasksWhatAViewerAlreadySees) {
  BuildRun run{};
  AppendThreeFrames(&run.frames);
  ASSERT_EQ(run.frames.count, 3);
  ASSERT_EQ(SupercompressFrames(&run), 1);

  FrameRecord records[3];
  for (int i = 0; i < 3; ++i) ASSERT_EQ(ReadFrameRecord(&run.frames, i, &records[i]), 1);
  EXPECT_EQ(records[0].mask, nullptr);
  EXPECT_EQ(ReadFrameRecord(&run.frames, 3, &records[0]), 0);
  for (int i = 1; i < 3; ++i) {
    ScopedLock mask(records[i].mask);
    ASSERT_TRUE(mask);
    const BitmapInfoHeader* h = reinterpret_cast<const BitmapInfoHeader*>(mask.bytes);
    EXPECT_EQ(h->biBitCount, 1);
    EXPECT_EQ(h->biClrUsed, 2u);
    EXPECT_EQ(MovableSize(records[i].mask), h->biSizeImage + 48);
    EXPECT_EQ(DibTable(mask.bytes)[4], 255);
    for (int y = 0; y < 3; ++y)
      for (int x = 0; x < 4; ++x) {
        const bool changed = i == 1 ? (x == 1 && y == 1) : (x == 2 && y == 0);
        EXPECT_EQ(ReadDibPixel(mask.bytes, x, y), changed ? 0u : 1u) << i << ":" << x << "," << y;
      }
  }
  EXPECT_TRUE(SameBlocks(run.previous, records[2].image)) << "previous holds the last picture";
  MovableFree(run.previous);
  FreeFrameList(&run.frames);

  EXPECT_TRUE(SweepAllocationFailures([] {
    BuildRun sweep{};
    AppendThreeFrames(&sweep.frames);
    const int ok = sweep.frames.count == 3 && SupercompressFrames(&sweep);
    MovableFree(sweep.previous);
    FreeFrameList(&sweep.frames);
    return ok;
  }));
}

TEST(BuildPipeline, UnchangedPixelsTakeTheMarkSlotEvenWhenItIsMinusOne) {
  uint8_t palette[768] = {};
  ScopedBlock image(CreatePackedDib(3, 2, palette, 8)), mask(CreatePackedDib(3, 2, palette, 1));
  {
    ScopedLock m(mask.handle);
    WriteDibPixel(m.bytes, 0, 0, 1);
    WriteDibPixel(m.bytes, 2, 1, 1);
  }
  ASSERT_EQ(MarkUnchangedPixels(image.handle, mask.handle, 7, 0x112233), 1);
  {
    ScopedLock p(image.handle);
    EXPECT_EQ(ReadDibPixel(p.bytes, 0, 0), 7u);
    EXPECT_EQ(ReadDibPixel(p.bytes, 2, 1), 7u);
    EXPECT_EQ(ReadDibPixel(p.bytes, 1, 0), 0u);
    const uint8_t* entry = DibTable(p.bytes) + 7 * 4;
    EXPECT_EQ(entry[0], 0x11);  // blue first
    EXPECT_EQ(entry[2], 0x33);
  }
  // Slot -1: the pixels take 255 and the colour lands in the header's last field.
  ASSERT_EQ(MarkUnchangedPixels(image.handle, mask.handle, -1, 0), 1);
  ScopedLock p(image.handle);
  const BitmapInfoHeader* h = reinterpret_cast<const BitmapInfoHeader*>(p.bytes);
  EXPECT_EQ(ReadDibPixel(p.bytes, 0, 0), 255u);
  EXPECT_EQ(h->biClrImportant, 0u);  // was 256: the three low bytes are zeroed
  EXPECT_EQ(h->biClrUsed, 256u);
}
