#include <cstdio>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "materials/fountain_library.h"
#include "materials/fountain_markers.h"

namespace {

FountainGradient Empty() {
  FountainGradient g;
  std::memset(&g, 0, sizeof g);
  InitFountainGradient(&g, 0);
  return g;
}

std::vector<int> Positions(const FountainGradient& g) {
  std::vector<int> out;
  for (uint32_t i = 0; i < g.markerCount; ++i) out.push_back(static_cast<int>(g.markers[i] >> 24));
  return out;
}

TEST(FountainMarkers, AddKeepsPositionsDistinctSortedAndRefusesAtSixtyFour) {
  FountainGradient g = Empty();
  ASSERT_TRUE(AddFountainMarker(&g, 0, 0x112233));  // 0 moves to 1 at once
  EXPECT_EQ(Positions(g), std::vector<int>({1}));
  // Colliding wishes, including the two taken neighbours below 63 that once circled for ever.
  for (int p : {10, 9, 10, 10, 200, 200, 63, 63, 255, 255}) ASSERT_TRUE(AddFountainMarker(&g, p, 1));
  while (g.markerCount < 64) ASSERT_TRUE(AddFountainMarker(&g, 30, 2));
  std::vector<int> pos = Positions(g);
  for (size_t i = 1; i < pos.size(); ++i) EXPECT_LT(pos[i - 1], pos[i]);
  EXPECT_EQ(FindFreeMarkerPosition(&g, 40), -1);
  EXPECT_FALSE(AddFountainMarker(&g, 40, 3));
  const char* message = nullptr;
  ASSERT_TRUE(DeleteFountainMarker(&g, 5, &message));
  EXPECT_EQ(g.markerCount, 63u);
  EXPECT_EQ(g.markers[63], 0u);  // the zeroed entry fell to the end
  EXPECT_TRUE(AddFountainMarker(&g, 40, 3));
}

TEST(FountainMarkers, DeleteRefusalsAndZeroPositionSortsLast) {
  FountainGradient g = Empty();
  const char* message = nullptr;
  EXPECT_FALSE(DeleteFountainMarker(&g, 0, &message));
  EXPECT_STREQ(message, "That marker cannot be deleted");
  ASSERT_TRUE(AddFountainMarker(&g, 50, 7));
  EXPECT_FALSE(DeleteFountainMarker(&g, 1, &message));
  EXPECT_STREQ(message, "Internal error");
  FountainMarker m[3] = {0x00000001, 0x20000002, 0x10000003};
  SortFountainMarkers(m, 3);
  EXPECT_EQ(m[0], 0x10000003u);
  EXPECT_EQ(m[2], 0x00000001u);
}

TEST(FountainMarkers, DragIsHeldToTheStripAndLandsOnAFreePlace) {
  EXPECT_EQ(DragEndPosition(100, 5000, 8, 200), 255);
  EXPECT_EQ(DragEndPosition(100, -5000, 8, 200), 1);
  EXPECT_EQ(DragEndPosition(8, 100, 8, 200), 127);  // half way: trunc(127.5)
  EXPECT_EQ(HoldDragX(0, 8, 200), 9);
  EXPECT_EQ(HoldDragX(900, 8, 200), 208);
  FountainGradient g = Empty();
  ASSERT_TRUE(AddFountainMarker(&g, 20, 0xABCDEF));
  ASSERT_TRUE(AddFountainMarker(&g, 255, 0x010203));
  ASSERT_TRUE(DropFountainMarker(&g, 0, 255));  // 255 is taken: walks down to 254
  EXPECT_EQ(Positions(g), std::vector<int>({254, 255}));
  EXPECT_EQ(g.markers[0] & 0xFFFFFF, 0xABCDEFu);
}

class FountainLibraryFile : public ::testing::Test {
 protected:
  std::string path = ::testing::TempDir() + "gm5_fountain_library.fll";
  void SetUp() override {
    std::remove(path.c_str());
    std::remove((path + ".bak").c_str());
  }
  static int Collect(void* context, const FountainGradient* g) {
    static_cast<std::vector<FountainGradient>*>(context)->push_back(*g);
    return 1;
  }
  std::vector<FountainGradient> Read(int* ok) {
    std::vector<FountainGradient> out;
    *ok = ReadLibraryFile(path.c_str(), Collect, &out);
    return out;
  }
};

TEST_F(FountainLibraryFile, RoundTripDropsNameAndLoopAndKeepsLayout) {
  FountainGradient a = Empty();
  InitFountainGradient(&a, 2);
  a.flags = kFountainLooped;
  std::strcpy(a.name, "Dusk");
  FountainGradient b = Empty();
  b.leftColour = 0x123456;
  ASSERT_TRUE(AddToLibraryFile(path.c_str(), &a, 0x01020304));
  ASSERT_TRUE(AddToLibraryFile(path.c_str(), &b, 99));
  std::ifstream in(path, std::ios::binary);
  std::string bytes((std::istreambuf_iterator<char>(in)), {});
  ASSERT_EQ(bytes.size(), 80u + 2 * 340);
  EXPECT_EQ(bytes.substr(0, 8), "COBLFLHH");
  EXPECT_EQ(bytes.substr(8, 5), std::string("\x04\x03\x02\x01\x02", 5));  // first stamp kept
  EXPECT_EQ(bytes.substr(80, 8), "COBLFLHE");
  EXPECT_EQ(bytes[88], 7);
  int ok = 0;
  std::vector<FountainGradient> got = Read(&ok);
  ASSERT_TRUE(ok);
  ASSERT_EQ(got.size(), 2u);
  EXPECT_EQ(got[0].flags, 0u);
  EXPECT_EQ(got[0].name[0], 0);
  EXPECT_EQ(std::memcmp(got[0].markers, a.markers, sizeof a.markers), 0);
  EXPECT_EQ(got[1].leftColour, 0x123456u);
  EXPECT_EQ(std::memcmp(got[1].magic, "COBLFOUN", 8), 0);
}

TEST_F(FountainLibraryFile, DamagedFilesAndRewriteWithBackup) {
  FountainGradient g = Empty();
  ASSERT_TRUE(AddToLibraryFile(path.c_str(), &g, 1));
  ASSERT_TRUE(AddToLibraryFile(path.c_str(), &g, 1));
  ASSERT_TRUE(RewriteLibraryFile(path.c_str(), &g, 1, 2));
  int ok = 0;
  EXPECT_EQ(Read(&ok).size(), 1u);
  std::ifstream bak(path + ".bak", std::ios::binary | std::ios::ate);
  EXPECT_EQ(static_cast<long>(bak.tellg()), 80 + 2 * 340);
  // A count promising more entries than the file holds, and a bad marker count, stop reading.
  std::vector<uint8_t> bytes(80 + 2 * 340, 0);
  std::memcpy(bytes.data(), "COBLFLHH", 8);
  bytes[12] = 200;
  FountainToLibraryEntry(&g, bytes.data() + 80);
  FountainToLibraryEntry(&g, bytes.data() + 420);
  bytes[420 + 8] = 65;
  std::vector<FountainGradient> got;
  EXPECT_TRUE(ReadLibraryBytes(bytes.data(), bytes.size(), Collect, &got));
  EXPECT_EQ(got.size(), 1u);
  bytes[0] = 'X';
  EXPECT_FALSE(ReadLibraryBytes(bytes.data(), bytes.size(), Collect, &got));
  EXPECT_FALSE(ReadLibraryBytes(bytes.data(), 79, Collect, &got));
}

}  // namespace

