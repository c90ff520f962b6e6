// The output writers on files made through the host session: GIF decoded with giflib (palette,
// delays, transparency, disposal, comment, loop, pixels), animated WebP and PNG frames decoded
// with libwebp and libpng (composed pictures, alpha, timing), and the all-or-nothing rule.
#include <gif_lib.h>
#include <png.h>
#include <sys/stat.h>
#include <webp/demux.h>

#include <cstring>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "host/host_session.h"
#include "host/writers/animation_output.h"
#include "host/writers/gif_lzw.h"
#include "host/writers/gif_writer.h"
#include "host/writers/output_file.h"
#include "shell/packed_dib.h"
#include "tests/support/gif_pictures.h"
#include "tests/support/scratch_folder.h"

namespace fs = std::filesystem;

namespace {

uint64_t Ptr(const void* pointer) {
  return reinterpret_cast<uint64_t>(pointer);
}

struct FrameSpec {
  std::vector<uint32_t> pixels;  // row by row from the top; indices or 0xAABBGGRR colours
  int32_t delay, transparent, transparentIndex;
};

// Hands a file of `bits`-deep frames (`depth` of the pictures) to a session, as the pipeline does,
// and returns the closed file. Palette entry i is (i, 255 - i, 7 * i).
const HostFile* MakeFile(HostSession* session, int32_t bits, int32_t depth, int32_t width,
                         int32_t height, const std::vector<FrameSpec>& frames,
                         const char* comment = nullptr, int64_t backgroundIndex = -1) {
  FileObjectRecord record{};
  record.size = sizeof record;
  record.version = kInterfaceVersion;
  record.bits = bits;
  record.width = width;
  record.height = height;
  record.frameCount = static_cast<int32_t>(frames.size());
  for (int i = 0; i < 256; ++i) {
    const uint8_t entry[3] = {static_cast<uint8_t>(i), static_cast<uint8_t>(255 - i),
                              static_cast<uint8_t>(7 * i)};
    memcpy(record.palette + i * 3, entry, 3);
  }
  EXPECT_EQ(ServeHostCall(session, nullptr, HostOpCreateFile, 0, Ptr(&record)), 1u);
  if (backgroundIndex >= 0)
    ServeHostCall(session, &record, HostOpSetBackground, kBackgroundIndex,
                  static_cast<uint64_t>(backgroundIndex));
  for (size_t i = 0; i < frames.size(); ++i) {
    ScopedBlock image(CreatePackedDib(width, height, record.palette, depth));
    {
      ScopedLock bytes(image.handle);
      for (int32_t p = 0; p < width * height; ++p)
        WriteDibPixel(bytes.bytes, p % width, p / width, frames[i].pixels[p]);
    }
    ImageRecord add{};
    add.size = sizeof add;
    add.version = kInterfaceVersion;
    add.image = image.handle;
    add.delay = frames[i].delay;
    add.index = static_cast<int32_t>(i);
    add.transparent = frames[i].transparent;
    add.transparentIndex = frames[i].transparentIndex;
    EXPECT_EQ(ServeHostCall(session, &record, HostOpAddImage, 0, Ptr(&add)), 1u);
  }
  if (comment) ServeHostCall(session, &record, HostOpAddComment, 0, Ptr(comment));
  EXPECT_EQ(ServeHostCall(session, &record, HostOpCloseFile, 1, 0), 1u);
  return session->files.back().get();
}

// Three 4 x 2 frames of a 3-bit file as supercompression leaves them: frame 0 whole, later frames
// with index 7 where nothing changed; and what a viewer sees after each, as palette indices.
const std::vector<FrameSpec> kSupercompressed = {{{1, 2, 3, 4, 5, 6, 1, 2}, 10, 0, -1},
                                                 {{7, 7, 6, 7, 7, 7, 7, 3}, 20, 0, 7},
                                                 {{5, 7, 7, 7, 7, 7, 7, 7}, 30, 0, 7}};
const int kSeen[3][8] = {
    {1, 2, 3, 4, 5, 6, 1, 2}, {1, 2, 6, 4, 5, 6, 1, 3}, {5, 2, 6, 4, 5, 6, 1, 3}};

uint32_t Rgba(int index) {  // the test palette's colour of `index` as R, G, B, A bytes
  return static_cast<uint32_t>(index) | static_cast<uint32_t>(255 - index) << 8 |
         static_cast<uint32_t>(7 * index & 0xFF) << 16 | 0xFF000000u;
}

uint32_t Read32(const uint8_t* p) {
  return p[0] | p[1] << 8 | p[2] << 16 | static_cast<uint32_t>(p[3]) << 24;
}

}  // namespace

