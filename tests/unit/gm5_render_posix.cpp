// gm5 render and preview run in process with the settings folder in a scratch folder: GIFs of the
// default animation and of keyed builds decoded with giflib frame by frame against the file the
// engine handed over, the WebP alpha build with the demuxer, the sample picture, and the failures,
// each with its one-line message and nothing left behind.
#include <gif_lib.h>
#include <png.h>
#include <webp/demux.h>

#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "cli/render_command.h"
#include "tests/support/gif_pictures.h"
#include "tests/support/scratch_folder.h"

namespace {

CommandLine Line(std::vector<const char*> args, std::string* error) {
  args.insert(args.begin(), "gm5");
  CommandLine line;
  EXPECT_EQ(ParseCommandLine(static_cast<int>(args.size()), args.data(), &line, error), 1)
      << *error;
  line.quiet = 1;
  return line;
}

struct RenderedGif {
  HostFile built;
  GifFileType* gif = nullptr;
  ~RenderedGif() {
    int code;
    if (gif) DGifCloseFile(gif, &code);
  }
};

// Renders the built-in defaults with `options` to a GIF and decodes it.
void RenderGif(const ScratchFolder& scratch, const char* name, std::vector<const char*> options,
               RenderedGif* out) {
  const std::string path = scratch.Path(name);
  std::string error;
  options.insert(options.begin(), {"render", "--defaults", "-o", path.c_str()});
  ASSERT_EQ(RenderAnimation(Line(options, &error), &error, &out->built), 1) << error;
  int code = 0;
  out->gif = DGifOpenFileName(path.c_str(), &code);
  ASSERT_NE(out->gif, nullptr) << GifErrorString(code);
  ASSERT_EQ(DGifSlurp(out->gif), GIF_OK) << GifErrorString(out->gif->Error);
}

}  // namespace

// Builds of a custom palette: a Transparent build marks its key in every frame and clears each
// frame after it is shown, and is written as its records say; a supercompressed one and a plain
// one show every picture whole, so the writer keeps only what changes, and both show the same
// pictures frame by frame. The sample is drawn the size of a frame.
TEST(Gm5Render, GifsMatchTheirBuildsFrameByFrame) {
  ScratchFolder scratch(1);
  RenderedGif keyed, super, plain;
  RenderGif(scratch, "keyed.gif", {"--custom-palette", "--transparent"}, &keyed);
  RenderGif(scratch, "super.gif", {"--custom-palette", "--supercompress"}, &super);
  RenderGif(scratch, "plain.gif", {"--custom-palette"}, &plain);
  for (RenderedGif* r : {&keyed, &super, &plain}) {
    GifFileType* gif = r->gif;
    const FileObjectRecord& record = r->built.record;
    ASSERT_TRUE(gif && gif->SColorMap);
    EXPECT_EQ(gif->SWidth * 65536 + gif->SHeight, record.width * 65536 + record.height);
    EXPECT_LE(gif->SColorMap->ColorCount, 1 << record.bits);
    ASSERT_GT(r->built.frames.size(), 1u);
    ASSERT_EQ(static_cast<size_t>(gif->ImageCount), r->built.frames.size());
    for (int i = 0; i < gif->ImageCount; ++i) {
      GraphicsControlBlock control;
      ASSERT_EQ(DGifSavedExtensionToGCB(gif, i, &control), GIF_OK) << i;
      const HostFrame& frame = r->built.frames[i];
      EXPECT_EQ(control.DelayTime, frame.delay) << i;
      if (r == &keyed) {
        EXPECT_EQ(control.TransparentColor, frame.transparentIndex) << i;
        EXPECT_EQ(control.DisposalMode, DISPOSE_BACKGROUND) << i;
      }
    }
  }
  // The supercompressed frames carry only what changed, yet show the plain build's pictures.
  const auto shownSuper = ShownGifPictures(super.gif), shownPlain = ShownGifPictures(plain.gif);
  ASSERT_EQ(shownSuper.size(), shownPlain.size());
  for (size_t i = 0; i < shownPlain.size(); ++i) {
    EXPECT_EQ(std::count(shownPlain[i].begin(), shownPlain[i].end(), 0u), 0) << i;
    EXPECT_TRUE(shownSuper[i] == shownPlain[i]) << "frame " << i;
  }

  std::string error;
  const std::string sample = scratch.Path("sample.png");
  ASSERT_EQ(RenderPreview(Line({"preview", "--defaults", "-o", sample.c_str()}, &error), &error), 1)
      << error;
  png_image picture{};
  picture.version = PNG_IMAGE_VERSION;
  ASSERT_NE(png_image_begin_read_from_file(&picture, sample.c_str()), 0);
  EXPECT_EQ(picture.width * 65536 + picture.height,
            static_cast<uint32_t>(plain.built.record.width * 65536 + plain.built.record.height));
  png_image_free(&picture);
}

// --alpha builds frames with an alpha plane, which the WebP file keeps.
TEST(Gm5Render, AlphaBuildToWebpKeepsItsFramesAndAlpha) {
  ScratchFolder scratch(1);
  const std::string webp = scratch.Path("alpha.webp");
  std::string error;
  HostFile built;
  CommandLine line = Line({"render", "--defaults", "--alpha", "-o", webp.c_str()}, &error);
  ASSERT_EQ(RenderAnimation(line, &error, &built), 1) << error;
  const std::vector<uint8_t> bytes = FileBytes(webp);
  WebPData data = {bytes.data(), bytes.size()};
  WebPDemuxer* demux = WebPDemux(&data);
  ASSERT_NE(demux, nullptr);
  EXPECT_EQ(WebPDemuxGetI(demux, WEBP_FF_FRAME_COUNT), built.frames.size());
  EXPECT_TRUE(WebPDemuxGetI(demux, WEBP_FF_FORMAT_FLAGS) & ALPHA_FLAG);
  WebPDemuxDelete(demux);
}

