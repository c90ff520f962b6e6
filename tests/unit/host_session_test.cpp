// The host side of HostService as the plug-in meets it: a whole file from creation to its dump,
// refusals of bad records and of calls the script refuses, and the answers given from a script.
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "controls/animation_picker.h"
#include "host/animation_block.h"
#include "host/bmp_file.h"
#include "host/host_session.h"
#include "shell/packed_dib.h"
#include "tests/support/alloc_sweep.h"

namespace {

uint64_t Ptr(const void* pointer) {
  return reinterpret_cast<uint64_t>(pointer);
}

// A session logging into a temporary file, read back by Log().
struct LoggedSession {
  HostSession session;
  LoggedSession() { session.log = tmpfile(); }
  ~LoggedSession() { fclose(session.log); }
  std::vector<std::string> Log() {
    std::vector<std::string> lines;
    rewind(session.log);
    char line[8192];
    while (fgets(line, sizeof line, session.log)) lines.emplace_back(line, strcspn(line, "\n"));
    fseek(session.log, 0, SEEK_END);
    return lines;
  }
  uint64_t Call(void* object, int32_t opcode, uint64_t a, uint64_t b) {
    return ServeHostCall(&session, object, opcode, a, b);
  }
};

// A 5 x 3, 8-bit file of two frames.
FileObjectRecord MakeFileRecord() {
  FileObjectRecord record{};
  record.size = sizeof record;
  record.version = 0x1000;
  record.bits = 8;
  record.width = 5;
  record.height = 3;
  record.frameCount = 2;
  record.palette[3] = 0xFF;
  return record;
}

// An 8-bit 5 x 3 frame whose pixels count up from `first`.
MovableHandle MakeFrame(uint8_t first) {
  uint8_t palette[768] = {0, 0, 0, 255, 0, 0};
  MovableHandle image = CreatePackedDib(5, 3, palette, 8);
  ScopedLock bytes(image);
  for (int p = 0; p < 15; ++p) WriteDibPixel(bytes.bytes, p % 5, p / 5, first + p);
  return image;
}

std::vector<uint8_t> BlockBytes(MovableHandle handle) {
  ScopedLock bytes(handle);
  return std::vector<uint8_t>(bytes.bytes, bytes.bytes + MovableSize(handle));
}

std::filesystem::path FreshFolder(const char* name) {
  std::filesystem::path folder =
      std::filesystem::temp_directory_path() / (std::string(name) + std::to_string(rand()));
  std::filesystem::create_directories(folder);
  return folder;
}

}  // namespace

TEST(HostSession, KeepsAWholeFileAndDumpsIt) {
  LoggedSession host;
  const std::filesystem::path folder = FreshFolder("gm5_host_session_");
  host.session.dumpFolder = folder.string();

  FileObjectRecord record = MakeFileRecord();
  ASSERT_EQ(host.Call(nullptr, HostOpCreateFile, 0, Ptr(&record)), 1u);
  EXPECT_EQ(host.Call(&record, HostOpSetBackground, kBackgroundIndex, 7), 1u);
  std::vector<std::vector<uint8_t>> sent;
  for (int i = 0; i < 2; ++i) {
    ImageRecord image{};
    image.size = sizeof image;
    image.version = 0x1000;
    image.image = MakeFrame(static_cast<uint8_t>(10 * i));
    image.delay = 4 + i;
    image.index = i;
    sent.push_back(BlockBytes(image.image));
    EXPECT_EQ(host.Call(&record, HostOpAddImage, 0, Ptr(&image)), 1u);
    MovableFree(image.image);  // the plug-in frees its own: the host kept a copy
  }
  EXPECT_EQ(host.Call(&record, HostOpAddComment, 0, Ptr("made here\r\n")), 1u);
  EXPECT_EQ(host.Call(&record, HostOpCloseFile, 1, 0), 1u);

  ASSERT_EQ(host.session.files.size(), 1u);
  EXPECT_TRUE(host.session.files[0]->closed && !host.session.files[0]->test);
  // The dump reads back to the frames sent, palette included, and the file's record.
  for (int i = 0; i < 2; ++i) {
    std::string bmp = (folder / ("file1-frame00" + std::to_string(i) + ".bmp")).string();
    std::vector<uint8_t> bytes = ReadWholeFile(bmp.c_str());
    MovableHandle back = BmpToPackedDib(bytes.data(), bytes.size());
    ASSERT_NE(back, nullptr);
    EXPECT_EQ(BlockBytes(back), sent[i]);
    MovableFree(back);
  }
  const std::vector<uint8_t> meta = ReadWholeFile((folder / "file1.txt").string().c_str());
  const std::string text(meta.begin(), meta.end());
  for (const char* line :
       {"committed=1\n", "comment=made%20here%0D%0A\n", "\nbackgroundMode=101\nbackground=7\n",
        "frame index=1 delay=5 transparent=0 transparentIndex=0\n"})
    EXPECT_NE(text.find(line), std::string::npos) << line;
  std::filesystem::remove_all(folder);

  std::vector<std::string> log = host.Log();
  ASSERT_EQ(log.size(), 6u);
  EXPECT_EQ(log[0],
            "call op=1 name=HostOpCreateFile bits=8 width=5 height=3 frameCount=2 "
            "transparentIndex=0 file=1 result=1");
  EXPECT_EQ(log[2],
            "call op=2 name=HostOpAddImage file=1 index=0 delay=4 transparent=0 "
            "transparentIndex=0 width=5 height=3 imageBits=8 result=1");
}