TEST(GifWriter, SupercompressedFileDecodesWithItsRecords) {
  ScratchFolder scratch;
  HostSession session;
  const HostFile* file = MakeFile(&session, 3, 8, 4, 2, kSupercompressed, "made by gm5 tests", 7);
  std::string error, path = scratch.Path("a.gif"), recorded = scratch.Path("recorded.gif");
  const mode_t mask = umask(022);
  OutputOptions options;
  options.loopCount = 3;
  ASSERT_EQ(WriteAnimationOutput(file, options, path, &error), 1) << error;
  umask(mask);
  EXPECT_EQ(scratch.Names(), std::vector<std::string>{"a.gif"});
  EXPECT_EQ(fs::status(path).permissions(), static_cast<fs::perms>(0644));  // as any new file
  // The same file with every frame whole, as the records give it.
  std::vector<uint8_t> bytes;
  ASSERT_EQ(EncodeGif(file, 3, &bytes, &error, 0), 1) << error;
  ASSERT_EQ(WriteOutputBytes(recorded, bytes.data(), bytes.size(), 0, &error), 1) << error;
  EXPECT_LE(FileBytes(path).size(), bytes.size());

  int code = 0;
  GifFileType* gif = DGifOpenFileName(path.c_str(), &code);
  GifFileType* whole = DGifOpenFileName(recorded.c_str(), &code);
  ASSERT_TRUE(gif && whole);
  ASSERT_EQ(DGifSlurp(gif), GIF_OK);
  ASSERT_EQ(DGifSlurp(whole), GIF_OK);
  EXPECT_EQ(gif->SWidth * 10 + gif->SHeight, 42);
  EXPECT_EQ(whole->SBackGroundColor, 7);
  ASSERT_NE(whole->SColorMap, nullptr);
  EXPECT_EQ(whole->SColorMap->ColorCount, 8);
  const GifColorType five = whole->SColorMap->Colors[5];
  EXPECT_EQ(five.Red << 16 | five.Green << 8 | five.Blue, 5 << 16 | 250 << 8 | 35);
  ASSERT_EQ(gif->ImageCount, 3);
  ASSERT_EQ(whole->ImageCount, 3);
  for (int i = 0; i < 3; ++i) {
    GraphicsControlBlock control, kept;
    ASSERT_EQ(DGifSavedExtensionToGCB(whole, i, &control), GIF_OK);
    ASSERT_EQ(DGifSavedExtensionToGCB(gif, i, &kept), GIF_OK);
    EXPECT_EQ(control.DelayTime, kSupercompressed[i].delay);
    EXPECT_EQ(kept.DelayTime, kSupercompressed[i].delay);
    EXPECT_EQ(control.TransparentColor, kSupercompressed[i].transparentIndex);  // -1: none
    EXPECT_EQ(control.DisposalMode, DISPOSE_DO_NOT) << "frame " << i;
    for (int p = 0; p < 8; ++p)
      EXPECT_EQ(whole->SavedImages[i].RasterBits[p], kSupercompressed[i].pixels[p]) << i << p;
  }
  // Whatever the frames carry, a decoder shows the same pictures, the viewer's.
  const auto shown = ShownGifPictures(gif);
  EXPECT_TRUE(shown == ShownGifPictures(whole));
  for (int i = 0; i < 3; ++i)
    for (int p = 0; p < 8; ++p) EXPECT_EQ(shown[i][p], Rgba(kSeen[i][p])) << i << "," << p;
  DGifCloseFile(whole, &code);
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
          memcmp(block.Bytes, "NETSCAPE2.0", 11) == 0 && e + 1 < image.ExtensionBlockCount) {
        const ExtensionBlock& loop = image.ExtensionBlocks[e + 1];
        sawLoop = loop.ByteCount == 3 && memcmp(loop.Bytes, "\1\3\0", 3) == 0;
      }
    }
  }
  EXPECT_TRUE(sawComment);
  EXPECT_TRUE(sawLoop);
  DGifCloseFile(gif, &code);
}

