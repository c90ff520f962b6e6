#include "materials/matrix_dialog.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>

#include <gtest/gtest.h>

#include "documents/settings.h"
#include "materials/data_folder.h"
#include "shell/packed_dib.h"
#include "tests/support/alloc_sweep.h"
#include "tests/support/test_images.h"
#include "tests/support/value_dialog.h"

namespace {

int FileExists(const std::string& path) {
  std::FILE* f = std::fopen(path.c_str(), "rb");
  if (f) std::fclose(f);
  return f != nullptr;
}

class MatrixDialog : public testing::Test {
 protected:
  void SetUp() override {
    SetSettingsFolder(MakeTempFolder("gm5-matrix-dialog").c_str());
    std::snprintf(SettingString("MatrixLibrary"), kSettingTextSize, "%s", kMatrixDefaultFile);
    live_ = MovableLiveCount();
    TileList group;
    for (uint32_t i = 0; i < 3; ++i) group.tiles.push_back(RandomImage(4 + i, 3, 24, i));
    ASSERT_EQ(WriteMatrixFile(&group), 1);
    ClearTileList(&group);
    target_.image = RandomImage(2, 2, 24, 99);
    target_.index = 0;
  }
  void TearDown() override {
    MovableFree(target_.image);
    EXPECT_EQ(MovableLiveCount(), live_);
    std::snprintf(SettingString("MatrixLibrary"), kSettingTextSize, "%s", kMatrixDefaultFile);
    SetSettingsFolder("");
  }
  std::string Primary() const {
    char path[kDataPathSize];
    CurrentMatrixPath(path, sizeof path);
    return path;
  }
  long live_ = 0;
  TileRef target_ = {};
};

TEST_F(MatrixDialog, PicksAddsAndDeletesOnACopyThatOkHandsBack) {
  MatrixDialogState state;
  int read = 0;
  ASSERT_EQ(BeginMatrixDialog(&state, &target_, &read), 1);
  EXPECT_EQ(read, 1);
  ASSERT_EQ(state.list.tiles.size(), 3u);
  EXPECT_NE(state.tile.image, target_.image) << "the dialog works on its own copy";

  EXPECT_EQ(PickMatrixTile(&state, 3), 0);
  ASSERT_EQ(PickMatrixTile(&state, 1), 1);
  EXPECT_EQ(state.tile.index, 1u);
  EXPECT_TRUE(SameBlocks(state.tile.image, state.list.tiles[1]));

  // Refused only when both sides exceed 512; an 8-bit strip is made 24-bit.
  EXPECT_EQ(AddMatrixTile(&state, RandomImage(513, 513, 24, 5)), kTileTooLarge);
  EXPECT_EQ(state.dirty, 0);
  ASSERT_EQ(AddMatrixTile(&state, RandomImage(600, 2, 8, 6)), kTileAdded);
  ASSERT_EQ(state.list.tiles.size(), 4u);
  EXPECT_EQ(ReadPicture(state.list.tiles[3]).bits, 24);
  EXPECT_EQ(state.dirty, 1);

  // Deleting keeps the selection's place, or moves it to the new end.
  EXPECT_EQ(DeleteMatrixTile(&state, 4), -2);
  EXPECT_EQ(DeleteMatrixTile(&state, 0), 0);
  EXPECT_EQ(DeleteMatrixTile(&state, 2), 1);
  ASSERT_EQ(state.list.tiles.size(), 2u);

  EndMatrixDialog(&state, 1, &target_);
  EXPECT_EQ(target_.index, 1u);
  EXPECT_STREQ(target_.path, Primary().c_str());
  ScopedBlock written(LoadTile(target_.path, 1));
  EXPECT_EQ(ReadPicture(written.handle).width, 6) << "the group was written: tiles 1 and 2 left";
  EXPECT_TRUE(FileExists(Primary() + ".bak"));
  EXPECT_TRUE(state.list.tiles.empty());
}

TEST_F(MatrixDialog, CancelLeavesTheMaterialAndTheGroupAlone) {
  const MovableHandle before = target_.image;
  MatrixDialogState state;
  int read = 0;
  ASSERT_EQ(BeginMatrixDialog(&state, &target_, &read), 1);
  ASSERT_EQ(PickMatrixTile(&state, 2), 1);
  ASSERT_EQ(DeleteMatrixTile(&state, 0), 0);
  EndMatrixDialog(&state, 0, &target_);
  EXPECT_EQ(target_.image, before);
  EXPECT_EQ(target_.index, 0u);
  EXPECT_FALSE(FileExists(Primary() + ".bak")) << "nothing was written";
}

TEST_F(MatrixDialog, GroupsAreSavedListedOpenedAndLeft) {
  MatrixDialogState state;
  int read = 0;
  ASSERT_EQ(BeginMatrixDialog(&state, &target_, &read), 1);
  state.list.writeable = 0;
  EXPECT_EQ(SaveMatrixGroupAs(&state, "no/such/folder"), 0);
  EXPECT_STREQ(SettingString("MatrixLibrary"), kMatrixDefaultFile);
  ASSERT_EQ(SaveMatrixGroupAs(&state, "Bricks"), 1);
  EXPECT_STREQ(SettingString("MatrixLibrary"), "Bricks.MTX");
  EXPECT_EQ(CurrentMatrixGroup(), "Bricks");
  EXPECT_EQ(state.list.writeable, 1);
  const std::vector<std::string> groups = ListMatrixGroups();
  EXPECT_EQ(groups, (std::vector<std::string>{"Bricks", "rfdplgm5"}));

  // Opening a group that isn't there keeps the list; the primary one is read afresh.
  ASSERT_EQ(DeleteMatrixTile(&state, 0), 0);
  EXPECT_EQ(OpenMatrixGroup(&state, "Nowhere"), 1);
  EXPECT_EQ(state.list.tiles.size(), 2u);
  ASSERT_EQ(OpenMatrixGroup(&state, "rfdplgm5"), 1);
  EXPECT_EQ(state.list.tiles.size(), 3u);
  std::remove(Primary().c_str());
  EXPECT_EQ(ReturnToPrimaryGroup(&state), 1);
  EXPECT_EQ(CurrentMatrixGroup(), "rfdplgm5");
  EXPECT_TRUE(state.list.tiles.empty());
  EndMatrixDialog(&state, 0, &target_);
}

TEST_F(MatrixDialog, FailedAllocationsLeaveNothingBehind) {
  EXPECT_TRUE(SweepAllocationFailures([&] {
    MovableHandle picture = RandomImage(5, 5, 8, 3);  // converted to 24 bits when added
    MatrixDialogState state;
    int read = 0;
    if (!BeginMatrixDialog(&state, &target_, &read)) {
      MovableFree(picture);
      return 0;
    }
    const int added = AddMatrixTile(&state, picture) == kTileAdded;  // takes the picture
    const int ok = read && added && PickMatrixTile(&state, 1);
    EndMatrixDialog(&state, 0, &target_);
    return ok;
  }));
}

}  // namespace