TEST(HostSession, RefusesBadRecordsUnknownFilesAndRefusedOpcodes) {
  LoggedSession host;
  FileObjectRecord record = MakeFileRecord();
  record.size = 1076;
  EXPECT_EQ(host.Call(nullptr, HostOpCreateFile, 0, Ptr(&record)), 0u);
  record = MakeFileRecord();
  record.version = 0x2000;
  EXPECT_EQ(host.Call(nullptr, HostOpCreateTestFile, 0, Ptr(&record)), 0u);
  EXPECT_EQ(host.Call(nullptr, HostOpCreateFile, 0, 0), 0u);
  record = MakeFileRecord();
  EXPECT_EQ(host.Call(&record, HostOpCloseFile, 1, 0), 0u);  // never created

  ImageRecord image{};
  image.size = sizeof image;
  image.version = 0x1000;
  ASSERT_EQ(host.Call(nullptr, HostOpCreateTestFile, 0, Ptr(&record)), 1u);
  EXPECT_EQ(host.Call(&record, HostOpAddImage, 0, Ptr(&image)), 0u);  // no image
  image.image = MovableAlloc(30);                                     // too short for a DIB
  EXPECT_EQ(host.Call(&record, HostOpAddImage, 0, Ptr(&image)), 0u);
  MovableFree(image.image);
  EXPECT_EQ(host.Call(&record, HostOpSetBackground, 102, 0), 0u);

  ReadHostAnswerLine(&host.session, "refuse 2");
  ReadHostAnswerLine(&host.session, "refuse 9");
  image.image = MakeFrame(0);
  EXPECT_EQ(host.Call(&record, HostOpAddImage, 0, Ptr(&image)), 0u);
  MovableFree(image.image);
  EXPECT_EQ(host.Call(nullptr, HostOpShowHelp, 0, Ptr("RFDPLGM5.HTML#PREFACE")), 0u);
  EXPECT_EQ(host.Call(&record, HostOpCloseFile, 0, 0), 1u);
  EXPECT_EQ(host.Call(&record, HostOpAddImage, 0, Ptr(&image)), 0u);  // closed
  EXPECT_EQ(host.Call(nullptr, 7, 0, 0), 0u);
  EXPECT_TRUE(host.session.files[0]->test && host.session.files[0]->frames.empty());

  std::vector<std::string> log = host.Log();
  ASSERT_EQ(log.size(), 13u);
  EXPECT_EQ(log[0], "call op=1 name=HostOpCreateFile error=bad-record result=0");
  EXPECT_EQ(log[3], "call op=4 name=HostOpCloseFile error=unknown-file a=1 b=0 result=0");
  EXPECT_EQ(log[9], "call op=9 name=HostOpShowHelp error=refused result=0");
  EXPECT_EQ(log[12], "call op=7 name=unknown error=unexpected-opcode result=0");
}

TEST(HostSession, AnswersFromTheScript) {
  LoggedSession host;
  for (const char* line :
       {"setting SoftButtons 1", "select-file C:\\a.bmp", "dialog-size 640 480", "# a comment", ""})
    EXPECT_TRUE(ReadHostAnswerLine(&host.session, line)) << line;
  EXPECT_FALSE(ReadHostAnswerLine(&host.session, "click 2"));
  auto setting = reinterpret_cast<const HostSetting*>(
      host.Call(nullptr, HostOpGetSetting, 0, Ptr("SoftButtons")));
  ASSERT_NE(setting, nullptr);
  EXPECT_EQ(setting->flags, 4u);
  EXPECT_EQ(*static_cast<const int32_t*>(setting->value), 1);
  EXPECT_EQ(host.Call(nullptr, HostOpGetSetting, 0, Ptr("EditListMaximum")), 0u);

  char path[261] = "";
  EXPECT_EQ(host.Call(nullptr, HostOpSelectImageFile, 0, Ptr(path)), 1u);
  EXPECT_STREQ(path, "C:\\a.bmp");
  EXPECT_EQ(host.Call(nullptr, HostOpSelectImageFile, 0, Ptr(path)), 0u);  // buffer not empty
  int32_t size[2] = {};
  EXPECT_EQ(host.Call(nullptr, HostOpFileDialogSize, 0, Ptr(size)), 1u);
  EXPECT_EQ(size[0] * 10000 + size[1], 6400480);
}