TEST(WebpWriter, AlphaBuildDecodesWithItsFramesAndAlpha) {
  ScratchFolder scratch;
  HostSession session;
  // True-colour frames with alpha (0xAABBGGRR); delays in hundredths, as for a GIF.
  const std::vector<FrameSpec> frames = {
      {{0xFF0000FFu, 0x800000FFu, 0x00000000u, 0xFF00FF00u}, 40, 1, 0},
      {{0x40FF0000u, 0xFF00FF00u, 0xFFFFFFFFu, 0x00000000u}, 60, 1, 0}};
  const HostFile* file = MakeFile(&session, 24, 32, 2, 2, frames);
  std::string error, path = scratch.Path("alpha.webp");
  ASSERT_EQ(WriteAnimationOutput(file, {}, path, &error), 1) << error;
  const std::vector<uint8_t> bytes = FileBytes(path);
  WebPData data = {bytes.data(), bytes.size()};
  WebPAnimDecoderOptions options;
  ASSERT_TRUE(WebPAnimDecoderOptionsInit(&options));
  options.color_mode = MODE_RGBA;
  WebPAnimDecoder* decoder = WebPAnimDecoderNew(&data, &options);
  ASSERT_NE(decoder, nullptr);
  WebPAnimInfo info;
  ASSERT_TRUE(WebPAnimDecoderGetInfo(decoder, &info));
  EXPECT_EQ(info.frame_count * 100 + info.canvas_width * 10 + info.loop_count, 220u);
  for (int i = 0, end = 0; i < 2; ++i) {
    uint8_t* pixels = nullptr;
    int timestamp = 0;
    ASSERT_TRUE(WebPAnimDecoderGetNext(decoder, &pixels, &timestamp));
    EXPECT_EQ(timestamp, end += frames[i].delay * 10);
    for (int p = 0; p < 4; ++p) {
      const uint32_t want = frames[i].pixels[p], got = Read32(pixels + p * 4);
      // Colours only count where something shows.
      EXPECT_EQ(want >> 24 ? got : got >> 24, want >> 24 ? want : 0) << i << "," << p;
    }
  }
  WebPAnimDecoderDelete(decoder);
}

TEST(AnimationOutput, IndexedFramesComposeInWebpAndInAFolderOfPngs) {
  ScratchFolder scratch;
  HostSession session;
  const HostFile* file = MakeFile(&session, 3, 8, 4, 2, kSupercompressed);
  std::string error, webp = scratch.Path("indexed.webp"), folder = scratch.Path("frames");
  ASSERT_EQ(WriteAnimationOutput(file, {}, webp, &error), 1) << error;
  ASSERT_EQ(WriteAnimationOutput(file, {}, folder, &error), 1) << error;
  EXPECT_EQ(scratch.Names().size(), 2u);
  const std::vector<uint8_t> bytes = FileBytes(webp);
  WebPData data = {bytes.data(), bytes.size()};
  WebPAnimDecoder* decoder = WebPAnimDecoderNew(&data, nullptr);
  ASSERT_NE(decoder, nullptr);
  for (int i = 0, end = 0; i < 3; ++i) {
    uint8_t* pixels = nullptr;
    int timestamp = 0;
    ASSERT_TRUE(WebPAnimDecoderGetNext(decoder, &pixels, &timestamp));
    EXPECT_EQ(timestamp, end += kSupercompressed[i].delay * 10);
    png_image png{};
    png.version = PNG_IMAGE_VERSION;
    const std::string name = folder + "/frame-000" + std::to_string(i + 1) + ".png";
    ASSERT_TRUE(png_image_begin_read_from_file(&png, name.c_str())) << name;
    png.format = PNG_FORMAT_RGBA;
    std::vector<uint8_t> frame(PNG_IMAGE_SIZE(png));
    ASSERT_TRUE(png_image_finish_read(&png, nullptr, frame.data(), 0, nullptr));
    ASSERT_EQ(frame.size(), 32u);
    for (int p = 0; p < 8; ++p) {
      EXPECT_EQ(Read32(pixels + p * 4), Rgba(kSeen[i][p])) << i << "," << p;
      EXPECT_EQ(Read32(&frame[p * 4]), Rgba(kSeen[i][p])) << i << "," << p;
    }
  }
  WebPAnimDecoderDelete(decoder);
  EXPECT_EQ(std::distance(fs::directory_iterator(folder), fs::directory_iterator()), 3);
}

