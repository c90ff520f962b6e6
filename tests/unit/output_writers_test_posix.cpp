// The output writers on files made through the host session: GIF decoded with giflib (palette,
// delays, transparency, disposal, comment, loop, pixels), animated WebP and PNG frames decoded
// with libwebp and libpng (composited pictures, alpha, timing), and the all-or-nothing rule.
#include <gif_lib.h>
#include <png.h>
#include <webp/demux.h>

#include <sys/stat.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "host/host_session.h"
#include "host/writers/animation_output.h"
#include "host/writers/output_file.h"
#include "shell/packed_dib.h"

namespace fs = std::filesystem;

namespace {

uint64_t Ptr(const void* pointer) {
  return reinterpret_cast<uint64_t>(pointer);
}

// A scratch folder, removed with everything in it.
struct Scratch {
  fs::path folder;
  Scratch() {
    std::string name = "gm5-writers-";
    name += std::to_string(getpid());
    name += testing::UnitTest::GetInstance()->current_test_info()->name();
    folder = fs::temp_directory_path() / name;
    fs::remove_all(folder);
    fs::create_directories(folder);
  }
  ~Scratch() { fs::remove_all(folder); }
  std::string Path(const char* name) const { return (folder / name).string(); }
  // Every name in the folder: a failed write must leave nothing, a good one only its output.
  std::vector<std::string> Names() const {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder))
      names.push_back(entry.path().filename().string());
    return names;
  }
};

struct FrameSpec {
  std::vector<uint32_t> pixels;  // row by row from the top; indices or 0xAABBGGRR colours
  int32_t delay;
  int32_t transparent;
  int32_t transparentIndex;
};

// Hands a file of `bits`-deep frames (`depth` of the pictures) to a session, as the pipeline does,
// and returns the closed file.
const HostFile* MakeFile(HostSession* session, int32_t bits, int32_t depth, int32_t width,
                         int32_t height, const std::vector<FrameSpec>& frames, const char* comment,
                         int64_t backgroundIndex) {
  FileObjectRecord record{};
  record.size = sizeof record;
  record.version = kInterfaceVersion;
  record.bits = bits;
  record.width = width;
  record.height = height;
  record.frameCount = static_cast<int32_t>(frames.size());
  for (int i = 0; i < 256; ++i) {  // entry i is (i, 255 - i, 7 * i)
    record.palette[i * 3] = static_cast<uint8_t>(i);
    record.palette[i * 3 + 1] = static_cast<uint8_t>(255 - i);
    record.palette[i * 3 + 2] = static_cast<uint8_t>(7 * i);
  }
  EXPECT_EQ(ServeHostCall(session, nullptr, HostOpCreateFile, 0, Ptr(&record)), 1u);
  if (backgroundIndex >= 0)
    ServeHostCall(session, &record, HostOpSetBackground, kBackgroundIndex,
                  static_cast<uint64_t>(backgroundIndex));
  for (size_t i = 0; i < frames.size(); ++i) {
    MovableHandle image = CreatePackedDib(width, height, record.palette, depth);
    {
      ScopedLock bytes(image);
      for (int32_t y = 0; y < height; ++y)
        for (int32_t x = 0; x < width; ++x)
          WriteDibPixel(bytes.bytes, x, y, frames[i].pixels[y * width + x]);
    }
    ImageRecord add{};
    add.size = sizeof add;
    add.version = kInterfaceVersion;
    add.image = image;
    add.delay = frames[i].delay;
    add.index = static_cast<int32_t>(i);
    add.transparent = frames[i].transparent;
    add.transparentIndex = frames[i].transparentIndex;
    EXPECT_EQ(ServeHostCall(session, &record, HostOpAddImage, 0, Ptr(&add)), 1u);
    MovableFree(image);
  }
  if (comment) ServeHostCall(session, &record, HostOpAddComment, 0, Ptr(comment));
  EXPECT_EQ(ServeHostCall(session, &record, HostOpCloseFile, 1, 0), 1u);
  return session->files.back().get();
}

// Three 4 x 2 frames of a 3-bit file as supercompression leaves them: frame 0 whole, later frames
// with index 7 where nothing changed.
std::vector<FrameSpec> SupercompressedFrames() {
  return {{{1, 2, 3, 4, 5, 6, 1, 2}, 10, 0, -1},
          {{7, 7, 6, 7, 7, 7, 7, 3}, 20, 0, 7},
          {{5, 7, 7, 7, 7, 7, 7, 7}, 30, 0, 7}};
}

uint32_t Rgba(int index) {  // the test palette's colour of `index` as R, G, B, A bytes
  return static_cast<uint32_t>(index) | static_cast<uint32_t>(255 - index) << 8 |
         static_cast<uint32_t>(7 * index & 0xFF) << 16 | 0xFF000000u;
}