TEST(HostSession, AnimationBlockFromBmpFilesPassesTheCheck) {
  LoggedSession host;
  const std::filesystem::path folder = FreshFolder("gm5_anim_");
  std::string line = "animation";
  for (int i = 0; i < 2; ++i) {
    ScopedBlock frame(MakeFrame(static_cast<uint8_t>(i)));
    const std::vector<uint8_t> dib = BlockBytes(frame.handle);
    const std::string path = (folder / "f").string() + std::to_string(i) + ".bmp";
    ASSERT_TRUE(WriteWholeFile(path.c_str(), PackedDibToBmp(dib.data(), dib.size())));
    line += " " + path;
  }
  ReadHostAnswerLine(&host.session, line.c_str());

  AnimationRequest request{};
  request.magic = kAnimationRequestMagic;
  request.size = sizeof request;
  request.version = 0x1000;
  request.mode = 1;
  MovableHandle block =
      reinterpret_cast<MovableHandle>(host.Call(nullptr, HostOpOpenAnimation, 0, Ptr(&request)));
  ASSERT_NE(block, nullptr);
  const std::vector<uint8_t> bytes = BlockBytes(block);
  MovableFree(block);
  EXPECT_TRUE(CheckAnimationBlock(bytes.data(), bytes.size()));
  EXPECT_EQ(bytes.size(), 20 + 2 * (20 + 40 + 1024 + 24) + 4u);
  EXPECT_EQ(std::string(request.path), (folder / "f0.bmp").string());
  request.mode = 2;
  EXPECT_EQ(host.Call(nullptr, HostOpOpenAnimation, 0, Ptr(&request)), 0u);

  // Every allocation of the block and of the BMP reader can fail without a leak.
  request.mode = 1;
  EXPECT_TRUE(SweepAllocationFailures([&] {
    MovableHandle made =
        reinterpret_cast<MovableHandle>(host.Call(nullptr, HostOpOpenAnimation, 0, Ptr(&request)));
    MovableFree(made);
    return made != nullptr;
  }));
  // A request with a path reads that file, here a still picture: one frame of its pixels. A
  // file that isn't a picture is refused; the user's choice of a file is read the same way and
  // its path handed back.
  const std::string still = (folder / "f1.bmp").string();
  std::snprintf(request.path, sizeof request.path, "%s", still.c_str());
  ScopedBlock one(
      reinterpret_cast<MovableHandle>(host.Call(nullptr, HostOpOpenAnimation, 0, Ptr(&request))));
  ASSERT_TRUE(ValidateAnimationBlock(one.handle));
  int32_t delay = 0;
  ScopedBlock picture(AnimationFrame(one.handle, 0, &delay));
  ScopedBlock original(MakeFrame(1));
  ScopedLock p(picture.handle), o(original.handle);
  ASSERT_TRUE(p && o);
  EXPECT_EQ(AnimationFrameCount(one.handle), 1);
  EXPECT_EQ(delay, kStillPictureDelay);
  for (int32_t y = 0; y < 3; ++y)
    for (int32_t x = 0; x < 5; ++x) {
      const uint8_t* entry = o.bytes + kDibHeaderBytes + 4 * ReadDibPixel(o.bytes, x, y);
      const uint32_t colour = entry[2] | entry[1] << 8 | entry[0] << 16;  // blue, green, red, 0
      ASSERT_EQ(ReadDibPixel(p.bytes, x, y), colour) << x << "," << y;
    }
  const std::string text = (folder / "note.txt").string();
  ASSERT_TRUE(WriteWholeFile(text.c_str(), std::vector<uint8_t>(200, 'x')));
  std::snprintf(request.path, sizeof request.path, "%s", text.c_str());
  EXPECT_EQ(host.Call(nullptr, HostOpOpenAnimation, 0, Ptr(&request)), 0u);
  EXPECT_NE(host.Log().back().find("error=unreadable-file"), std::string::npos)
      << host.Log().back();
  ReadHostAnswerLine(&host.session, ("animation-file " + still).c_str());
  request.path[0] = 0;
  ScopedBlock chosen(
      reinterpret_cast<MovableHandle>(host.Call(nullptr, HostOpOpenAnimation, 0, Ptr(&request))));
  EXPECT_EQ(AnimationFrameCount(chosen.handle), 1);
  EXPECT_EQ(std::string(request.path), still);
  std::vector<uint8_t> bmp = ReadWholeFile((folder / "f1.bmp").string().c_str());
  EXPECT_TRUE(SweepAllocationFailures([&] {
    MovableHandle made = BmpToPackedDib(bmp.data(), bmp.size());
    MovableFree(made);
    return made != nullptr;
  }));
  std::filesystem::remove_all(folder);
}
