#include "materials/texture_file.h"

#include <cstdio>
#include <cstring>
#include <string>

#include <gtest/gtest.h>

#include "materials/texture_item.h"
#include "tests/support/alloc_sweep.h"

namespace {

std::string TempPath(const char* name) { return testing::TempDir() + name; }

// The file as the reader takes it: text mode, so the line ends written on Windows read as "\n".
std::string ReadText(const std::string& path) {
  std::string text;
  if (std::FILE* f = std::fopen(path.c_str(), "r")) {
    int c;
    while ((c = std::fgetc(f)) != EOF) text.push_back(static_cast<char>(c));
    std::fclose(f);
  }
  return text;
}

MovableHandle NewItem(uint32_t seed) {
  MovableHandle h = MovableAlloc(sizeof(TextureItem));
  ScopedLock bytes(h);
  TextureItem* item = reinterpret_cast<TextureItem*>(bytes.bytes);
  InitTextureItem(item);
  item->TextureType = static_cast<int32_t>(seed % kTextureTypeCount);
  item->SeedValue[2] = seed * 2654435761u;  // above 2^31 for most seeds
  item->ForeColour[4] = 0x00ABCDEFu + seed;
  item->Power[1] = 0.125f * static_cast<float>(seed);
  item->Dimension[3] = 2.5f;
  item->CreaterCount = 7;
  item->CreaterDepth = 0.75f;
  item->ColorBlue[3] = 0.5f;
  item->BubbleShape = kBubbleSphere;
  item->PerturbationPower = 3.25f;
  item->hour = 9.0f;  // has no key: a loaded item takes the default back
  return h;
}

TextureItem ItemAt(const TextureList& list, size_t i) {
  TextureItem item = {};
  ScopedLock bytes(list.entries[i].item);
  if (bytes) std::memcpy(&item, bytes.bytes, sizeof item);
  return item;
}

int ReadString(const std::string& text, TextureList* list) {
  std::FILE* f = std::tmpfile();  // a real file on both platforms (no fmemopen on Windows)
  if (!f) return 0;
  std::fwrite(text.data(), 1, text.size(), f);
  std::rewind(f);
  const int result = ReadTextureFrom(f, list);
  std::fclose(f);
  return result;
}

const char kHead[] = "COBALT LANTERNARY Q-BRUSH TEXTURE FILE\n";

}  // namespace

TEST(TextureFile, RoundTripKeepsSortedItemsAndBacksUpEveryRewrite) {
  const long live = MovableLiveCount();
  const std::string path = TempPath("round.fft");
  std::remove((path + ".bak").c_str());
  TextureList list;
  const char* names[] = {"zebra", "Apple", "mango"};
  for (uint32_t i = 0; i < 3; ++i) ASSERT_TRUE(AddTextureEntry(&list, names[i], NewItem(i + 1)));
  EXPECT_STREQ(list.entries[0].name, "Apple");
  EXPECT_STREQ(list.entries[2].name, "zebra");

  MatrixOwner owner = {};
  std::strcpy(owner.owner, "Ann");
  std::strcpy(owner.organisation, "Widgets");
  ASSERT_TRUE(WriteTextureFileAt(path.c_str(), &list, 0, &owner));
  const std::string first = ReadText(path);
  EXPECT_EQ(first.rfind(kHead, 0), 0u);
  EXPECT_NE(first.find("\nVersion=16.0a\nItemcount=3\nWriteable=1\nUpdateTimeDate="), std::string::npos);
  EXPECT_NE(first.find("\nRegisteredUser=0\nMachineName=Ann\nMachineOrganization=Widgets\n"),
            std::string::npos);
  EXPECT_NE(first.find("\nCreaterCount=7\nCreaterDepth=0.750000\n"), std::string::npos);
  EXPECT_NE(first.find("\n;Items end -- beyond this point be dragons.\n"), std::string::npos);

  TextureList back;
  ASSERT_TRUE(ReadTextureFileAt(path.c_str(), &back));
  EXPECT_EQ(back.writeable, 1);
  ASSERT_EQ(back.entries.size(), 3u);
  for (size_t i = 0; i < 3; ++i) {
    EXPECT_STREQ(back.entries[i].name, list.entries[i].name);
    TextureItem want = ItemAt(list, i);
    TextureItem defaults;
    InitTextureItem(&defaults);
    want.hour = defaults.hour;
    const TextureItem got = ItemAt(back, i);
    EXPECT_EQ(std::memcmp(&want, &got, sizeof want), 0) << i;
  }

  // A second write keeps the first file byte for byte as the backup and writes the same text.
  ASSERT_TRUE(WriteTextureFileAt(path.c_str(), &back, 0, &owner));
  EXPECT_EQ(ReadText(path + ".bak"), first);
  EXPECT_EQ(ReadText(path), first);

  // The house organisation leaves the three names empty; an empty list leaves an empty file,
  // which a later read refuses without touching the list.
  std::strcpy(owner.organisation, "cobalt LANTERNARY");
  std::strcpy(owner.registrationName, "Reg");
  ASSERT_TRUE(WriteTextureFileAt(path.c_str(), &back, 0, &owner));
  EXPECT_NE(ReadText(path).find("\nRegisteredUser=1\nMachineName=\nMachineOrganization=\n"
                                "RegistrationName=\n"),
            std::string::npos);
  TextureList empty;
  ASSERT_TRUE(WriteTextureFileAt(path.c_str(), &empty, 0, &owner));
  EXPECT_EQ(ReadText(path), "");
  EXPECT_FALSE(ReadTextureFileAt(path.c_str(), &back));
  EXPECT_EQ(back.entries.size(), 3u);
  EXPECT_FALSE(WriteTextureFileAt((path + "/no/such/folder").c_str(), &list, 0, &owner));

  ClearTextureList(&list);
  ClearTextureList(&back);
  EXPECT_EQ(MovableLiveCount(), live);
}

