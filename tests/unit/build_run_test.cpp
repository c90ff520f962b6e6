#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <vector>

#include "imaging/palette.h"
#include "tests/support/build_scenarios.h"
#include "shell/messages.h"
#include "shell/packed_dib.h"

namespace {

std::vector<int32_t> Without(const std::vector<int32_t>& calls, int32_t opcode) {
  std::vector<int32_t> kept;
  for (int32_t c : calls)
    if (c != opcode) kept.push_back(c);
  return kept;
}

}  // namespace

TEST(BuildRun, OneFrameNeverSupercompressesAndReservesNoSlot) {
  Scenario run;
  fakeFrames.resize(1);
  run.options.superCompress = 1;
  ASSERT_EQ(run.Go(), 1);
  // Registration, the frames, quantising, remapping, then the file in its exact order.
  const std::vector<int32_t> expected = {
      HostOpQueryRegistered, HostOpProgress,        HostOpProgressCaption, HostOpProgressCaption,
      HostOpProgress,        HostOpProgressCaption, HostOpProgressCaption, HostOpProgress,
      HostOpProgress,        HostOpCreateFile,      HostOpSetBackground,   HostOpAddImage,
      HostOpCloseFile};
  EXPECT_EQ(opcodes, expected);
  const HostFile& f = run.File();
  // Two colours and the key's slot (white is one of them, and still gets its own): 3 -> 2 bits.
  EXPECT_EQ(f.record.bits, 2);
  EXPECT_EQ(f.record.frameCount, 1);
  EXPECT_EQ(f.record.transparentIndex, 0);
  EXPECT_EQ(f.frames.at(0).transparentIndex, -1);
  EXPECT_EQ(f.frames.at(0).transparent, 0);
  EXPECT_EQ(f.frames.at(0).delay, 10);
  EXPECT_EQ(f.backgroundMode, 101);
  EXPECT_EQ(f.background, 3u) << "keyIndex is the first slot past the colours";
  EXPECT_TRUE(f.committed);
}

TEST(BuildRun, SupercompressionMarksUnchangedPixelsWithTheKeySlot) {
  Scenario run;
  run.options.superCompress = 1;
  run.options.addComment = 1;
  ASSERT_EQ(run.Go(), 1);
  const HostFile& f = run.File();
  ASSERT_EQ(f.frames.size(), 3u);
  // 4 colours found (white and three reds), the key's own slot, then the mark's slot.
  const int32_t slot = 5;
  EXPECT_EQ(f.record.bits, 3);
  EXPECT_EQ(f.frames[0].transparentIndex, -1);
  for (size_t i = 1; i < 3; ++i) {
    EXPECT_EQ(f.frames[i].transparentIndex, slot);
    EXPECT_EQ(run.Pixel(i, 0, 0), static_cast<uint32_t>(slot)) << "unchanged: the mark";
    EXPECT_NE(run.Pixel(i, 1, 1), static_cast<uint32_t>(slot)) << "changed: a colour";
    const uint8_t* entry = DibTable(const_cast<uint8_t*>(f.frames[i].dib.data())) + slot * 4;
    EXPECT_EQ(entry[0] << 16 | entry[1] << 8 | entry[2], static_cast<int>(kWhite));
  }
  EXPECT_EQ(f.comment, kCommentText);
  EXPECT_EQ(Without(opcodes, HostOpProgress).size(), 13u);

  // On the fixed palette no slot is reserved: the mark is slot -1, truncated to the depth.
  Scenario fixed;
  fixed.options.superCompress = 1;
  fixed.options.customPalette = 0;
  ASSERT_EQ(fixed.Go(), 1);
  const HostFile& g = fixed.File();
  EXPECT_EQ(g.frames.at(1).transparentIndex, -1);
  EXPECT_EQ(fixed.Pixel(1, 0, 0), (1u << g.record.bits) - 1);
  const BitmapInfoHeader* h = reinterpret_cast<const BitmapInfoHeader*>(g.frames[1].dib.data());
  EXPECT_EQ(h->biClrImportant & 0xFFFFFF, 0u);
}

