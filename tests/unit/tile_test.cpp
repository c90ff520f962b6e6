#include "materials/tile.h"

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "documents/settings.h"
#include "materials/data_folder.h"
#include "materials/material_button.h"
#include "materials/tile_file.h"
#include "shell/packed_dib.h"
#include "tests/support/alloc_sweep.h"
#include "tests/support/test_images.h"
#include "tests/support/value_dialog.h"

namespace {

uint32_t U32At(const std::vector<uint8_t>& bytes, size_t at) {
  uint32_t value;
  std::memcpy(&value, bytes.data() + at, 4);
  return value;
}

std::vector<uint8_t> ReadBytes(const std::string& path) {
  std::vector<uint8_t> bytes;
  if (std::FILE* f = std::fopen(path.c_str(), "rb")) {
    int c;
    while ((c = std::fgetc(f)) != EOF) bytes.push_back(static_cast<uint8_t>(c));
    std::fclose(f);
  }
  return bytes;
}

void WriteBytes(const std::string& path, const std::vector<uint8_t>& bytes) {
  std::FILE* f = std::fopen(path.c_str(), "wb");
  ASSERT_TRUE(f);
  std::fwrite(bytes.data(), 1, bytes.size(), f);
  std::fclose(f);
}

std::vector<uint8_t> BlockBytes(MovableHandle block) {
  ScopedLock lock(block);
  if (!lock) return {};
  return std::vector<uint8_t>(lock.bytes, lock.bytes + MovableSize(block));
}

TileRef TileOf(MovableHandle image, int32_t width, int32_t height) {
  TileRef tile = {};
  tile.image = image;
  tile.rect[2] = width;
  tile.rect[3] = height;
  return tile;
}

class Tiles : public testing::Test {
 protected:
  void SetUp() override {
    folder_ = MakeTempFolder("gm5-tiles");
    SetSettingsFolder(folder_.c_str());
    live_ = MovableLiveCount();
    // Three tiles of different depths and sizes, as a group may hold any Packed DIB.
    list_.tiles = {RandomImage(5, 3, 24, 1), RandomImage(4, 7, 8, 2), RandomImage(2, 2, 32, 3)};
  }
  void TearDown() override {
    ClearTileList(&list_);
    EXPECT_EQ(MovableLiveCount(), live_);
    SetSettingsFolder("");
  }
  std::string Path(const char* name) const { return folder_ + name; }
  std::string WriteGroup(const char* name) {
    const std::string path = Path(name);
    MatrixOwner names = {"Ada", "Lantern Works", "Reg Name"};
    EXPECT_EQ(WriteMatrixFileAt(path.c_str(), &list_, 0x5EED, &names), 1);
    return path;
  }
  std::string folder_;
  long live_ = 0;
  TileList list_;
};

TEST_F(Tiles, GroupFileRoundTripsItsTilesAndLaysOutTheHeader) {
  const std::string path = WriteGroup("group.mtx");
  const std::vector<uint8_t> file = ReadBytes(path);
  size_t expected = kMatrixHeaderSize;
  for (MovableHandle tile : list_.tiles) expected += kMatrixItemHeaderSize + MovableSize(tile);
  ASSERT_EQ(file.size(), expected);
  EXPECT_EQ(std::memcmp(file.data(), "COBLMTXf", 8), 0);
  EXPECT_EQ(U32At(file, 8), 0x5EEDu);
  EXPECT_STREQ(reinterpret_cast<const char*>(file.data() + 12), "Ada");
  EXPECT_STREQ(reinterpret_cast<const char*>(file.data() + 274), "Lantern Works");
  EXPECT_STREQ(reinterpret_cast<const char*>(file.data() + 536), "Reg Name");
  EXPECT_EQ(U32At(file, 798), 1u);
  EXPECT_EQ(U32At(file, 802), 16u);
  EXPECT_EQ(U32At(file, 806), 0u);
  EXPECT_EQ(U32At(file, 810), 97u);
  EXPECT_EQ(U32At(file, 818), 3u);
  EXPECT_EQ(U32At(file, 822), 1u);
  EXPECT_EQ(std::memcmp(file.data() + kMatrixHeaderSize, "MTXi", 4), 0);
  EXPECT_EQ(U32At(file, kMatrixHeaderSize + 4), MovableSize(list_.tiles[0]));

  TileList back;
  back.writeable = 7;
  ASSERT_EQ(ReadMatrixFileAt(path.c_str(), &back), 1);
  EXPECT_EQ(back.writeable, 1);
  ASSERT_EQ(back.tiles.size(), 3u);
  for (size_t i = 0; i < 3; ++i) {
    EXPECT_TRUE(SameBlocks(back.tiles[i], list_.tiles[i])) << i;
    ScopedBlock loaded(LoadTile(path.c_str(), static_cast<uint32_t>(i)));
    EXPECT_TRUE(SameBlocks(loaded.handle, list_.tiles[i])) << i;
  }
  EXPECT_EQ(LoadTile(path.c_str(), 3), nullptr);  // one past the last
  ClearTileList(&back);

  // A rewrite keeps the previous file as the backup.
  MovableFree(list_.tiles.back());
  list_.tiles.pop_back();
  WriteGroup("group.mtx");
  EXPECT_EQ(ReadBytes(path + ".bak"), file);
  EXPECT_EQ(U32At(ReadBytes(path), 818), 2u);
}

TEST_F(Tiles, DamagedAndMissingGroupsFailWhereTheyMust) {
  const std::vector<uint8_t> good = ReadBytes(WriteGroup("good.mtx"));
  const std::string path = Path("damaged.mtx");
  TileList read;

  // A header one byte short.
  WriteBytes(path, std::vector<uint8_t>(good.begin(), good.begin() + kMatrixHeaderSize - 1));
  EXPECT_EQ(LoadTile(path.c_str(), 0), nullptr);
  EXPECT_EQ(ReadMatrixFileAt(path.c_str(), &read), 0);

  // The last tile's data cut short: the tiles before it still load.
  WriteBytes(path, std::vector<uint8_t>(good.begin(), good.end() - 1));
  EXPECT_EQ(LoadTile(path.c_str(), 2), nullptr);
  ScopedBlock second(LoadTile(path.c_str(), 1));
  EXPECT_TRUE(SameBlocks(second.handle, list_.tiles[1]));
  EXPECT_EQ(ReadMatrixFileAt(path.c_str(), &read), 0);
  EXPECT_EQ(read.tiles.size(), 2u);
  ClearTileList(&read);

  // A size far past the end of the file is a short read, not an allocation of that size.
  std::vector<uint8_t> huge = good;
  huge[kMatrixHeaderSize + 7] = 0xFF;
  WriteBytes(path, huge);
  EXPECT_EQ(LoadTile(path.c_str(), 0), nullptr);

  // An item with a wrong magic keeps its place in the count but is never a tile.
  std::vector<uint8_t> bad = good;
  bad[kMatrixHeaderSize] = 'X';
  WriteBytes(path, bad);
  EXPECT_EQ(LoadTile(path.c_str(), 0), nullptr);
  ScopedBlock third(LoadTile(path.c_str(), 2));
  EXPECT_TRUE(SameBlocks(third.handle, list_.tiles[2]));
  ASSERT_EQ(ReadMatrixFileAt(path.c_str(), &read), 1);
  ASSERT_EQ(read.tiles.size(), 2u);
  EXPECT_TRUE(SameBlocks(read.tiles[0], list_.tiles[1]));
  ClearTileList(&read);

  // No tiles: an empty group for the dialog, no tile for a Material; the writeable flag is kept.
  std::vector<uint8_t> empty(good.begin(), good.begin() + kMatrixHeaderSize);
  empty[818] = 0;
  empty[822] = 0;
  WriteBytes(path, empty);
  EXPECT_EQ(LoadTile(path.c_str(), 0), nullptr);
  read.tiles.push_back(RandomImage(1, 1, 24, 4));
  ASSERT_EQ(ReadMatrixFileAt(path.c_str(), &read), 1);
  EXPECT_TRUE(read.tiles.empty());
  EXPECT_EQ(read.writeable, 0);

  // A missing group is empty and leaves the list as it was.
  read.tiles.push_back(RandomImage(1, 1, 24, 5));
  EXPECT_EQ(ReadMatrixFileAt(Path("none.mtx").c_str(), &read), 1);
  EXPECT_EQ(read.tiles.size(), 1u);
  EXPECT_EQ(LoadTile(Path("none.mtx").c_str(), 0), nullptr);
  ClearTileList(&read);
}

TEST_F(Tiles, FillRepeatsTheTileFromTheCornerWithoutScaling) {
  MovableHandle tile = list_.tiles[0];  // 5 by 3
  const PictureValues source = ReadPicture(tile);
  for (const auto& size : {std::pair{2, 2}, std::pair{10, 6}, std::pair{13, 8}}) {
    const TileRef ref = TileOf(tile, size.first, size.second);
    const PictureValues fill = TakePicture(TileFill(&ref));
    ASSERT_EQ(fill.width, size.first);
    ASSERT_EQ(fill.height, size.second);
    ASSERT_EQ(fill.bits, 24);
    for (int32_t y = 0; y < fill.height; ++y)
      for (int32_t x = 0; x < fill.width; ++x)
        ASSERT_EQ(fill.At(x, y), source.At(x % 5, y % 3)) << x << "," << y;
  }

  // An 8-bit tile comes out as 24 bits; ToTrueColour turns its indices into table colours.
  ScopedBlock indexed(RandomImage(3, 3, 8, 9));
  const TileRef ref = TileOf(indexed.handle, 3, 3);
  EXPECT_EQ(TakePicture(TileFill(&ref)).bits, 24);
  const PictureValues grey = TakePicture(ToTrueColour(indexed.handle));
  const PictureValues indices = ReadPicture(indexed.handle);
  ASSERT_EQ(grey.bits, 24);
  for (size_t i = 0; i < grey.values.size(); ++i)
    EXPECT_EQ(grey.values[i], indices.values[i] * 0x010101u);
}

TEST_F(Tiles, FillFallsBackOnTheDefaultTile) {
  size_t size = 0;
  const uint8_t* resource = DefaultTileBytes(&size);
  ASSERT_NE(resource, nullptr);
  const BitmapInfoHeader* h = reinterpret_cast<const BitmapInfoHeader*>(resource);
  EXPECT_EQ(h->biWidth, 90);
  EXPECT_EQ(h->biHeight, 90);
  EXPECT_EQ(h->biBitCount, 24);
  // The program's bitmap is the file in the source tree, less the file header.
  const std::vector<uint8_t> file =
      ReadBytes(std::string(GM5_SOURCE_ROOT) + "resources/default_tile.bmp");
  ASSERT_EQ(file.size(), size + 14);
  EXPECT_EQ(std::memcmp(file.data() + 14, resource, size), 0);

  ScopedBlock copy(CopyToMovableBlock(resource, size));
  const TileRef reference = TileOf(copy.handle, 200, 100);
  const PictureValues expected = TakePicture(TileFill(&reference));

  // No image, and an image whose header promises more rows than its block holds.
  ScopedBlock broken(RandomImage(4, 4, 24, 7));
  {
    ScopedLock lock(broken.handle);
    reinterpret_cast<BitmapInfoHeader*>(lock.bytes)->biHeight = 400;
  }
  for (MovableHandle image : {static_cast<MovableHandle>(nullptr), broken.handle}) {
    const TileRef tile = TileOf(image, 200, 100);
    const PictureValues fill = TakePicture(TileFill(&tile));
    EXPECT_EQ(fill.values, expected.values);
  }
}

TEST_F(Tiles, MaterialFollowsTheCurrentGroupAndFillsThroughIt) {
  char current[kDataPathSize];
  ASSERT_EQ(CurrentMatrixPath(current, sizeof current), 1);
  EXPECT_NE(std::strstr(current, "rfdplgm5.mtx"), nullptr);
  ASSERT_EQ(WriteMatrixFile(&list_), 1);

  Material material;
  InitMaterial(&material);
  material.kind = kMaterialTile;
  std::strcpy(material.tilePath, "elsewhere.mtx");
  material.tileIndex = 1;
  ReloadMaterialTile(&material);
  EXPECT_STREQ(material.tilePath, current);
  EXPECT_TRUE(SameBlocks(material.tileImage, list_.tiles[1]));

  // A record read from a document line loads its tile afresh; the line's handle is never used.
  {
    ScopedBlock block(CopyToMovableBlock(&material, sizeof material));
    const std::string line = MaterialDocumentLine(100, block.handle);
    MovableHandle read = nullptr;
    ASSERT_EQ(ReadMaterialDocumentLine(line.c_str(), &read), 1);
    {
      ScopedLock lock(read);
      const Material* back = reinterpret_cast<const Material*>(lock.bytes);
      EXPECT_NE(back->tileImage, material.tileImage);
      EXPECT_TRUE(SameBlocks(back->tileImage, list_.tiles[1]));
    }
    FreeButtonMaterial(read);
  }

  ScopedBlock fill(MaterialFill(&material, 9, 20));
  EXPECT_EQ(material.tileRect[2], 9);
  EXPECT_EQ(material.tileRect[3], 20);
  TileRef tile;
  GetMaterialTile(&material, &tile);
  ScopedBlock direct(TileFill(&tile));
  EXPECT_TRUE(SameBlocks(fill.handle, direct.handle));

  // The loaded copy outlives its file; once it is released the default tile shows.
  std::remove(current);
  ScopedBlock again(MaterialFill(&material, 9, 20));
  EXPECT_TRUE(SameBlocks(again.handle, fill.handle));
  ReloadMaterialTile(&material);
  EXPECT_EQ(material.tileImage, nullptr);
  ScopedBlock fallback(MaterialFill(&material, 9, 20));
  ASSERT_NE(fallback.handle, nullptr);
  EXPECT_FALSE(SameBlocks(fallback.handle, fill.handle));
  FreeMaterialImages(&material);
}

TEST_F(Tiles, EveryFailedAllocationIsReportedWithoutALeak) {
  const std::string path = WriteGroup("sweep.mtx");
  EXPECT_TRUE(SweepAllocationFailures([&] {
    ScopedBlock tile(LoadTile(path.c_str(), 2));
    return tile.handle != nullptr;
  }));
  EXPECT_TRUE(SweepAllocationFailures([&] {
    TileList read;
    const int ok = ReadMatrixFileAt(path.c_str(), &read) && read.tiles.size() == 3;
    ClearTileList(&read);
    return ok;
  }));
  for (MovableHandle image : {list_.tiles[1], static_cast<MovableHandle>(nullptr)}) {
    EXPECT_TRUE(SweepAllocationFailures([&] {
      Material material;
      InitMaterial(&material);
      material.kind = kMaterialTile;
      material.tileImage = image;
      ScopedBlock fill(MaterialFill(&material, 31, 17));
      return fill.handle != nullptr;
    }));
  }
  EXPECT_TRUE(SweepAllocationFailures([&] {
    TileRef copy;
    const TileRef source = TileOf(list_.tiles[0], 1, 1);
    if (!CopyTileRef(&copy, &source)) return 0;
    MovableFree(copy.image);
    return 1;
  }));
  EXPECT_TRUE(SweepAllocationFailures([&] {
    ScopedBlock colour(ToTrueColour(list_.tiles[1]));
    return colour.handle != nullptr;
  }));
}

}  // namespace