TEST(AnimationOutput, FailuresLeaveNothingBehind) {
  ScratchFolder scratch;
  HostSession session;
  const HostFile* indexed = MakeFile(&session, 3, 8, 4, 2, kSupercompressed);
  const HostFile* trueColour =
      MakeFile(&session, 24, 24, 2, 2, {{{0xFF0000FFu, 0xFF00FF00u, 0xFFFF0000u, 0u}, 40, 0, -1}});
  // Unknown types and missing folders are refused as gm5 render shows; here a true-colour file
  // given to GIF, and a place that cannot take the file (a folder of that name), which fails at
  // the rename with the temporary file gone.
  const std::string gif = scratch.Path("colour.gif");
  std::string error;
  EXPECT_EQ(WriteAnimationOutput(trueColour, {}, gif, &error), 0);
  EXPECT_EQ(error,
            "cannot write " + gif + ": GIF needs an indexed build (not true colour or alpha)");
  EXPECT_TRUE(scratch.Names().empty());
  fs::create_directories(scratch.Path("taken.gif/inside"));
  EXPECT_EQ(WriteAnimationOutput(indexed, {}, scratch.Path("taken.gif"), &error), 0);
  EXPECT_EQ(error.rfind("cannot write " + scratch.Path("taken.gif") + ": ", 0), 0u) << error;
  EXPECT_EQ(scratch.Names(), std::vector<std::string>{"taken.gif"});
}

namespace {

struct ByteReader {
  const std::vector<uint8_t>* bytes;
  size_t at = 0;
};

int ReadBytes(GifFileType* gif, GifByteType* out, int n) {
  ByteReader* r = static_cast<ByteReader*>(gif->UserData);
  const size_t count = std::min<size_t>(static_cast<size_t>(n), r->bytes->size() - r->at);
  memcpy(out, r->bytes->data() + r->at, count);
  r->at += count;
  return static_cast<int>(count);
}

}  // namespace

// Compressed pixels decode, through giflib, to the pixels given: each as it is, or, where it may
// be either, as itself or the mark; across table clears and for every code size.
TEST(GifCompression, DecodesToThePixelsOrTheirMarks) {
  uint32_t seed = 12345;
  auto next = [&]() { return seed = seed * 1103515245u + 12345u, seed >> 16; };
  for (const int bits : {2, 4, 8}) {
    const int width = 300, height = 200, mark = (1 << bits) - 1;
    std::vector<uint8_t> pixels(width * height), either(pixels.size());
    for (size_t i = 0; i < pixels.size(); ++i) {
      // Runs and noise, so that strings grow long and the table fills and clears.
      pixels[i] = static_cast<uint8_t>(i % 97 < 60 ? (i / 301) % mark : next() % mark);
      either[i] = next() % 3 == 0;
    }
    std::vector<uint8_t> codes;
    CompressGifPixels(pixels.data(), either.data(), pixels.size(), bits, mark, &codes);
    // A one-image GIF around the codes: header, screen with a black table, image descriptor.
    std::vector<uint8_t> file;
    for (const char c : std::string("GIF89a")) file.push_back(static_cast<uint8_t>(c));
    auto put16 = [&](int value) {
      file.push_back(static_cast<uint8_t>(value & 0xFF));
      file.push_back(static_cast<uint8_t>(value >> 8));
    };
    put16(width);
    put16(height);
    file.push_back(static_cast<uint8_t>(0x80 | (bits - 1)));
    file.push_back(0);
    file.push_back(0);
    file.resize(file.size() + 3 * (1 << bits), 0);
    file.push_back(0x2C);
    put16(0);
    put16(0);
    put16(width);
    put16(height);
    file.push_back(0);
    file.push_back(static_cast<uint8_t>(bits));
    for (size_t at = 0; at < codes.size(); at += 255) {
      const size_t n = std::min<size_t>(255, codes.size() - at);
      file.push_back(static_cast<uint8_t>(n));
      file.insert(file.end(), codes.begin() + at, codes.begin() + at + n);
    }
    file.push_back(0);
    file.push_back(0x3B);
    ByteReader reader{&file};
    int code = 0;
    GifFileType* gif = DGifOpen(&reader, ReadBytes, &code);
    ASSERT_NE(gif, nullptr) << bits;
    ASSERT_EQ(DGifSlurp(gif), GIF_OK) << bits << " " << GifErrorString(gif->Error);
    const uint8_t* decoded = gif->SavedImages[0].RasterBits;
    size_t wrong = 0, marked = 0;
    for (size_t i = 0; i < pixels.size(); ++i) {
      marked += decoded[i] == mark && pixels[i] != mark;
      wrong += decoded[i] != pixels[i] && !(either[i] && decoded[i] == mark);
    }
    EXPECT_EQ(wrong, 0u) << bits;
    EXPECT_GT(marked, 0u) << bits;  // the marks were used
    DGifCloseFile(gif, &code);
  }
}
