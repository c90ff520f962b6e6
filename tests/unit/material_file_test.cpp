#include "materials/material_file.h"

#include <cstring>
#include <fstream>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "documents/settings.h"
#include "materials/data_folder.h"
#include "tests/support/alloc_sweep.h"
#include "tests/support/value_dialog.h"

namespace {

uint32_t U32At(const uint8_t* bytes, size_t at) {
  uint32_t value;
  std::memcpy(&value, bytes + at, 4);
  return value;
}

// A record with every carried field set apart from its default, and handles that must not travel.
Material Distinct() {
  Material m;
  InitMaterial(&m);
  m.kind = kMaterialGradient;
  m.solidColour = 0x123456;
  m.gradient.rotation = -45;
  std::strcpy(m.fountain.name, "Dusk");
  m.fountain.markerCount = 3;
  m.fountain.rightColour = 0xFF00AA55;
  m.fountain.markers[63] = 0xFF0000FF;
  m.texture.TextureType = 4;
  m.texture.reserved236[31] = 0x77;
  std::memset(m.tilePath, 'p', sizeof m.tilePath);  // 261 characters, no terminator
  m.tileIndex = 9;
  m.tileRect[2] = 640;
  m.tileReserved = 0xCAFEF00D;
  m.averageColour = 0x0A0B0C;
  m.tileImage = reinterpret_cast<MovableHandle>(0x1111);
  m.preview = reinterpret_cast<MovableHandle>(0x2222);
  return m;
}

class MaterialFile : public testing::Test {
 protected:
  void SetUp() override {
    folder_ = MakeTempFolder("gm5-material-file");
    SetSettingsFolder(folder_.c_str());
  }
  void TearDown() override { SetSettingsFolder(""); }
  std::string Path(int32_t id) const {
    char name[40];
    std::snprintf(name, sizeof name, "Material%05d.mtrl", id);
    return folder_ + kDataFolderName + folder_.back() + name;
  }
  Material Loaded(int32_t id, int ignoreFile) {
    ScopedBlock block(LoadButtonMaterial(id, 0x00FF00, ignoreFile));
    ScopedLock lock(block.handle);
    Material m{};
    if (lock) std::memcpy(&m, lock.bytes, sizeof m);
    return m;
  }
  std::string folder_;
};

}  // namespace

TEST(MaterialFileForm, FieldsMoveToTheirFileOffsetsAndBack) {
  const Material m = Distinct();
  uint8_t file[kMaterialFileSize];
  MaterialToFileForm(&m, file);
  EXPECT_EQ(std::memcmp(file, &m, 68), 0);
  // The fountain's size in its file form, then its count and colours four bytes lower, the tile
  // fields eight lower (no handle), and zeros where the handles and reserved spans were.
  const std::pair<size_t, uint32_t> words[] = {
      {68 + 12, 581}, {68 + 285, 3}, {68 + 293, 0xFF00AA55}, {68 + 297 + 63 * 4, 0xFF0000FF},
      {1178, 9},      {1182, 0},     {1186 + 8, 640},        {1202, 0xCAFEF00D},
      {1206, 0},      {1234, 0},     {1238, 0x0A0B0C},       {1242, 0},
      {1266, 0}};
  for (const auto& [at, value] : words) EXPECT_EQ(U32At(file, at), value) << at;
  EXPECT_EQ(file[649], 4) << "the texture";
  EXPECT_EQ(file[649 + kTextureItemSize - 1], 0x77);
  EXPECT_EQ(file[917 + 259], 'p');
  EXPECT_EQ(file[917 + 260], 0) << "tile path cut to 260";

  Material back;
  std::memset(&back, 0xEE, sizeof back);
  ASSERT_EQ(MaterialFromFileForm(file, &back), 1);
  Material expected = m;
  expected.tilePath[260] = 0;
  expected.tileImage = nullptr;
  expected.preview = nullptr;
  EXPECT_EQ(back.fountain.size, 585u);
  EXPECT_EQ(std::memcmp(&back, &expected, sizeof back), 0);

  file[0] = 'X';
  EXPECT_EQ(MaterialFromFileForm(file, &back), 0);
  EXPECT_EQ(back.solidColour, 0x123456u) << "a wrong magic leaves the record alone";
}

TEST_F(MaterialFile, SavedOnDestructionLoadedByTheNextButtonUnlessShortOrForeign) {
  ScopedBlock block(LoadButtonMaterial(123, 0x00FF00, 0));
  {
    ScopedLock lock(block.handle);
    ASSERT_TRUE(lock);
    Material* m = reinterpret_cast<Material*>(lock.bytes);
    EXPECT_EQ(m->solidColour, 0x00FF00u) << "no file: defaults and the creation colour";
    m->solidColour = 0x445566;
    m->preview = MovableAlloc(16);
  }
  const long live = MovableLiveCount();
  EXPECT_EQ(SaveButtonMaterial(123, block.Release()), 1);
  EXPECT_EQ(MovableLiveCount(), live - 2) << "the block and its preview are freed";
  EXPECT_EQ(Loaded(123, 0).solidColour, 0x445566u) << "the file's colour wins";
  EXPECT_EQ(Loaded(123, 0).preview, nullptr);
  EXPECT_EQ(Loaded(123, 1).solidColour, 0x00FF00u) << "Shift held ignores the file";

  std::string bytes(1271, '\0');
  bytes.resize(std::ifstream(Path(123), std::ios::binary).read(bytes.data(), 1271).gcount());
  ASSERT_EQ(bytes.size(), 1270u);
  std::ofstream(Path(8), std::ios::binary) << bytes.substr(0, 1269);
  bytes[7] = 'X';
  std::ofstream(Path(9), std::ios::binary) << bytes;
  EXPECT_EQ(Loaded(8, 0).solidColour, 0x00FF00u);
  EXPECT_EQ(Loaded(9, 0).solidColour, 0x00FF00u);
  EXPECT_TRUE(SweepAllocationFailures([] {
    MovableHandle material = LoadButtonMaterial(123, 0, 0);
    MovableFree(material);
    return material ? 1 : 0;
  }));
}
