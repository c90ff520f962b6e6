// The gradient editors' rules without windows: what a library edit does to the list and the file,
// how a fountain button's record is made, where a click lands on the strip, and which controls
// apply to each gradient type.
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "documents/settings.h"
#include "materials/data_folder.h"
#include "materials/fountain_button.h"
#include "materials/fountain_library.h"
#include "materials/fountain_markers.h"
#include "materials/gradient_dialog.h"
#include "tests/support/alloc_sweep.h"
#include "tests/support/value_dialog.h"

namespace {

FountainGradient Coloured(uint32_t left, uint32_t markerCount) {
  FountainGradient g;
  std::memset(&g, 0, sizeof g);
  InitFountainGradient(&g, 0);
  g.leftColour = left;
  g.rightColour = left ^ 0xFFFFFF;
  for (uint32_t i = 0; i < markerCount; ++i)
    g.markers[i] = ((i + 1) * 30u) << 24 | (left + i);
  g.markerCount = markerCount;
  return g;
}

std::vector<uint32_t> LeftColoursIn(const std::string& path) {
  GradientLibraryList list;
  if (!LoadGradientLibraryList(path.c_str(), &list)) return {0xDEAD};
  std::vector<uint32_t> colours;
  for (const FountainGradient& g : list.entries) colours.push_back(g.leftColour);
  return colours;
}

class GradientEditing : public testing::Test {
 protected:
  void SetUp() override {
    folder = MakeTempFolder("gm5-gradient-dialog");
    SetSettingsFolder(folder.c_str());
    path = folder + "/FountainLibrary.fll";
    std::remove(path.c_str());
    std::remove((path + ".bak").c_str());
  }
  void TearDown() override { SetSettingsFolder(""); }
  std::string folder, path;
};

}  // namespace

// Deleting rows and pressing OK rewrites the file with the rows left, in order, keeps the old file
// as the backup, and gives the button the selected entry's colours but not its name or flags.
TEST_F(GradientEditing, LibraryEditRewritesTheFileAndTakesTheSelectedEntry) {
  GradientLibraryList list;
  EXPECT_EQ(LoadGradientLibraryList(path.c_str(), &list), 0) << "no file: the dialog can't load";
  for (uint32_t c : {0x000011u, 0x000022u, 0x000033u, 0x000044u}) {
    const FountainGradient entry = Coloured(c, c >> 4);
    ASSERT_TRUE(AddToLibraryFile(path.c_str(), &entry, 7));
  }
  ASSERT_EQ(LoadGradientLibraryList(path.c_str(), &list), 1);
  ASSERT_EQ(list.entries.size(), 4u);
  EXPECT_EQ(list.selected, 0);

  EXPECT_EQ(DeleteGradientLibraryEntry(&list, 4), 0);
  list.selected = 3;
  ASSERT_EQ(DeleteGradientLibraryEntry(&list, 3), 1);
  EXPECT_EQ(list.selected, 2) << "deleting the last row selects the one above";
  list.selected = 1;
  ASSERT_EQ(DeleteGradientLibraryEntry(&list, 0), 1);
  EXPECT_EQ(list.selected, 1) << "the selection stays on its row: now the entry 0x33";

  FountainGradient button = Coloured(0x777777, 2);
  std::strcpy(button.name, "Mine");
  button.flags = kFountainLooped | kFountainOwnFile;
  ASSERT_EQ(CommitGradientLibraryList(path.c_str(), &list, &button, 9), 1);
  EXPECT_EQ(LeftColoursIn(path), std::vector<uint32_t>({0x22, 0x33}));
  EXPECT_EQ(LeftColoursIn(path + ".bak"), std::vector<uint32_t>({0x11, 0x22, 0x33, 0x44}));
  const FountainGradient expected = Coloured(0x33, 3);
  EXPECT_EQ(button.markerCount, 3u);
  EXPECT_EQ(button.leftColour, 0x33u);
  EXPECT_EQ(button.rightColour, expected.rightColour);
  EXPECT_EQ(std::memcmp(button.markers, expected.markers, sizeof button.markers), 0);
  EXPECT_STREQ(button.name, "Mine");
  EXPECT_EQ(button.flags, kFountainLooped | kFountainOwnFile);

  // A file that can't be written leaves the button as it was.
  FountainGradient before = button;
  list.selected = 0;
  EXPECT_EQ(CommitGradientLibraryList((folder + "/missing/x.fll").c_str(), &list, &button, 9), 0);
  EXPECT_EQ(std::memcmp(&before, &button, sizeof button), 0);
}

