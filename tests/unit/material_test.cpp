#include "materials/material.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "materials/material_button.h"
#include "materials/tile_file.h"
#include "shell/packed_dib.h"
#include "tests/support/alloc_sweep.h"
#include "tests/support/test_images.h"

TEST(MaterialFill, KindsGiveTwentyFourBitImagesOfTheAskedSize) {
  Material m;
  InitMaterial(&m);
  m.solidColour = 0x0A0B0C;
  for (int height : {3, 0}) {
    ScopedBlock image(MaterialFill(&m, height ? 5 : 0, height));
    ScopedLock lock(image.handle);
    ASSERT_TRUE(lock);
    const BitmapInfoHeader* h = reinterpret_cast<const BitmapInfoHeader*>(lock.bytes);
    const BitmapInfoHeader expected = {
        40, height ? 5 : 0, height, 1, 24, 0, static_cast<uint32_t>(16 * height), 0, 0, 0, 0};
    EXPECT_EQ(std::memcmp(h, &expected, 40), 0) << height;
    EXPECT_EQ(MovableSize(image.handle), 40u + 16 * height);
    for (int y = 0; y < height; ++y)
      for (int x = 0; x < 5; ++x) EXPECT_EQ(ReadDibPixel(lock.bytes, x, y), 0x0A0B0Cu);
  }
  m.kind = kMaterialGradient;
  m.gradient.type = kGradientConical;
  {
    ScopedBlock fill(MaterialFill(&m, 16, 10));
    ScopedBlock direct(MakeGradientImage(16, 10, &m.gradient, &m.fountain));
    EXPECT_TRUE(SameBlocks(fill.handle, direct.handle));
  }
  m.kind = 4;  // unknown: black, not a failure
  {
    ScopedBlock black(MaterialFill(&m, 4, 4));
    ScopedLock lock(black.handle);
    ASSERT_TRUE(lock);
    EXPECT_EQ(ReadDibPixel(lock.bytes, 2, 2), 0u);
  }
  m.kind = kMaterialTile;  // no tile loaded: the default tile, not a failure
  {
    ScopedBlock tile(MaterialFill(&m, 7, 9));
    EXPECT_NE(tile.handle, nullptr);
    EXPECT_EQ(m.tileRect[2], 7);
    EXPECT_EQ(m.tileRect[3], 9);
  }
  m.kind = kMaterialGradient;
  m.gradient.type = kGradientElliptical;
  m.gradient.twoColour = 0;
  EXPECT_TRUE(SweepAllocationFailures([&] {
    MovableHandle image = MaterialFill(&m, 9, 6);
    MovableFree(image);
    return image != nullptr;
  }));
}

TEST(MaterialDocumentLine, RoundTripsTheRecordAndClearsItsHandles) {
  MovableHandle written = CreateButtonMaterial(0x112233);
  {
    ScopedLock lock(written);
    Material* m = reinterpret_cast<Material*>(lock.bytes);
    m->kind = kMaterialGradient;
    m->tileReserved = 0xDEADBEEF;
    std::strcpy(m->tilePath, "C:\\tiles\\a.mtx");
    m->preview = MaterialFill(m, 4, 4);
    ASSERT_NE(m->preview, nullptr);
  }
  const std::string line = MaterialDocumentLine(105, written);
  ASSERT_EQ(line.size(), std::string("MATLBT105=").size() + 2564 + 1);
  EXPECT_EQ(line.rfind("MATLBT105=434F424C434D4154", 0), 0u);  // "COBLCMAT" in upper-case hex

  // A lower-case key with blanks after "=" reads; the handles written are not taken over.
  std::string lower = "matlbt105=  " + line.substr(10);
  MovableHandle read = CreateButtonMaterial(0);
  ASSERT_EQ(ReadMaterialDocumentLine(lower.c_str(), &read), 1);
  {
    ScopedLock a(written), b(read);
    Material* m = reinterpret_cast<Material*>(b.bytes);
    Material expected;
    std::memcpy(&expected, a.bytes, sizeof(expected));
    expected.preview = nullptr;
    // A record read takes its tile from the current matrix group, whose path it then names.
    char group[sizeof expected.tilePath];
    if (CurrentMatrixPath(group, sizeof group)) {
      std::memset(expected.tilePath, 0, sizeof expected.tilePath);
      std::memcpy(expected.tilePath, group, strnlen(group, sizeof group - 1));
    }
    expected.tileImage = m->tileImage;  // whatever that group holds at the index, or null
    EXPECT_EQ(std::memcmp(&expected, m, sizeof(expected)), 0);
  }

  // Short text decodes as far as it goes; a bad digit or another key keeps the old record.
  EXPECT_EQ(ReadMaterialDocumentLine("MATLBT105=434F4", &read), 1);
  {
    ScopedLock b(read);
    EXPECT_EQ(b.bytes[0] << 16 | b.bytes[1] << 8 | b.bytes[2], 0x434F40);
    EXPECT_EQ(b.bytes[1281], 0);
  }
  const MovableHandle before = read;
  EXPECT_EQ(ReadMaterialDocumentLine("MATLBT105=43 4F", &read), 0);
  EXPECT_EQ(ReadMaterialDocumentLine("MATLBX105=434F", &read), 0);
  EXPECT_EQ(ReadMaterialDocumentLine("MATLBT105", &read), 0);
  EXPECT_EQ(read, before);
  EXPECT_TRUE(
      SweepAllocationFailures([&] { return ReadMaterialDocumentLine(line.c_str(), &read); }));
  FreeButtonMaterial(written);
  FreeButtonMaterial(read);
}

