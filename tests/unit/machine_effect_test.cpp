#include "effects/machine.h"

#include <gtest/gtest.h>

#include "controls/value_controls.h"
#include "effects/rotation_frames.h"
#include "shell/crt_random.h"
#include "shell/packed_dib.h"
#include "tests/support/alloc_sweep.h"
#include "tests/support/effect_builds.h"

// Rows of the Rotation list: -60 is row 0, -1 row 16, 6 row 22, 12 row 26.

namespace {

constexpr MachineSettings kDefaults = {0xFFFFFF, 0x996633, 0, 180, 6, 48};

struct Machine {
  MachineState state{};
  int ok;
  Machine(const MachineSettings& s, int32_t w, int32_t h)
      : ok(PrepareMachineState(&state, &s, w, h)) {}
  ~Machine() { ReleaseMachineState(&state); }
  Pixels Tile(int32_t f) {
    ScopedBlock tile(RenderMachineTile(&state, f));
    return PicturePixels(tile.handle);
  }
};

}  // namespace

TEST(Machine, RotationGivesOneTurnOfFramesAndTheTileFollowsTheSize) {
  struct Case {
    int32_t rotation, frames;
  } turns[] = {{6, 60}, {-60, 6}, {1, 360}, {-1, 360}, {45, 8}, {24, 15}};
  for (const Case& c : turns) EXPECT_EQ(RotationFrameCount(c.rotation), c.frames) << c.rotation;
  struct Size {
    int32_t size, tile;
  } sizes[] = {{16, 22}, {48, 66}, {101, 142}};
  for (const Size& c : sizes) {
    MachineSettings s = kDefaults;
    s.size = c.size;
    Machine m(s, 40, 30);
    ASSERT_EQ(m.ok, 1);
    EXPECT_EQ(m.state.tileWidth, c.tile);
    EXPECT_EQ(m.state.tileHeight, c.tile);
    ScopedLock mask(m.state.masks[3]);
    EXPECT_EQ(reinterpret_cast<const BitmapInfoHeader*>(mask.bytes)->biWidth, c.tile / 2);
  }
}

TEST(Machine, TurningAUniformSquareKeepsItsColourAndLeavesGreyCorners) {
  ScopedBlock square(CreatePackedDib(16, 16, nullptr, 24));
  {
    ScopedLock s(square.handle);
    for (int32_t y = 0; y < 16; ++y)
      for (int32_t x = 0; x < 16; ++x) WriteDibPixel(s.bytes, x, y, 0x336699);
  }
  ScopedBlock turned(TurnByFortyFive(square.handle, 22, 22));
  ScopedLock t(turned.handle);
  ASSERT_TRUE(t);
  for (int32_t d = 0; d < 8; ++d) EXPECT_EQ(ReadDibPixel(t.bytes, 11 + d, 11), 0x336699u) << d;
  // (0, 0) maps to (8, -7.6), outside the source.
  EXPECT_EQ(ReadDibPixel(t.bytes, 0, 0), 0x808080u);
  EXPECT_EQ(ReadDibPixel(t.bytes, 21, 21), 0x808080u);
}

TEST(Machine, TilesTurnWithTheFrameAndCloseAfterOneTurn) {
  Machine six(kDefaults, 66, 66);
  MachineSettings s12 = kDefaults;
  s12.rotation = 12;
  Machine twelve(s12, 66, 66);
  ASSERT_EQ(six.ok * twelve.ok, 1);
  const Pixels first = six.Tile(0);
  EXPECT_EQ(six.Tile(60), first) << "a whole turn";
  EXPECT_NE(six.Tile(1), first);
  for (int32_t k : {1, 5, 29}) EXPECT_EQ(twelve.Tile(k), six.Tile(2 * k)) << k;

  // Inverse rotation negates B's whole angle: with offset 0 that is A's angle, so A and B agree
  // in every frame; without it they differ.
  MachineSettings same = kDefaults;
  same.offset = 0;
  same.inverse = 1;
  Machine paired(same, 66, 66);
  same.inverse = 0;
  Machine against(same, 66, 66);
  ScopedBlock a(RenderMachineTile(&paired.state, 3)), b(RenderMachineTile(&against.state, 3));
  ScopedLock pa(a.handle), pb(b.handle);
  ASSERT_TRUE(pa && pb);
  // The centre shows A's diamond, the corner B's quarter; mirrored pairs match only when B = A.
  EXPECT_EQ(ReadDibPixel(pa.bytes, 33, 33), ReadDibPixel(pb.bytes, 33, 33));
  const uint32_t centreLeft = ReadDibPixel(pa.bytes, 20, 33);
  EXPECT_EQ(ReadDibPixel(pa.bytes, 53, 0), centreLeft) << "B's quarter continues A";
  EXPECT_NE(ReadDibPixel(pb.bytes, 53, 0), ReadDibPixel(pb.bytes, 20, 33));
}

TEST(MachinePage, BuildsOneTurnAndTheSampleIsItsFirstFrame) {
  WindowHandle dialog = SmallEffectDialog({282, 284}, {0x7F7F7F, 0xFFFFFF});
  ASSERT_NE(dialog, nullptr);
  EXPECT_EQ(MachineEffectKeyColour(dialog, 0), 0xFFFFFF);
  const int32_t delay = ReadDlgValue(dialog, 11);
  crt::srand(1);
  const BuiltFrames standard = BuildEffectFrames(MachineEffectBuild, dialog);
  ASSERT_EQ(standard.ok, 1);
  ASSERT_EQ(standard.frames.size(), 60u) << "Rotation 6";
  EXPECT_EQ(standard.delays, std::vector<int32_t>(60, delay));
  EXPECT_GT(standard.width * standard.height, 0);
  EXPECT_EQ(PreviewEffectPixels(MachineEffectPreview, dialog), standard.frames[0]);
  crt::srand(2);
  EXPECT_EQ(BuildEffectFrames(MachineEffectBuild, dialog).frames, standard.frames)
      << "no random numbers";

  SelectComboRow(dialog, 306, 26);
  const BuiltFrames twelve = BuildEffectFrames(MachineEffectBuild, dialog);
  ASSERT_EQ(twelve.frames.size(), 30u);
  for (size_t k : {1u, 7u, 29u}) EXPECT_EQ(twelve.frames[k], standard.frames[2 * k]) << k;
  SelectComboRow(dialog, 306, 0);
  EXPECT_EQ(BuildEffectFrames(MachineEffectBuild, dialog).frames.size(), 6u);
  DialogSetCheck(DialogItem(dialog, 22), 0);
  const BuiltFrames still = BuildEffectFrames(MachineEffectBuild, dialog);
  ASSERT_EQ(still.frames.size(), 1u);
  EXPECT_EQ(still.frames[0], standard.frames[0]);

  SetDialogItemInt(dialog, 300, 16, 0);
  EXPECT_TRUE(SweepAllocationFailures([dialog] {
    FrameParams params{};
    params.frameCount = 2;
    const int ok = BuildFrameSet(&params, &kMachineFrameSet, dialog, 30, 20);
    FreeFrameSet(&params);
    return ok;
  }, 100000, true));
  DialogDestroy(dialog);
}