// A button starts from its file unless Shift is held; without a file from the copy it is given,
// or else from the seven-colour set; the flags follow the file choice and the caption.
TEST_F(GradientEditing, FountainRecordComesFromFileCopyOrDefaults) {
  const FountainGradient saved = Coloured(0x102030, 5);
  const FountainGradient given = Coloured(0x405060, 2);
  char file[kDataPathSize];
  ASSERT_TRUE(FountainFilePath(4242, file, sizeof file));
  std::remove(file);
  auto made = [](int32_t id, int useFile, int shift, const FountainGradient* copy, int looped) {
    FountainGradient out;
    std::memset(&out, 0xEE, sizeof out);
    ScopedBlock block(MakeFountainRecord(id, useFile, shift, copy, looped));
    ScopedLock lock(block.handle);
    if (lock) std::memcpy(&out, lock.bytes, sizeof out);
    return out;
  };
  EXPECT_EQ(made(4242, 1, 0, &given, 0).leftColour, 0x405060u) << "no file yet";
  ASSERT_TRUE(WriteFountainFile(file, &saved));
  const FountainGradient fromFile = made(4242, 1, 0, &given, 1);
  EXPECT_EQ(fromFile.leftColour, 0x102030u);
  EXPECT_EQ(fromFile.markerCount, 5u);
  EXPECT_EQ(fromFile.flags, kFountainOwnFile | kFountainLooped);
  EXPECT_EQ(made(4242, 1, 1, &given, 0).leftColour, 0x405060u) << "Shift ignores the file";
  EXPECT_EQ(made(4242, 0, 0, &given, 0).flags, 0u) << "without the file flag the file is unused";
  const FountainGradient plain = made(4242, 0, 0, nullptr, 0);
  EXPECT_EQ(plain.markerCount, 7u);
  FountainRunTime state;
  GetFountainRunTime(&plain, &state);
  EXPECT_EQ(state.strip, nullptr);
  EXPECT_EQ(state.hotMarker, -1);
  EXPECT_EQ(state.dragging, 0);
  EXPECT_TRUE(SweepAllocationFailures([&given] {
    ScopedBlock record(MakeFountainRecord(4242, 1, 0, &given, 0));
    return record.handle ? 1 : 0;
  }));
}

// The run-time fields live only in the spans a record from outside has cleared, so they never
// reach a name, a marker, a file or a document line.
TEST(FountainRunTimeFields, StayOutOfTheGradientAndItsDocumentLine) {
  FountainGradient g = Coloured(0x123456, 64);
  std::memset(g.name, 'n', 260);
  g.name[260] = 0;
  const FountainGradient before = g;
  const FountainRunTime state = {reinterpret_cast<MovableHandle>(0x1122334455667788ull), 5, 1,
                                 -70, 300};
  SetFountainRunTime(&g, &state);
  EXPECT_EQ(std::memcmp(&g, &before, offsetof(FountainGradient, name) + 261), 0);
  EXPECT_EQ(std::memcmp(&g.markerCount, &before.markerCount,
                        offsetof(FountainGradient, spare) - offsetof(FountainGradient, markerCount)),
            0);
  FountainRunTime back;
  GetFountainRunTime(&g, &back);
  EXPECT_EQ(back.strip, state.strip);
  EXPECT_EQ(back.dragStartX, -70);
  EXPECT_EQ(back.dragLastX, 300);
  EXPECT_EQ(FountainDocumentLine(1, &g), FountainDocumentLine(1, &before));
  ClearFountainRunTime(&g);
  EXPECT_EQ(std::memcmp(&g, &before, sizeof g), 0);
}

// A marker's triangle is drawn centred at the strip's left plus its offset: a click there hits
// that marker; the ends, the empty bar and the rest are told apart by their rows and columns.
TEST(FountainHitTest, MarkersEndsBarAndNothing) {
  FountainGradient g = Coloured(0, 7);  // positions 30, 60, ... 210
  const int32_t width = 276, stripWidth = width - 2 * kStripInsetX;
  for (int32_t i = 0; i < 7; ++i) {
    const int32_t centre = kStripInsetX + MarkerOffset(&g, i, stripWidth);
    EXPECT_EQ(FountainHitTest(&g, width, centre, 4), i);
    EXPECT_EQ(FountainHitTest(&g, width, centre, 9), i);
    EXPECT_EQ(FountainHitTest(&g, width, centre, 10), kFountainEmptyBar);
    EXPECT_EQ(FountainHitTest(&g, width, centre, 20), kFountainNowhere);
    // A double click where nothing stands adds a marker near the place.
    const int32_t between = centre + 15;
    EXPECT_EQ(FountainHitTest(&g, width, between, 3), kFountainEmptyBar);
    EXPECT_NEAR(ClickMarkerPosition(between, kStripInsetX, stripWidth), 30 * (i + 1) + 14, 1);
  }
  EXPECT_EQ(FountainHitTest(&g, width, 3, 5), kFountainLeftEnd);
  EXPECT_EQ(FountainHitTest(&g, width, width - kStripInsetX + 4, 5), kFountainRightEnd);
  EXPECT_EQ(FountainHitTest(&g, width, 2, 5), kFountainNowhere);
}

TEST(GradientDialogRules, TypeButtonsAndTheControlsEachTypeUses) {
  for (int32_t type = 0; type < 4; ++type)
    EXPECT_EQ(GradientTypeOfButton(GradientTypeButton(type)), type);
  EXPECT_EQ(GradientTypeButton(7), GradientTypeButton(kGradientLinear)) << "unknown: Linear";
  EXPECT_EQ(GradientTypeOfButton(105), -1);
  const int rotation[4] = {1, 1, 0, 0}, centre[4] = {0, 1, 1, 1};
  for (int32_t type = 0; type < 4; ++type) {
    EXPECT_EQ(GradientRotationApplies(type), rotation[type]) << type;
    EXPECT_EQ(GradientCentreApplies(type), centre[type]) << type;
  }
}