uint32_t Read32(const uint8_t* p) {
  return p[0] | p[1] << 8 | p[2] << 16 | static_cast<uint32_t>(p[3]) << 24;
}

}  // namespace

TEST(GifWriter, SupercompressedFileDecodesWithItsRecords) {
  Scratch scratch;
  HostSession session;
  const HostFile* file =
      MakeFile(&session, 3, 8, 4, 2, SupercompressedFrames(), "made by gm5 tests", 7);
  std::string error, path = scratch.Path("a.gif");
  const mode_t mask = umask(022);
  ASSERT_EQ(WriteAnimationOutput(file, 10, path, &error), 1) << error;
  umask(mask);
  EXPECT_EQ(scratch.Names(), std::vector<std::string>{"a.gif"});
  // Readable by all, as any new file under that mask.
  EXPECT_EQ(fs::status(path).permissions(), static_cast<fs::perms>(0644));

  int code = 0;
  GifFileType* gif = DGifOpenFileName(path.c_str(), &code);
  ASSERT_NE(gif, nullptr);
  ASSERT_EQ(DGifSlurp(gif), GIF_OK);
  EXPECT_EQ(gif->SWidth, 4);
  EXPECT_EQ(gif->SHeight, 2);
  EXPECT_EQ(gif->SBackGroundColor, 7);
  ASSERT_NE(gif->SColorMap, nullptr);
  EXPECT_EQ(gif->SColorMap->ColorCount, 8);
  EXPECT_EQ(gif->SColorMap->Colors[5].Red, 5);
  EXPECT_EQ(gif->SColorMap->Colors[5].Green, 250);
  EXPECT_EQ(gif->SColorMap->Colors[5].Blue, 35);
  ASSERT_EQ(gif->ImageCount, 3);
  const int delays[] = {10, 20, 30}, transparency[] = {NO_TRANSPARENT_COLOR, 7, 7};
  for (int i = 0; i < 3; ++i) {
    GraphicsControlBlock control;
    ASSERT_EQ(DGifSavedExtensionToGCB(gif, i, &control), GIF_OK);
    EXPECT_EQ(control.DelayTime, delays[i]);
    EXPECT_EQ(control.TransparentColor, transparency[i]);
    EXPECT_EQ(control.DisposalMode, DISPOSE_DO_NOT) << "frame " << i;
  }
  const std::vector<FrameSpec> frames = SupercompressedFrames();
  for (int i = 0; i < 3; ++i)
    for (int p = 0; p < 8; ++p)
      EXPECT_EQ(gif->SavedImages[i].RasterBits[p], frames[i].pixels[p]) << i << "," << p;

  // The comment and the loop block, wherever they stand among the blocks before the images.
  int sawComment = 0, sawLoop = 0;
  for (int i = 0; i < gif->ImageCount; ++i) {
    const SavedImage& image = gif->SavedImages[i];
    for (int e = 0; e < image.ExtensionBlockCount; ++e) {
      const ExtensionBlock& block = image.ExtensionBlocks[e];
      if (block.Function == COMMENT_EXT_FUNC_CODE)
        sawComment = std::string(reinterpret_cast<char*>(block.Bytes), block.ByteCount) ==
                     "made by gm5 tests";
      if (block.Function == APPLICATION_EXT_FUNC_CODE && block.ByteCount == 11 &&
          memcmp(block.Bytes, "NETSCAPE2.0", 11) == 0) {
        ASSERT_LT(e + 1, image.ExtensionBlockCount);
        const ExtensionBlock& loop = image.ExtensionBlocks[e + 1];
        sawLoop =
            loop.ByteCount == 3 && loop.Bytes[0] == 1 && loop.Bytes[1] == 0 && loop.Bytes[2] == 0;
      }
    }
  }
  EXPECT_TRUE(sawComment);
  EXPECT_TRUE(sawLoop);
  DGifCloseFile(gif, &code);
}

