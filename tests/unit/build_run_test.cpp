// Whole builds against the recording host: each case sets up a run and checks the host's calls in
// their exact order and the fields of the file and the frames that the host received.
#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <vector>

#include "imaging/palette.h"
#include "shell/messages.h"
#include "shell/packed_dib.h"
#include "tests/support/build_scenarios.h"

namespace {

constexpr int64_t kAny = -99;  // a field the case doesn't pin

enum Frames { kThreeWhite, kOne, kTwoSizes, kAllColours };
// Rows of kRuns whose pixels are looked at more closely.
enum Row {
  kSupercompressed = 1,
  kFixedMarks = 2,
  kTrueColour = 3,
  kTransparentKey = 8,
  kFullPalette = 9
};

struct RunCase {
  const char* name;
  Frames frames;
  int32_t superCompress, customPalette, trueColour, alpha, transparent, isTest, indexedHost;
  int64_t key;
  const char* calls;
  int64_t bits, backgroundMode, background, fileIndex, lastFrameIndex, transparentFlag;
};

const RunCase kRuns[] = {
    {"one frame never supercompresses and reserves no slot for it", kOne, 1, 1, 0, 0, 0, 0, 1,
     kWhite, "RPCCPCCPPFBAMX", 2, 101, 3, 0, -1, 0},
    {"supercompression: the key's slot past 4 colours, then the mark's", kThreeWhite, 1, 1, 0, 0, 0,
     0, 1, kWhite, "RPCCPCPCPPPCPPPPFBAAAMX", 3, 101, 5, 0, 5, 0},
    {"fixed palette: the mark is slot -1", kThreeWhite, 1, 0, 0, 0, 0, 0, 1, kWhite,
     "RPCCPPCPPPCPPPPFBAAAMX", kAny, 101, kAny, 0, -1, 0},
    {"true colour with a custom palette: no quantising, no remapping", kThreeWhite, 1, 1, 1, 0, 0,
     0, 1, kWhite, "RPCCPCPPPPFBAAAMX", kAny, 101, kAny, 0, -1, 0},
    {"alpha forces true colour; Transparent has no effect", kThreeWhite, 0, 1, 0, 1, 1, 0, 1,
     kWhite, "RPCCPCPPPPFBAAAMX", kAny, 101, kAny, 0, -1, 1},
    {"alpha on a host without indexed backgrounds", kThreeWhite, 0, 1, 0, 1, 0, 0, 0, 0x123456,
     "RPCCPCPPPPFBAAAMX", kAny, 100, 0x123456, 0, 0, 1},
    {"a test never has alpha: reduced frames in a test file", kThreeWhite, 0, 1, 0, 1, 0, 1, 1,
     kWhite, "RPCCPCCPPPPTBAAAMX", 3, 101, 5, 0, -1, 0},
    {"no key colour: no transparency and no message", kThreeWhite, 0, 1, 0, 0, 1, 0, 1, -1,
     "RPCCPCCPPPPFBAAAMX", kAny, 101, kAny, 0, -1, 0},
    {"a transparent key keeps its reserved slot", kThreeWhite, 0, 1, 0, 0, 1, 0, 1, kWhite,
     "RPCCPCCPPPPFBAAAMX", 3, 101, 4, 4, 4, 1},
    {"254 or more colours: the key replaces its nearest colour", kAllColours, 0, 1, 0, 0, 0, 0, 1,
     0x00FF00, "RPCCPCCPPFBAMX", 8, 101, 256, 0, -1, 0},
    {"frames of different sizes", kTwoSizes, 0, 1, 0, 0, 0, 0, 1, kWhite, "RPCCPCCPPPFBAAMX", kAny,
     101, kAny, 0, -1, 0},
};

void Pin(int64_t expected, int64_t actual, const char* field) {
  if (expected != kAny) {
    EXPECT_EQ(actual, expected) << field;
  }
}

}  // namespace

