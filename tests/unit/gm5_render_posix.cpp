// gm5 render and preview run in process on the built-in defaults, with the settings folder in a
// scratch folder: the default animation's GIF decoded with giflib and its WebP alpha build with the
// demuxer, each against the file the engine handed over; the sample picture; and the failures,
// each with its one-line message and nothing left behind.
#include <gif_lib.h>
#include <png.h>
#include <webp/demux.h>

#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "cli/render_command.h"

namespace fs = std::filesystem;

namespace {

// A scratch folder that is also the configuration folder, removed with everything in it.
struct RenderScratch {
  fs::path folder;
  std::string oldConfig;
  int hadConfig = 0;
  RenderScratch() {
    folder =
        fs::temp_directory_path() / ("gm5-render-" + std::to_string(getpid()) +
                                     testing::UnitTest::GetInstance()->current_test_info()->name());
    fs::remove_all(folder);
    fs::create_directories(folder / "config");
    if (const char* old = getenv("XDG_CONFIG_HOME")) oldConfig = old, hadConfig = 1;
    setenv("XDG_CONFIG_HOME", (folder / "config").c_str(), 1);
  }
  ~RenderScratch() {
    if (hadConfig)
      setenv("XDG_CONFIG_HOME", oldConfig.c_str(), 1);
    else
      unsetenv("XDG_CONFIG_HOME");
    fs::remove_all(folder);
  }
  std::string Path(const char* name) const { return (folder / name).string(); }
  // The names in the folder besides the configuration.
  std::vector<std::string> Outputs() const {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder))
      if (entry.path().filename() != "config") names.push_back(entry.path().filename().string());
    return names;
  }
};

CommandLine Line(std::vector<const char*> args, std::string* error) {
  args.insert(args.begin(), "gm5");
  CommandLine line;
  EXPECT_EQ(ParseCommandLine(static_cast<int>(args.size()), args.data(), &line, error), 1)
      << *error;
  line.quiet = 1;
  return line;
}

}  // namespace

TEST(Gm5Render, DefaultAnimationGifMatchesTheBuildAndTheSample) {
  RenderScratch scratch;
  const std::string gif = scratch.Path("default.gif"), sample = scratch.Path("sample.png");
  std::string error;
  HostFile built;
  ASSERT_EQ(
      RenderAnimation(Line({"render", "--defaults", "-o", gif.c_str()}, &error), &error, &built), 1)
      << error;
  ASSERT_GT(built.frames.size(), 1u);
  ASSERT_GE(built.record.bits, 1);
  ASSERT_LE(built.record.bits, 8);

  int code = 0;
  GifFileType* decoded = DGifOpenFileName(gif.c_str(), &code);
  ASSERT_NE(decoded, nullptr) << GifErrorString(code);
  ASSERT_EQ(DGifSlurp(decoded), GIF_OK) << GifErrorString(decoded->Error);
  EXPECT_EQ(decoded->SWidth, built.record.width);
  EXPECT_EQ(decoded->SHeight, built.record.height);
  ASSERT_NE(decoded->SColorMap, nullptr);
  EXPECT_EQ(decoded->SColorMap->ColorCount, 1 << built.record.bits);
  EXPECT_EQ(decoded->SColorMap->Colors[1].Red, built.record.palette[3]);
  ASSERT_EQ(static_cast<size_t>(decoded->ImageCount), built.frames.size());
  for (int i = 0; i < decoded->ImageCount; ++i) {
    GraphicsControlBlock control;
    ASSERT_EQ(DGifSavedExtensionToGCB(decoded, i, &control), GIF_OK) << i;
    EXPECT_GT(control.DelayTime, 0) << i;
    EXPECT_EQ(control.DelayTime, built.frames[i].delay) << i;
    const int32_t index = built.frames[i].transparentIndex;
    EXPECT_EQ(control.TransparentColor, index >= 0 ? index : NO_TRANSPARENT_COLOR) << i;
  }
  DGifCloseFile(decoded, &code);

  // The sample is drawn the size of a frame of the animation.
  ASSERT_EQ(RenderPreview(Line({"preview", "--defaults", "-o", sample.c_str()}, &error), &error), 1)
      << error;
  png_image picture{};
  picture.version = PNG_IMAGE_VERSION;
  ASSERT_NE(png_image_begin_read_from_file(&picture, sample.c_str()), 0);
  EXPECT_EQ(static_cast<int32_t>(picture.width), built.record.width);
  EXPECT_EQ(static_cast<int32_t>(picture.height), built.record.height);
  png_image_free(&picture);
}