TEST(GifWriter, KeyedFramesAreClearedAfterShowing) {
  Scratch scratch;
  HostSession session;
  // A keyed file: every frame marks index 0 transparent, so each must be cleared after it shows.
  std::vector<FrameSpec> frames = {{{0, 1, 2, 0}, 4, 1, 0}, {{3, 0, 0, 3}, 4, 1, 0}};
  const HostFile* file = MakeFile(&session, 2, 8, 2, 2, frames, nullptr, -1);
  std::string error, path = scratch.Path("keyed.GIF");
  ASSERT_EQ(WriteAnimationOutput(file, 10, path, &error), 1) << error;
  int code = 0;
  GifFileType* gif = DGifOpenFileName(path.c_str(), &code);
  ASSERT_NE(gif, nullptr);
  ASSERT_EQ(DGifSlurp(gif), GIF_OK);
  ASSERT_EQ(gif->ImageCount, 2);
  EXPECT_EQ(gif->SColorMap->ColorCount, 4);
  for (int i = 0; i < 2; ++i) {
    GraphicsControlBlock control;
    ASSERT_EQ(DGifSavedExtensionToGCB(gif, i, &control), GIF_OK);
    EXPECT_EQ(control.DisposalMode, DISPOSE_BACKGROUND);
    EXPECT_EQ(control.TransparentColor, 0);
  }
  for (int i = 0; i < gif->ImageCount; ++i) {
    for (int e = 0; e < gif->SavedImages[i].ExtensionBlockCount; ++e)
      EXPECT_NE(gif->SavedImages[i].ExtensionBlocks[e].Function, COMMENT_EXT_FUNC_CODE);
  }
  DGifCloseFile(gif, &code);
}

TEST(WebpWriter, AlphaBuildDecodesWithItsFramesAndAlpha) {
  Scratch scratch;
  HostSession session;
  // True-colour frames with alpha (0xAABBGGRR); delays in milliseconds.
  std::vector<FrameSpec> frames = {
      {{0xFF0000FFu, 0x800000FFu, 0x00000000u, 0xFF00FF00u}, 40, 1, 0},
      {{0x40FF0000u, 0xFF00FF00u, 0xFFFFFFFFu, 0x00000000u}, 60, 1, 0},
      {{0xFF102030u, 0xFF102030u, 0xFF102030u, 0xFF102030u}, 80, 1, 0}};
  const HostFile* file = MakeFile(&session, 24, 32, 2, 2, frames, nullptr, -1);
  std::string error, path = scratch.Path("alpha.webp");
  ASSERT_EQ(WriteAnimationOutput(file, 1, path, &error), 1) << error;

  std::ifstream in(path, std::ios::binary);
  std::vector<uint8_t> bytes((std::istreambuf_iterator<char>(in)),
                             std::istreambuf_iterator<char>());
  WebPData data = {bytes.data(), bytes.size()};
  WebPAnimDecoderOptions options;
  ASSERT_TRUE(WebPAnimDecoderOptionsInit(&options));
  options.color_mode = MODE_RGBA;
  WebPAnimDecoder* decoder = WebPAnimDecoderNew(&data, &options);
  ASSERT_NE(decoder, nullptr);
  WebPAnimInfo info;
  ASSERT_TRUE(WebPAnimDecoderGetInfo(decoder, &info));
  EXPECT_EQ(info.frame_count, 3u);
  EXPECT_EQ(info.canvas_width, 2u);
  EXPECT_EQ(info.loop_count, 0u);
  const int ends[] = {40, 100, 180};
  for (int i = 0; i < 3; ++i) {
    uint8_t* pixels = nullptr;
    int timestamp = 0;
    ASSERT_TRUE(WebPAnimDecoderGetNext(decoder, &pixels, &timestamp));
    EXPECT_EQ(timestamp, ends[i]);
    for (int p = 0; p < 4; ++p) {
      uint32_t want = frames[i].pixels[p], got = Read32(pixels + p * 4);
      EXPECT_EQ(got >> 24, want >> 24) << "alpha of frame " << i << " pixel " << p;
      if (want >> 24) {
        EXPECT_EQ(got & 0xFFFFFF, want & 0xFFFFFF) << i << "," << p;
      }
    }
  }
  WebPAnimDecoderDelete(decoder);
}

TEST(WebpWriter, SupercompressedFramesComposeOverTheEarlierOnes) {
  Scratch scratch;
  HostSession session;
  const HostFile* file = MakeFile(&session, 3, 8, 4, 2, SupercompressedFrames(), nullptr, -1);
  std::string error, path = scratch.Path("indexed.webp");
  ASSERT_EQ(WriteAnimationOutput(file, 10, path, &error), 1) << error;
  std::ifstream in(path, std::ios::binary);
  std::vector<uint8_t> bytes((std::istreambuf_iterator<char>(in)),
                             std::istreambuf_iterator<char>());
  WebPData data = {bytes.data(), bytes.size()};
  WebPAnimDecoder* decoder = WebPAnimDecoderNew(&data, nullptr);
  ASSERT_NE(decoder, nullptr);
  // What a viewer sees after each frame, as palette indices.
  const int seen[3][8] = {
      {1, 2, 3, 4, 5, 6, 1, 2}, {1, 2, 6, 4, 5, 6, 1, 3}, {5, 2, 6, 4, 5, 6, 1, 3}};
  const int ends[] = {100, 300, 600};
  for (int i = 0; i < 3; ++i) {
    uint8_t* pixels = nullptr;
    int timestamp = 0;
    ASSERT_TRUE(WebPAnimDecoderGetNext(decoder, &pixels, &timestamp));
    EXPECT_EQ(timestamp, ends[i]);
    for (int p = 0; p < 8; ++p)
      EXPECT_EQ(Read32(pixels + p * 4), Rgba(seen[i][p])) << i << "," << p;
  }
  WebPAnimDecoderDelete(decoder);
}