#include "materials/fountain_button.h"

namespace {

TEST(FountainButtonRecord, DocumentLineAndFileRoundTripWithoutRunTimeState) {
  FountainGradient g = Empty();
  InitFountainGradient(&g, 2);
  g.flags = kFountainOwnFile | kFountainLooped;
  std::strcpy(g.name, "Dusk");
  std::memset(g.name + 261, 0x5A, 8);  // run-time fields: never written
  const std::string line = FountainDocumentLine(336, &g);
  ASSERT_EQ(line.size(), std::string("FOUNTB336=").size() + 2 * 585 + 1);
  EXPECT_EQ(line.rfind("FOUNTB336=434F424C464F554E", 0), 0u);  // "COBLFOUN"
  FountainGradient back = Empty();
  ASSERT_TRUE(ReadFountainDocumentLine(("FOUNTB336= " + line.substr(10)).c_str(), &back));
  std::memset(g.name + 261, 0, 8);
  EXPECT_EQ(std::memcmp(&back, &g, sizeof g), 0);
  EXPECT_FALSE(ReadFountainDocumentLine("MATLBT336=00", &back));
  EXPECT_FALSE(ReadFountainDocumentLine("FOUNTB336=0G", &back));

  const std::string path = ::testing::TempDir() + "gm5_fountain_button.mtrl";
  ASSERT_TRUE(WriteFountainFile(path.c_str(), &g));
  FountainGradient file = Empty();
  ASSERT_TRUE(ReadFountainFile(path.c_str(), &file));
  EXPECT_EQ(std::memcmp(&file, &g, sizeof g), 0);
  std::FILE* f = std::fopen(path.c_str(), "r+b");  // a marker count past 64 is damage
  std::fseek(f, 289, SEEK_SET);
  std::fputc(65, f);
  std::fclose(f);
  EXPECT_FALSE(ReadFountainFile(path.c_str(), &file));
  std::remove(path.c_str());
}

}  // namespace