TEST(BuildRun, TrueColourAndAlphaSkipThePalette) {
  Scenario run;
  run.options.trueColour = 1;
  run.options.superCompress = 1;
  ASSERT_EQ(run.Go(), 1);
  uint8_t fixed[768];
  int32_t bits;
  BuildFixedPalette(fixed, &bits, 6);
  const HostFile& f = run.File();
  EXPECT_EQ(std::memcmp(f.record.palette, fixed, 768), 0);
  EXPECT_EQ(f.record.bits, bits);
  EXPECT_EQ(reinterpret_cast<const BitmapInfoHeader*>(f.frames.at(2).dib.data())->biBitCount, 24);
  EXPECT_EQ(f.frames[2].transparentIndex, -1) << "no supercompression in true colour";
  EXPECT_EQ(Without(opcodes, HostOpProgress).size(), 10u) << "no Quantizing caption";

  // Alpha forces true colour; Transparent has no effect; an indexed host sees each frame's index.
  Scenario alpha;
  alpha.options.alphaTransparency = 1;
  alpha.options.transparent = 1;
  ASSERT_EQ(alpha.Go(), 1);
  EXPECT_EQ(alpha.File().frames.at(0).transparent, 1);
  EXPECT_EQ(alpha.File().frames[0].transparentIndex, -1);
  EXPECT_EQ(alpha.File().record.transparentIndex, 0);
  const auto created = std::find(opcodes.begin(), opcodes.end(), HostOpCreateFile);
  ASSERT_LE(created + 5, opcodes.end());
  const std::vector<int32_t> tail(created, created + 5);
  EXPECT_EQ(tail, (std::vector<int32_t>{HostOpCreateFile, HostOpSetBackground, HostOpAddImage,
                                        HostOpAddImage, HostOpAddImage}))
      << "the background comes first";
  Scenario direct;
  direct.record.capabilities = 0;
  direct.options.alphaTransparency = 1;
  fakeKey = 0x123456;
  ASSERT_EQ(direct.Go(), 1);
  EXPECT_EQ(direct.File().frames.at(0).transparentIndex, 0);
  EXPECT_EQ(direct.File().backgroundMode, 100);
  EXPECT_EQ(direct.File().background, 0x123456u);

  // A test never has alpha: the frames are reduced and the test file is made.
  Scenario test;
  test.isTest = 1;
  test.options.alphaTransparency = 1;
  ASSERT_EQ(test.Go(), 1);
  EXPECT_TRUE(test.File().test);
  EXPECT_EQ(test.File().frames.at(0).transparent, 0);
  EXPECT_LE(test.File().record.bits, 8);
}

TEST(BuildRun, KeyColoursTransparencyAndFullPalettes) {
  Scenario none;
  none.options.transparent = 1;
  fakeKey = -1;
  ASSERT_EQ(none.Go(), 1);
  EXPECT_EQ(none.File().frames.at(0).transparent, 0);
  EXPECT_EQ(none.File().record.transparentIndex, 0);

  Scenario transparent;
  transparent.options.transparent = 1;
  ASSERT_EQ(transparent.Go(), 1);
  const HostFile& t = transparent.File();
  EXPECT_EQ(t.record.transparentIndex, 4) << "the key's reserved slot past 4 colours";
  EXPECT_EQ(t.frames.at(2).transparentIndex, 4);
  EXPECT_EQ(transparent.Pixel(2, 0, 0), 4u) << "the key's pixels keep the key's slot";
  EXPECT_EQ(t.record.palette[12], 0xFF);

  // With 254 or more colours the key replaces its nearest colour instead of taking a new slot.
  Scenario full;
  fakeFrames = {{16, 16, 5, 0, 1}};  // 256 distinct colours: an exact palette
  fakeKey = 0x00FF00;
  ASSERT_EQ(full.Go(), 1);
  const HostFile& f = full.File();
  EXPECT_EQ(f.record.bits, 8);
  EXPECT_EQ(f.background, 256u);
  bool keyInPalette = false;
  for (int i = 0; i < 256; ++i)
    keyInPalette |= f.record.palette[i * 3] == 0 && f.record.palette[i * 3 + 1] == 0xFF &&
                    f.record.palette[i * 3 + 2] == 0;
  EXPECT_TRUE(keyInPalette);

  // Frames of different sizes: the file takes the largest of each side.
  Scenario sizes;
  fakeFrames = {{5, 3, 1, kWhite, 0}, {3, 6, 1, kWhite, 0}};
  ASSERT_EQ(sizes.Go(), 1);
  EXPECT_EQ(sizes.File().record.width, 5);
  EXPECT_EQ(sizes.File().record.height, 6);
}
