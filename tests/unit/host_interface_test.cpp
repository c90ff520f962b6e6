// The portable half of the host contract: the plug-in's description (including a size too small
// for its fields), the version test, the swatches, the help topic and the AnimationBlock check.
#include <cstring>
#include <vector>

#include <gtest/gtest.h>

#include "shell/host_interface.h"

TEST(PluginParamsFill, FillsTheFieldsAndZeroesOnlyWithinTheSize) {
  for (uint32_t size : {static_cast<uint32_t>(sizeof(PluginParams)), 12u}) {
    PluginParams params;
    memset(&params, 0xAA, sizeof params);
    params.size = size;
    EXPECT_EQ(FillPluginParams(&params), 1);
    EXPECT_EQ(params.size, size);
    EXPECT_EQ(params.version, 0x1000u);
    EXPECT_STREQ(params.name, "Glyph Motion #5");
    const bool whole = size == sizeof params;
    EXPECT_EQ(static_cast<uint8_t>(params.name[260]), whole ? 0 : 0xAA) << size;
    EXPECT_EQ(static_cast<uint8_t>(params.credit[63]), whole ? 0 : 0xAA) << size;
  }
}

TEST(HostVersion, OnlyBits8To15Count) {
  for (uint32_t version : {0x1000u, 0x2000u, 0xFF00u}) EXPECT_TRUE(HostVersionSupported(version));
  for (uint32_t version : {0x0FFFu, 0x7FFF0FFFu, 0u}) EXPECT_FALSE(HostVersionSupported(version));
}

TEST(SwatchTable, IsTheEightByEightByFourCube) {
  uint8_t palette[768];
  BuildSwatchTable(palette);
  auto at = [&](int r, int g, int k) { return palette + ((r * 8 + g) * 4 + k) * 3; };
  EXPECT_EQ(0, memcmp(at(0, 0, 0), "\x00\x00\x00", 3));
  EXPECT_EQ(0, memcmp(at(7, 7, 3), "\xFF\xFF\xFF", 3));
  EXPECT_EQ(0, memcmp(at(1, 6, 2), "\x24\xD8\xAA", 3));  // 36, 216, 170
  EXPECT_EQ(0, memcmp(palette + 3, "\x00\x00\x55", 3));  // blue runs fastest
  EXPECT_EQ(0, memcmp(palette + 12, "\x00\x24\x00", 3));
}

TEST(HelpTopic, DocumentWithAnOptionalName) {
  char topic[32];
  ASSERT_TRUE(FormatHelpTopic("PREFACE", topic, sizeof topic));
  EXPECT_STREQ(topic, "RFDPLGM5.HTML#PREFACE");
  ASSERT_TRUE(FormatHelpTopic(nullptr, topic, sizeof topic));
  EXPECT_STREQ(topic, "RFDPLGM5.HTML");
  EXPECT_FALSE(FormatHelpTopic("PREFACE", topic, 21));
  EXPECT_TRUE(FormatHelpTopic("PREFACE", topic, 22));
  EXPECT_EQ(strncmp(kCommentText, "CREATED BY...\r\n\r\n", 17), 0);
  EXPECT_NE(strstr(kCommentText, "\r\n\r\nSee\r\n\r\n    http"), nullptr);
}

namespace {

void PutU32(std::vector<uint8_t>& bytes, size_t at, uint32_t value) {
  if (bytes.size() < at + 4) bytes.resize(at + 4);
  memcpy(bytes.data() + at, &value, 4);
}

// A block with `entries` entries of a 1x1 DIB (40-byte header and 4 bytes of bits), with head and
// entry headers of 24 bytes, ending on an end mark.
std::vector<uint8_t> MakeBlock(uint32_t entries, uint32_t declared) {
  std::vector<uint8_t> bytes;
  PutU32(bytes, 0, kAnimationBlockMagic);
  PutU32(bytes, 4, 24);
  PutU32(bytes, 16, declared);
  size_t at = 24;
  for (uint32_t i = 0; i < entries; ++i, at += 24 + 44) {
    PutU32(bytes, at, kAnimationEntryMagic);
    PutU32(bytes, at + 4, 24);
    PutU32(bytes, at + 16, 44);
    PutU32(bytes, at + 24, 40);
    PutU32(bytes, at + 24 + 40, 0);
  }
  PutU32(bytes, at, kAnimationEndMagic);
  return bytes;
}

}  // namespace

// Well-formed blocks, and blocks ended early, pass; damage anywhere fails without a read outside.
TEST(AnimationBlockCheck, AcceptsWellFormedBlocksAndRefusesDamage) {
  for (auto [entries, declared] : {std::pair{3u, 3u}, {2u, 5u}, {0u, 0u}}) {
    std::vector<uint8_t> block = MakeBlock(entries, declared);
    EXPECT_TRUE(CheckAnimationBlock(block.data(), block.size())) << entries << " " << declared;
  }
  const std::vector<uint8_t> good = MakeBlock(2, 2);
  const struct {
    size_t at;
    uint32_t value;
  } damage[] = {{0, kAnimationEndMagic},  // the head's magic
                {24 + 68, 0x414E4D66},    // the second entry's magic
                {24 + 24, 12},            // the first DIB's header size
                {24 + 16, 0xFFFFFFF0}};   // a data size past the end
  for (const auto& d : damage) {
    std::vector<uint8_t> block = good;
    PutU32(block, d.at, d.value);
    EXPECT_FALSE(CheckAnimationBlock(block.data(), block.size())) << d.at;
  }
  std::vector<uint8_t> block = MakeBlock(2, 1);  // more entries than declared: no end mark there
  EXPECT_FALSE(CheckAnimationBlock(block.data(), block.size()));
  for (size_t cut = 0; cut < good.size(); ++cut) {
    std::vector<uint8_t> truncated(good.begin(), good.begin() + cut);
    EXPECT_FALSE(CheckAnimationBlock(truncated.data(), truncated.size())) << cut;
  }
  EXPECT_FALSE(CheckAnimationBlock(nullptr, 100));
}