// The keyed builds of a custom palette, decoded with giflib: a Transparent build marks its key in
// every frame and clears each frame after it is shown; a supercompressed one marks the unchanged
// pixels from the second frame on and keeps every frame, so that drawn in order it shows the
// plain build's frames.
TEST(Gm5Render, TransparentAndSupercompressedGifsKeyEachFrame) {
  RenderScratch scratch;
  auto render = [&](const char* name, const char* option, HostFile* built) {
    const std::string path = scratch.Path(name);
    std::string error;
    std::vector<const char*> args = {"render", "--defaults", "--custom-palette", "-o",
                                     path.c_str()};
    if (option) args.push_back(option);
    EXPECT_EQ(RenderAnimation(Line(args, &error), &error, built), 1) << error;
    int code = 0;
    GifFileType* gif = DGifOpenFileName(path.c_str(), &code);
    if (gif && DGifSlurp(gif) != GIF_OK) DGifCloseFile(gif, &code), gif = nullptr;
    return gif;
  };
  HostFile plainFile, keyedFile, superFile;
  GifFileType* plain = render("plain.gif", nullptr, &plainFile);
  GifFileType* keyed = render("keyed.gif", "--transparent", &keyedFile);
  GifFileType* super = render("super.gif", "--supercompress", &superFile);
  ASSERT_TRUE(plain && keyed && super);
  ASSERT_GT(plain->ImageCount, 1);
  ASSERT_EQ(keyed->ImageCount, plain->ImageCount);
  ASSERT_EQ(super->ImageCount, plain->ImageCount);
  const size_t pixels = static_cast<size_t>(plain->SWidth) * plain->SHeight;
  std::vector<GifColorType> shown(pixels);
  for (int i = 0; i < plain->ImageCount; ++i) {
    GraphicsControlBlock k, s;
    ASSERT_EQ(DGifSavedExtensionToGCB(keyed, i, &k), GIF_OK);
    ASSERT_EQ(DGifSavedExtensionToGCB(super, i, &s), GIF_OK);
    EXPECT_GE(k.TransparentColor, 0) << i;
    EXPECT_EQ(k.TransparentColor, keyedFile.frames[i].transparentIndex) << i;
    EXPECT_EQ(k.DisposalMode, DISPOSE_BACKGROUND) << i;
    EXPECT_EQ(s.TransparentColor >= 0, i > 0) << i;
    EXPECT_EQ(s.TransparentColor, superFile.frames[i].transparentIndex) << i;
    EXPECT_EQ(s.DisposalMode, DISPOSE_DO_NOT) << i;
    const SavedImage &f = super->SavedImages[i], &p = plain->SavedImages[i];
    ASSERT_EQ(static_cast<size_t>(f.ImageDesc.Width) * f.ImageDesc.Height, pixels);
    ASSERT_EQ(static_cast<size_t>(p.ImageDesc.Width) * p.ImageDesc.Height, pixels);
    const ColorMapObject* superColours =
        f.ImageDesc.ColorMap ? f.ImageDesc.ColorMap : super->SColorMap;
    const ColorMapObject* plainColours =
        p.ImageDesc.ColorMap ? p.ImageDesc.ColorMap : plain->SColorMap;
    size_t differ = 0;
    for (size_t j = 0; j < pixels; ++j) {
      if (f.RasterBits[j] != s.TransparentColor) shown[j] = superColours->Colors[f.RasterBits[j]];
      const GifColorType& want = plainColours->Colors[p.RasterBits[j]];
      differ +=
          shown[j].Red != want.Red || shown[j].Green != want.Green || shown[j].Blue != want.Blue;
    }
    EXPECT_EQ(differ, 0u) << "frame " << i;
  }
  int code = 0;
  for (GifFileType* gif : {plain, keyed, super}) DGifCloseFile(gif, &code);
}