TEST(PngWriter, FolderHoldsEveryComposedFrame) {
  Scratch scratch;
  HostSession session;
  const HostFile* file = MakeFile(&session, 3, 8, 4, 2, SupercompressedFrames(), nullptr, -1);
  std::string error, path = scratch.Path("frames");
  ASSERT_EQ(WriteAnimationOutput(file, 10, path, &error), 1) << error;
  EXPECT_EQ(scratch.Names(), std::vector<std::string>{"frames"});
  const char* names[] = {"frame-0001.png", "frame-0002.png", "frame-0003.png"};
  int count = 0;
  for (const auto& entry : fs::directory_iterator(path)) count += entry.is_regular_file();
  EXPECT_EQ(count, 3);
  png_image image;
  memset(&image, 0, sizeof image);
  image.version = PNG_IMAGE_VERSION;
  ASSERT_TRUE(png_image_begin_read_from_file(&image, (path + "/" + names[2]).c_str()));
  image.format = PNG_FORMAT_RGBA;
  ASSERT_EQ(image.width, 4u);
  std::vector<uint8_t> pixels(PNG_IMAGE_SIZE(image));
  ASSERT_TRUE(png_image_finish_read(&image, nullptr, pixels.data(), 0, nullptr));
  const int seen[8] = {5, 2, 6, 4, 5, 6, 1, 3};
  for (int p = 0; p < 8; ++p) EXPECT_EQ(Read32(&pixels[p * 4]), Rgba(seen[p])) << p;
}

TEST(AnimationOutput, FailuresLeaveNothingBehind) {
  Scratch scratch;
  HostSession session;
  const HostFile* indexed = MakeFile(&session, 3, 8, 4, 2, SupercompressedFrames(), nullptr, -1);
  std::vector<FrameSpec> colour = {
      {{0xFF0000FFu, 0xFF00FF00u, 0xFFFF0000u, 0xFF000000u}, 40, 0, -1}};
  const HostFile* trueColour = MakeFile(&session, 24, 24, 2, 2, colour, nullptr, -1);
  std::string error;

  EXPECT_EQ(WriteAnimationOutput(indexed, 10, scratch.Path("a.bmp"), &error), 0);
  EXPECT_EQ(error, "unknown output type: " + scratch.Path("a.bmp") +
                       " (use .gif, .webp, .png or a folder)");
  error.clear();
  EXPECT_EQ(WriteAnimationOutput(trueColour, 1, scratch.Path("colour.gif"), &error), 0);
  EXPECT_EQ(error, "cannot write " + scratch.Path("colour.gif") +
                       ": GIF needs an indexed build (not true colour or alpha)");
  error.clear();
  EXPECT_EQ(WriteAnimationOutput(indexed, 10, scratch.Path("none/a.gif"), &error), 0);
  EXPECT_EQ(error,
            "cannot write " + scratch.Path("none/a.gif") + ": no folder " + scratch.Path("none"));
  EXPECT_TRUE(scratch.Names().empty());

  // A place that cannot take the file (here a folder of that name) fails at the rename, and
  // the temporary file goes.
  fs::create_directories(scratch.Path("taken.gif/inside"));
  error.clear();
  EXPECT_EQ(WriteAnimationOutput(indexed, 10, scratch.Path("taken.gif"), &error), 0);
  EXPECT_EQ(error.rfind("cannot write " + scratch.Path("taken.gif") + ": ", 0), 0u) << error;
  EXPECT_EQ(scratch.Names(), std::vector<std::string>{"taken.gif"});
}

TEST(AnimationOutput, StoppedRunRemovesWhatItWrote) {
  Scratch scratch;
  std::string error;
  OutputTarget file;
  ASSERT_EQ(BeginOutput(&file, scratch.Path("a.gif"), 0, &error), 1) << error;
  { std::ofstream(file.temporary) << "partial"; }
  RemovePartialOutputFromSignal();
  EXPECT_TRUE(scratch.Names().empty());
  AbandonOutput(&file);

  OutputTarget folder;
  ASSERT_EQ(BeginOutput(&folder, scratch.Path("frames/"), 1, &error), 1) << error;
  for (const char* name : {"/frame-0001.png", "/frame-0002.png"}) {
    std::ofstream(folder.temporary + name) << "partial";
    NotePartialOutputFile(folder.temporary + name);
  }
  RemovePartialOutputFromSignal();
  EXPECT_TRUE(scratch.Names().empty());
  AbandonOutput(&folder);
}