TEST(CentredCrop, KeepsTheMiddleRowsOrColumnsAndTheTable) {
  ScopedBlock square(RandomImage(100, 100, 8, 3));
  ScopedBlock wide(CentredCrop(square.handle, 100, 40)), tall(CentredCrop(square.handle, 40, 100));
  ScopedLock s(square.handle), w(wide.handle), t(tall.handle);
  ASSERT_TRUE(s && w && t);
  for (int y = 0; y < 40; ++y)
    for (int x = 0; x < 100; x += 9) {
      ASSERT_EQ(ReadDibPixel(w.bytes, x, y), ReadDibPixel(s.bytes, x, y + 30));
      ASSERT_EQ(ReadDibPixel(t.bytes, y, x), ReadDibPixel(s.bytes, y + 30, x));
    }
  EXPECT_EQ(std::memcmp(DibTable(w.bytes), DibTable(s.bytes), 1024), 0);
}

// A texture is generated square at the larger side: fills of other aspects are its centre.
TEST(MaterialFill, TextureFillsAreTheCentreOfTheSquare) {
  Material m;
  InitMaterial(&m);
  m.kind = kMaterialTexture;
  m.texture.TextureType = kTextureCraters;
  m.texture.CreaterCount = 300;
  ScopedBlock square(MaterialFill(&m, 100, 100));
  ScopedBlock wide(MaterialFill(&m, 100, 40));
  int32_t rect[4];
  std::memcpy(rect, m.texture.rect, sizeof(rect));
  EXPECT_TRUE(rect[0] == 0 && rect[1] == 0 && rect[2] == 100 && rect[3] == 100);
  ScopedBlock tall(MaterialFill(&m, 40, 100));
  ScopedLock s(square.handle), w(wide.handle), t(tall.handle);
  ASSERT_TRUE(s && w && t);
  for (int y = 0; y < 40; ++y)
    for (int x = 0; x < 100; ++x) {
      ASSERT_EQ(ReadDibPixel(w.bytes, x, y), ReadDibPixel(s.bytes, x, y + 30)) << x << "," << y;
      ASSERT_EQ(ReadDibPixel(t.bytes, y, x), ReadDibPixel(s.bytes, y + 30, x)) << x << "," << y;
    }
  for (int32_t type : {-1, 6}) {
    m.texture.TextureType = type;
    EXPECT_EQ(MaterialFill(&m, 10, 10), nullptr) << type;
  }
}

TEST(MaterialButton, PreviewAverageCaptionAndDuplicate) {
  MovableHandle button = CreateButtonMaterial(0x204060);
  {
    ScopedLock lock(button);
    Material* m = reinterpret_cast<Material*>(lock.bytes);
    ASSERT_EQ(RefreshMaterialPreview(m, 6, 4), 1);
    EXPECT_EQ(m->averageColour, 0x204060u);
    EXPECT_EQ(MaterialCaptionColour(m->averageColour), 0xFFFFFFu);
    m->tileImage = RandomImage(3, 3, 24, 5);
    // A failed fill keeps the old preview and its average.
    const MovableHandle before = m->preview;
    m->kind = kMaterialTile;
    MovableFailAllocation(1);
    EXPECT_EQ(RefreshMaterialPreview(m, 6, 4), 0);
    MovableFailAllocation(0);
    EXPECT_EQ(m->preview, before);
    EXPECT_EQ(m->averageColour, 0x204060u);
  }
  // Halves of black and of white average to 127 per channel, and white captions stay up to 0x80.
  ScopedBlock halves(CreatePackedDib(2, 1, nullptr, 24));
  {
    ScopedLock p(halves.handle);
    WriteDibPixel(p.bytes, 1, 0, 0xFFFFFF);
  }
  EXPECT_EQ(AverageImageColour(halves.handle), 0x7F7F7Fu);
  EXPECT_EQ(MaterialCaptionColour(0x818181), 0xFFFFFFu);  // 38 + 75 + 14 = 127
  EXPECT_EQ(MaterialCaptionColour(0x838383), 0u);         // 39 + 77 + 14 = 130

  MovableHandle copy = DuplicateButtonMaterial(button);
  {
    ScopedLock a(button), b(copy);
    ASSERT_TRUE(b);
    const Material* original = reinterpret_cast<const Material*>(a.bytes);
    const Material* twin = reinterpret_cast<const Material*>(b.bytes);
    EXPECT_EQ(twin->preview, nullptr);
    EXPECT_NE(twin->tileImage, original->tileImage);
    EXPECT_TRUE(SameBlocks(twin->tileImage, original->tileImage));
    EXPECT_EQ(twin->solidColour, 0x204060u);
  }
  EXPECT_TRUE(SweepAllocationFailures([&] {
    MovableHandle twin = DuplicateButtonMaterial(button);
    FreeButtonMaterial(twin);
    return twin != nullptr;
  }));
  FreeButtonMaterial(copy);
  FreeButtonMaterial(button);
}