TEST(Gm5Render, AlphaBuildToWebpKeepsItsFramesAndAlpha) {
  RenderScratch scratch;
  const std::string webp = scratch.Path("alpha.webp");
  std::string error;
  HostFile built;
  ASSERT_EQ(RenderAnimation(Line({"render", "--defaults", "--alpha", "-o", webp.c_str()}, &error),
                            &error, &built),
            1)
      << error;
  std::ifstream in(webp, std::ios::binary);
  std::vector<uint8_t> bytes((std::istreambuf_iterator<char>(in)),
                             std::istreambuf_iterator<char>());
  WebPData data = {bytes.data(), bytes.size()};
  WebPDemuxer* demux = WebPDemux(&data);
  ASSERT_NE(demux, nullptr);
  EXPECT_EQ(WebPDemuxGetI(demux, WEBP_FF_FRAME_COUNT), built.frames.size());
  EXPECT_TRUE(WebPDemuxGetI(demux, WEBP_FF_FORMAT_FLAGS) & ALPHA_FLAG);
  // The first frame has both see-through pixels around the text and opaque ones in it.
  WebPIterator frame;
  ASSERT_TRUE(WebPDemuxGetFrame(demux, 1, &frame));
  EXPECT_TRUE(frame.has_alpha);
  int width = 0, height = 0;
  uint8_t* rgba = WebPDecodeRGBA(frame.fragment.bytes, frame.fragment.size, &width, &height);
  ASSERT_NE(rgba, nullptr);
  int clear = 0, opaque = 0;
  for (int i = 0; i < width * height; ++i) {
    clear += rgba[i * 4 + 3] == 0;
    opaque += rgba[i * 4 + 3] == 255;
  }
  EXPECT_GT(clear, 0);
  EXPECT_GT(opaque, 0);
  WebPFree(rgba);
  WebPDemuxReleaseIterator(&frame);
  WebPDemuxDelete(demux);
}

TEST(Gm5Render, FailuresSayWhyAndLeaveNothing) {
  RenderScratch scratch;
  const std::string out = scratch.Path("out.gif"), damaged = scratch.Path("damaged.gm5");
  std::ofstream(damaged) << "not a document\n";
  const std::string missing = scratch.Path("missing.gm5"), nowhere = scratch.Path("no/out.gif");
  const std::string bmp = scratch.Path("out.bmp"), webp = scratch.Path("out.webp");
  const struct {
    std::vector<const char*> args;
    std::string message;
  } cases[] = {
      {{"render", "--effect", "Bogus", "-o", out.c_str()},
       "unknown effect: Bogus (see gm5 effects)"},
      {{"render", "--set", "Nope=1", "-o", out.c_str()}, "unknown setting: Nope"},
      {{"render", "--control", "15=2", "-o", out.c_str()}, "bad value for control 15: 2"},
      {{"render", missing.c_str(), "-o", out.c_str()},
       "cannot read " + missing + ": There has been an error opening the requested file."},
      {{"render", damaged.c_str(), "-o", out.c_str()},
       "cannot read " + damaged + ": This file has been damaged."},
      {{"render", "-o", bmp.c_str()},
       "unknown output type: " + bmp + " (use .gif, .webp, .png or a folder)"},
      {{"render", "--true-color", "-o", out.c_str()},
       "a GIF cannot hold a --true-color build: " + out + " (use .webp)"},
      {{"render"}, "render needs an output: -o OUT"},
      // The engine's own message, shown during the build, ends the run as the line's reason.
      {{"render", "--text", "", "-o", out.c_str()}, "the build failed: Memory error"},
      {{"preview", "-o", webp.c_str()},
       "unknown output type: " + webp + " (a sample is written as .png)"},
  };
  for (const auto& c : cases) {
    std::vector<const char*> args = c.args;
    args.push_back("--defaults");
    std::string error;
    CommandLine line = Line(args, &error);
    const int ok = line.command == CommandPreview ? RenderPreview(line, &error)
                                                  : RenderAnimation(line, &error);
    EXPECT_EQ(ok, 0) << c.message;
    EXPECT_EQ(error, c.message);
    EXPECT_EQ(scratch.Outputs(), std::vector<std::string>{"damaged.gm5"}) << c.message;
  }

  // A place that cannot be written fails after the build, and the program says so on one line.
  // (The sanitizer builds would add their list of suppressions used after it.)
  const std::string command = "LSAN_OPTIONS=print_suppressions=0 " + std::string(GM5_PROGRAM_PATH) +
                              " render --defaults --effect simple" + " -o " + nowhere + " 2>&1";
  FILE* pipe = popen(command.c_str(), "r");
  ASSERT_NE(pipe, nullptr);
  std::string said;
  char buffer[512];
  for (size_t n; (n = fread(buffer, 1, sizeof buffer, pipe)) > 0;) said.append(buffer, n);
  const int status = pclose(pipe);
  EXPECT_EQ(WIFEXITED(status) ? WEXITSTATUS(status) : -1, 1);
  EXPECT_EQ(said.rfind("gm5: ", 0), 0u) << said;
  EXPECT_NE(said.find(nowhere), std::string::npos) << said;
  EXPECT_EQ(said.find('\n'), said.size() - 1) << said;
  EXPECT_EQ(scratch.Outputs(), std::vector<std::string>{"damaged.gm5"});
}