TEST(BuildRun, EachCaseCallsTheHostInOrderAndHandsOverItsFields) {
  std::vector<std::unique_ptr<Scenario>> runs;
  for (const RunCase& c : kRuns) {
    SCOPED_TRACE(c.name);
    runs.push_back(std::make_unique<Scenario>());
    Scenario& s = *runs.back();
    if (c.frames == kOne) s.frames.resize(1);
    if (c.frames == kTwoSizes) s.frames = {{5, 3, 1, kWhite, 0}, {3, 6, 1, kWhite, 0}};
    if (c.frames == kAllColours) s.frames = {{16, 16, 5, 0, 1}};  // 256 colours, exact palette
    s.options.superCompress = c.superCompress;
    s.options.customPalette = c.customPalette;
    s.options.trueColour = c.trueColour;
    s.options.alphaTransparency = c.alpha;
    s.options.transparent = c.transparent;
    s.options.addComment = 1;
    s.isTest = c.isTest;
    s.record.capabilities = c.indexedHost ? kHostIndexed : 0;
    s.key = static_cast<int32_t>(c.key);
    ASSERT_EQ(s.Go(), 1);
    EXPECT_EQ(s.calls, c.calls);
    const HostFile& f = s.File();
    EXPECT_EQ(f.test, c.isTest);
    EXPECT_TRUE(f.committed);
    EXPECT_EQ(f.comment, kCommentText);
    Pin(c.bits, f.record.bits, "bits");
    Pin(c.backgroundMode, f.backgroundMode, "background mode");
    Pin(c.background, static_cast<int64_t>(f.background), "background");
    Pin(c.fileIndex, f.record.transparentIndex, "file's transparent index");
    Pin(c.lastFrameIndex, f.frames.back().transparentIndex, "last frame's transparent index");
    Pin(c.transparentFlag, f.frames.back().transparent, "transparent flag");
    EXPECT_EQ(f.frames.front().delay, s.frames.front().delay);
    EXPECT_EQ(f.record.width, c.frames == kTwoSizes ? 5 : c.frames == kAllColours ? 16 : 6);
    EXPECT_EQ(f.record.height, c.frames == kTwoSizes ? 6 : c.frames == kAllColours ? 16 : 4);
    const bool trueColour = c.trueColour || (c.alpha && !c.isTest);
    const int depth = reinterpret_cast<const BitmapInfoHeader*>(f.frames[0].dib.data())->biBitCount;
    EXPECT_EQ(depth > 8, trueColour) << depth;
  }

  // The pixels that the passes write: marks, key slots and the palettes around them.
  Scenario& marked = *runs[kSupercompressed];
  for (size_t i = 1; i < 3; ++i) {
    EXPECT_EQ(marked.Pixel(i, 0, 0), 5u) << "unchanged: the mark";
    EXPECT_NE(marked.Pixel(i, 1, 1), 5u) << "changed: a colour";
    const uint8_t* entry = DibTable(const_cast<uint8_t*>(marked.File().frames[i].dib.data())) + 20;
    EXPECT_EQ(entry[0] << 16 | entry[1] << 8 | entry[2], static_cast<int>(kWhite));
  }
  Scenario& fixed = *runs[kFixedMarks];  // no slot reserved: -1, truncated to the depth
  EXPECT_EQ(fixed.Pixel(1, 0, 0), (1u << fixed.File().record.bits) - 1);
  const auto* h = reinterpret_cast<const BitmapInfoHeader*>(fixed.File().frames[1].dib.data());
  EXPECT_EQ(h->biClrImportant & 0xFFFFFF, 0u);
  Scenario& transparent = *runs[kTransparentKey];
  EXPECT_EQ(transparent.Pixel(2, 0, 0), 4u) << "the key's pixels keep the key's slot";
  EXPECT_EQ(transparent.File().record.palette[12], 0xFF);
  uint8_t palette[768];
  int32_t bits;
  BuildFixedPalette(palette, &bits, 6);
  EXPECT_EQ(std::memcmp(runs[kTrueColour]->File().record.palette, palette, 768), 0);
  EXPECT_EQ(runs[kTrueColour]->File().record.bits, bits);
  bool keyInPalette = false;
  for (int i = 0; i < 256; ++i) {
    const uint8_t* rgb = runs[kFullPalette]->File().record.palette + i * 3;
    keyInPalette |= rgb[0] == 0 && rgb[1] == 0xFF && rgb[2] == 0;
  }
  EXPECT_TRUE(keyInPalette);
}
