// The Tile kind chosen on a material button of the real dialog through gm5host, its Matrix dialog
// opened, a tile added from a BMP through the host, picked and kept with OK: the group file and
// the button's file hold it, and the sample is painted again. Screenshots of the Matrix dialog and
// of the sample go to build/windows/screenshots for looking at.
#include <windows.h>
#include <shlobj.h>

#include <algorithm>
#include <cstring>
#include <string>

#include <gtest/gtest.h>

#include "host/bmp_file.h"
#include "materials/tile_file.h"
#include "shell/packed_dib.h"
#include "tests/support/test_images.h"
#include "tests/win32/host_run_win32.h"

namespace {

std::string DataFolder() {
  char base[MAX_PATH] = "";
  SHGetFolderPathA(nullptr, CSIDL_APPDATA, nullptr, 0, base);
  return std::string(base) + "\\Cobalt Lanternary\\Glyph Motion 5\\";
}

// Red and yellow stripes, 24 by 16: easy to tell in the screenshots.
MovableHandle Stripes() {
  MovableHandle image = CreatePackedDib(24, 16, nullptr, 24);
  ScopedLock lock(image);
  for (int32_t y = 0; y < 16; ++y)
    for (int32_t x = 0; x < 24; ++x)
      WriteDibPixel(lock.bytes, x, y, (x / 4 + y / 4) % 2 ? 0x0000E0u : 0x00E0E0u);
  return image;
}

}  // namespace

TEST(MatrixDialogHost, TileAddedFromABmpIsPickedKeptAndPainted) {
  if (!DisplayAvailable()) GTEST_SKIP() << "no display";
  const std::string bin = BuildPath(GM5_PLUGIN_PATH);
  const std::string shots =
      bin.substr(0, bin.find_last_of('\\', bin.find_last_of('\\') - 1)) + "\\screenshots";
  CreateDirectoryA(shots.c_str(), nullptr);
  ForgetConfiguration();
  const std::string group = DataFolder() + "rfdplgm5.mtx";
  const std::string buttonFile = DataFolder() + "Material00100.mtrl";
  for (const std::string& gone : {group, group + ".bak", buttonFile}) DeleteFileA(gone.c_str());

  ScopedBlock stripes(Stripes());
  std::vector<uint8_t> dib;
  {
    ScopedLock lock(stripes.handle);
    dib.assign(lock.bytes, lock.bytes + MovableSize(stripes.handle));
  }
  const std::string bmp = TempFolder() + "gm5-stripes.bmp";
  ASSERT_TRUE(WriteWholeFile(bmp.c_str(), PackedDibToBmp(dib.data(), dib.size())));

  // Row 12 is Simple, whose page holds the Fill button, 100.
  const std::string script = "select-file " + bmp +
                             "\nwait-dialog\nselect 58 12\nsleep 700\npost-command 100 103\n"
                             "sleep 700\ncount-paints 25\npost-command 100 99\nwait-caption "
                             "Matrix\nclick 103\nselect-list 102 0\nsleep 400\nscreenshot 0 " +
                             shots +
                             "\\matrix-dialog.png\nclick 1\nsleep 900\nread-paints 25\n"
                             "screenshot 0 " +
                             shots + "\\matrix-sample.png\nclick 2\n";
  const HostRun run = RunHost("", script);
  ASSERT_EQ(run.exitCode, 0u);
  EXPECT_EQ(run.Count("box"), 0) << "no message was shown";
  EXPECT_EQ(run.Value("post-command id=100", "found"), "1");
  EXPECT_NE(run.Line("call op=6 name=HostOpSelectImageFile"), "");
  EXPECT_NE(run.Line("call op=8 name=HostOpLoadImageFile"), "");
  EXPECT_EQ(run.Count("step error"), 0) << run.Line("step error");
  EXPECT_GT(std::atoi(run.Value("read-paints id=25", "paints").c_str()), 0) << "sample repainted";
  EXPECT_EQ(run.Count("screenshot path"), 2);

  // The group holds the picture as it was loaded, and the button kept Tile with the first tile.
  ScopedBlock tile(LoadTile(group.c_str(), 0));
  ASSERT_NE(tile.handle, nullptr);
  EXPECT_TRUE(SameBlocks(tile.handle, stripes.handle));
  EXPECT_EQ(LoadTile(group.c_str(), 1), nullptr);
  const std::vector<uint8_t> record = ReadWholeFile(buttonFile.c_str());
  ASSERT_EQ(record.size(), 1270u);
  int32_t kind = 0;
  uint32_t index = 7;
  std::memcpy(&kind, record.data() + 16, 4);
  std::memcpy(&index, record.data() + 1178, 4);
  EXPECT_EQ(kind, 3);
  EXPECT_EQ(index, 0u);
  EXPECT_NE(std::string(reinterpret_cast<const char*>(record.data() + 917)).find("rfdplgm5.mtx"),
            std::string::npos);
  for (const std::string& gone : {group, group + ".bak", buttonFile, bmp})
    DeleteFileA(gone.c_str());
}

// With Shift held, "+" saves the group under a name asked in the Name dialog and "-" deletes the
// current group after asking, which brings the primary group back.
TEST(MatrixDialogHost, ShiftSavesAGroupUnderANewNameAndDeletesIt) {
  if (!DisplayAvailable()) GTEST_SKIP() << "no display";
  ForgetConfiguration();
  const std::string saved = DataFolder() + "Bricks.MTX";
  DeleteFileA(saved.c_str());
  const std::string script =
      "wait-dialog\nselect 58 12\nsleep 500\npost-command 100 103\npost-command 100 99\n"
      "wait-caption Matrix\nclick 103\nwait-caption Name\nread-text 4020\nset-text 4020 Bricks\n"
      "click 1\nwait-caption Matrix\nread-text 108\nclick 104\nbox 6\nread-text 108\nclick 2\n"
      "click 2\n";
  const HostRun run = RunHost("--shift", script);
  ASSERT_EQ(run.exitCode, 0u);
  EXPECT_EQ(run.Count("step error"), 0) << run.Line("step error");
  EXPECT_EQ(run.Value("read-text id=4020", "text"), "Untitled");
  ASSERT_EQ(run.Count("read-text id=108"), 2);
  auto count = [&run](const std::string& prefix) {
    return std::count_if(run.lines.begin(), run.lines.end(),
                         [&prefix](const std::string& l) { return l.rfind(prefix, 0) == 0; });
  };
  EXPECT_EQ(count("read-text id=108 text=Bricks"), 1) << "the new group is current";
  EXPECT_EQ(
      run.Value("box", "text").rfind("Do%20you%20want%20to%20delete%20the%20Bricks%20matrix", 0),
      0u)
      << run.Line("box");
  EXPECT_EQ(GetFileAttributesA(saved.c_str()), INVALID_FILE_ATTRIBUTES) << "the group went";
  EXPECT_EQ(count("read-text id=108 text=rfdplgm5"), 1) << "the primary group is current again";
}