TEST(TextureFile, ReaderToleratesHandWrittenFiles) {
  TextureList list;
  // Trailing blanks and a carriage return on the magic line; keys in other case, other order,
  // blanks and extra "=" around the value; comments and blank lines inside an item; a wrong
  // item count; the second item has no name and takes the first one's.
  const std::string text = std::string("COBALT LANTERNARY Q-BRUSH TEXTURE FILE  \r\n") +
                           "Itemcount=0\n writeable = 0\n:beginitem\n\n;note\n"
                           "texturename == Rock  \r\nbubblecount=12\nCreaterDepth=\t1.5\n"
                           "unknownkey=3\nSeedValue1=4294967295\n:enditem\n"
                           ":BEGINITEM\nPower1=2\n:ENDITEM\n;Items end\n";
  ASSERT_TRUE(ReadString(text, &list));
  EXPECT_EQ(list.writeable, 0);
  ASSERT_EQ(list.entries.size(), 2u);
  EXPECT_STREQ(list.entries[0].name, "Rock");
  EXPECT_STREQ(list.entries[1].name, "Rock");
  TextureItem defaults;
  InitTextureItem(&defaults);
  const TextureItem a = ItemAt(list, 0);
  EXPECT_EQ(a.BubbleCount, 12);
  EXPECT_EQ(a.CreaterDepth, 1.5f);
  EXPECT_EQ(a.SeedValue[0], 4294967295u);
  EXPECT_EQ(a.MatrixSize, defaults.MatrixSize);
  EXPECT_EQ(ItemAt(list, 1).Power[0], 2.0f);

  // A file without a Writeable line keeps the flag of the group read before it.
  ASSERT_TRUE(ReadString(std::string(kHead) + ":BEGINITEM\nTextureName=x\n:ENDITEM\n", &list));
  EXPECT_EQ(list.writeable, 0);
  EXPECT_EQ(list.entries.size(), 1u);

  // A lower-case magic line fails and leaves the list as it was.
  EXPECT_FALSE(ReadString("cobalt lanternary q-brush texture file\n:BEGINITEM\n:ENDITEM\n", &list));
  EXPECT_EQ(list.entries.size(), 1u);

  // A file ending inside an item returns at once, keeping what it read.
  EXPECT_FALSE(ReadString(std::string(kHead) + ":BEGINITEM\nTextureName=cut\nPower1=3", &list));
  ASSERT_EQ(list.entries.size(), 1u);
  EXPECT_STREQ(list.entries[0].name, "cut");
  EXPECT_EQ(ItemAt(list, 0).Power[0], 3.0f);

  // Names are cut to 260 characters.
  EXPECT_TRUE(ReadString(std::string(kHead) + ":BEGINITEM\nTextureName=" + std::string(400, 'n') +
                             "\n:ENDITEM\n",
                         &list));
  EXPECT_EQ(std::strlen(list.entries[0].name), 260u);
  ClearTextureList(&list);
}

TEST(TextureFile, FailedAllocationsEndTheReadWithoutLeaks) {
  const std::string text = std::string(kHead) + ":BEGINITEM\nTextureName=b\n:ENDITEM\n" +
                           ":BEGINITEM\nTextureName=a\n:ENDITEM\n";
  EXPECT_TRUE(SweepAllocationFailures([&] {
    TextureList list;
    const int ok = ReadString(text, &list) && list.entries.size() == 2;
    ClearTextureList(&list);
    return ok;
  }));
}