// Unknown effects, settings and control values are refused as save-document refuses them.
TEST(Gm5Render, FailuresSayWhyAndLeaveNothing) {
  ScratchFolder scratch(1);
  const std::string out = scratch.Path("out.gif"), damaged = scratch.Path("damaged.gm5");
  std::ofstream(damaged) << "not a document\n";
  const std::string missing = scratch.Path("missing.gm5"), nowhere = scratch.Path("no/out.gif");
  const std::string bmp = scratch.Path("out.bmp"), webp = scratch.Path("out.webp");
  const struct {
    std::vector<const char*> args;
    std::string message;
  } cases[] = {
      {{"render", missing.c_str(), "-o", out.c_str()},
       "cannot read " + missing + ": No such file or directory"},
      {{"render", damaged.c_str(), "-o", out.c_str()},
       "cannot read " + damaged + ": This file has been damaged."},
      {{"render", "-o", bmp.c_str()},
       "unknown output type: " + bmp + " (use .gif, .webp, .png or a folder)"},
      {{"render", "--true-color", "-o", out.c_str()},
       "a GIF cannot hold a --true-color build: " + out + " (use .webp)"},
      {{"render"}, "render needs an output: -o OUT"},
      {{"render", "-o", nowhere.c_str()},
       "cannot write " + nowhere + ": no folder " + scratch.Path("no")},
      {{"render", "--text", "", "-o", out.c_str()}, "the text is empty"},
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
    EXPECT_EQ(scratch.Names(), std::vector<std::string>{"damaged.gm5"}) << c.message;
  }
}

// The same settings play for the same time in a GIF (an indexed build) and a WebP (a true-colour
// one): each frame's delay is hundredths of a second in both.
TEST(Gm5Render, GifAndWebpOfOneStatePlayAlike) {
  ScratchFolder scratch(1);
  RenderedGif gif;
  RenderGif(scratch, "a.gif", {"--text", "Hi", "--delay", "7", "--pause", "40"}, &gif);
  int32_t hundredths = 0;
  for (int i = 0; i < gif.gif->ImageCount; ++i) {
    GraphicsControlBlock control;
    ASSERT_EQ(DGifSavedExtensionToGCB(gif.gif, i, &control), GIF_OK);
    hundredths += control.DelayTime;
  }
  EXPECT_GE(hundredths, 7 * gif.gif->ImageCount + 40);  // every frame, and the pause
  const std::string webp = scratch.Path("a.webp");
  std::string error;
  ASSERT_EQ(RenderAnimation(Line({"render", "--defaults", "--text", "Hi", "--delay", "7", "--pause",
                                  "40", "-o", webp.c_str()},
                                 &error),
                            &error),
            1)
      << error;
  const std::vector<uint8_t> bytes = FileBytes(webp);
  WebPData data = {bytes.data(), bytes.size()};
  WebPAnimDecoder* decoder = WebPAnimDecoderNew(&data, nullptr);
  ASSERT_NE(decoder, nullptr);
  // The encoder may merge frames that show the same picture; the end time is what counts.
  int timestamp = 0;
  for (uint8_t* pixels = nullptr; WebPAnimDecoderGetNext(decoder, &pixels, &timestamp);) {
  }
  WebPAnimDecoderDelete(decoder);
  EXPECT_EQ(timestamp, hundredths * 10);
}

// Omni over a GIF that gm5 made of Simple: one frame per source frame with the source's delays;
// a file that gives no animation is the picker's failure, with nothing written.
TEST(Gm5Render, OmniTakesItsFramesAndDelaysFromTheAnimationFile) {
  ScratchFolder scratch(1);
  RenderedGif source, omni;
  RenderGif(scratch, "simple.gif", {"--effect", "simple", "--size", "12"}, &source);
  const std::string from = scratch.Path("simple.gif");
  RenderGif(scratch, "omni.gif", {"--effect", "omni", "--animation", from.c_str()}, &omni);
  ASSERT_GT(source.gif->ImageCount, 1);
  ASSERT_EQ(omni.gif->ImageCount, source.gif->ImageCount);
  for (int i = 0; i < source.gif->ImageCount; ++i) {
    GraphicsControlBlock a{}, b{};
    DGifSavedExtensionToGCB(source.gif, i, &a);
    DGifSavedExtensionToGCB(omni.gif, i, &b);
    EXPECT_EQ(b.DelayTime, a.DelayTime) << i;
  }
  const std::string text = scratch.Path("text.gif"), out = scratch.Path("never.gif");
  std::ofstream(text) << "GIF89a but not a picture\n";
  std::string error;
  const CommandLine line =
      Line({"render", "--defaults", "--effect", "omni", "--animation", text.c_str(), "-o",
            out.c_str()},
           &error);
  EXPECT_EQ(RenderAnimation(line, &error), 0);
  EXPECT_EQ(error, "The animation you have selected could not be opened.");
  std::vector<std::string> names = scratch.Names();
  std::sort(names.begin(), names.end());
  EXPECT_EQ(names, (std::vector<std::string>{"omni.gif", "simple.gif", "text.gif"}));
}
