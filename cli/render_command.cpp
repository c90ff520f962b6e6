// The rendering commands. The engine reports its own failures by showing a message; gm5 keeps
// those off stderr during a run and puts the last one into its single line instead.
#include "cli/render_command.h"

#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <strings.h>
#include <utility>
#include <vector>

#include "cli/dialog_state.h"
#include "cli/inprocess_host.h"
#include "cli/settings_command.h"
#include "controls/animation_picker.h"
#include "controls/value_controls.h"
#include "effects/frame_renderer.h"
#include "host/writers/animation_output.h"
#include "host/writers/output_file.h"
#include "host/writers/webp_writer.h"
#include "platform/posix/font_list_posix.h"
#include "shell/build_pipeline.h"
#include "shell/crt_random.h"
#include "shell/effect_table.h"
#include "shell/main_dialog_ids.h"
#include "shell/messages.h"
#include "shell/packed_dib.h"
#include "text/drawing_layer.h"
#include "text/text_layout.h"

namespace {

// The animation picker of the Omni page.
constexpr int32_t kIdAnimationPicker = 612;

// Owns, for the length of one command, the drawing layer's start-up, the run dialog and the
// message echo being off; the command starts the runtime generator afresh.
struct RunDialog {
  WindowHandle dialog = nullptr;
  DrawRequest drawing{};
  RunDialog() {
    crt::srand(crt::kStartSeed);  // as each use of the plug-in starts
    EchoShownMessages(0);
    drawing.operation = kDrawStartup;
    DispatchDraw(&drawing);
  }
  ~RunDialog() {
    if (dialog) DestroyRunDialog(dialog);
    drawing.operation = kDrawShutdown;  // the same request carries the start-up token
    DispatchDraw(&drawing);
    EchoShownMessages(1);
  }
};

// The shared start of both commands: the arguments' form, the output's type and place, the
// settings and the dialog with the document and the options applied. All that can be known to
// fail is refused here, before anything is rendered.
int PrepareRun(const CommandLine& line, const char* command, OutputKind wanted, RunDialog* run,
               std::string* error) {
  const std::string name = command;
  if (line.arguments.size() > 1)
    return *error = name + " takes at most one document: [DOCUMENT.gm5]", 0;
  std::string document = line.arguments.empty() ? std::string() : line.arguments[0];
  if (!document.empty() &&
      (document.size() < 4 || strcasecmp(document.c_str() + document.size() - 4, ".gm5") != 0))
    return *error = "not an effect document: " + document + " (expected .gm5)", 0;
  if (line.output.empty()) return *error = name + " needs an output: -o OUT", 0;
  // A sample on the standard output is a PNG unless a format says otherwise.
  const std::string format =
      line.output == "-" && wanted == OutputPng && line.format.empty() ? "png" : line.format;
  const OutputKind kind = OutputKindFor(line.output, format);
  if (kind == OutputUnknown || (wanted != OutputUnknown && kind != wanted))
    return *error = "unknown output type: " + line.output +
                    (wanted == OutputPng ? " (a sample is written as .png)"
                                         : " (use .gif, .webp, .png or a folder)"),
           0;
  if (line.frame != -1 && (wanted == OutputPng || kind != OutputPng))
    return *error = "--frame chooses the frame of a single PNG (-o OUT.png)", 0;
  if (line.loop != -1 && kind != OutputGif && kind != OutputWebp)
    return *error = "--loop applies to a GIF or WebP", 0;
  if (!CheckOutputPlace(line.output, kind, error)) return 0;
  if (!PrepareSettings(line, error)) return 0;
  run->dialog = CreateRunDialog(line, document, error);
  if (!run->dialog) return 0;
  char text[2];
  if (DialogGetText(DialogItem(run->dialog, kTextFieldId), text, sizeof text) == 0)
    return *error = "the text is empty", 0;
  return 1;
}

// A face that is not installed is drawn in another; says which, once, as the run starts.
void WarnOfSubstituteFont(WindowHandle dialog) {
  char font[kDocumentTextLimit + 1], drawn[256];
  DialogGetText(DialogItem(dialog, kIdFontName), font, sizeof font);
  if (DrawnFontFamily(font, drawn, sizeof drawn) && strcasecmp(font, drawn) != 0)
    fprintf(stderr, "gm5: the font \"%s\" is not installed; drawing in \"%s\" instead\n", font,
            drawn);
}

// The main dialog's controls the text's measure reads, beside those of main_dialog_ids.h.
constexpr int32_t kIdAntialias = 51, kIdPad = 59, kIdCharacterSpace = 61;

// The smallest canvas the effect's frames can have: the whole text measured in its font, with
// the padding but without what a page's softness, outline or shadow adds. Measuring is quick; the
// effect's drawing of the frames is the slow part of a build. Returns 0 when it cannot measure.
int MeasureTextCanvas(WindowHandle dialog, int32_t* width, int32_t* height) {
  FrameTexts texts;
  if (!ReadWholeText(DialogItem(dialog, kTextFieldId), &texts.text)) return 0;
  DialogGetText(DialogItem(dialog, kIdFontName), texts.faceName, sizeof texts.faceName);
  TextLayoutInput input{};
  input.text = texts.text.get();
  input.faceName = texts.faceName;
  input.fontSize = ReadDlgValue(dialog, kIdFontSize);
  input.bold = DialogGetCheck(DialogItem(dialog, kIdBold));
  input.italic = DialogGetCheck(DialogItem(dialog, kIdItalic));
  input.antialias = DialogGetCheck(DialogItem(dialog, kIdAntialias));
  input.spacePercent = ReadDlgValue(dialog, kIdCharacterSpace);
  input.padding = ReadDlgValue(dialog, kIdPad);
  TextLayout layout;
  if (!BeginTextLayout(dialog, &input, &layout)) return 0;
  *width = layout.canvasWidth;
  *height = layout.canvasHeight;
  EndTextLayout(&layout);
  return 1;
}

// Refuses, before any frame is drawn, a render whose text alone makes its frames larger than the
// output holds or than memory keeps. Every frame is held as the effect makes it, at 24 bits (32
// with an alpha plane), until the build reduces them.
// Ring bends the text around a circle, whose frames can be narrower than the text in a line; the
// host's check on the finished frames stands for it.
int RefuseBeforeDrawing(WindowHandle dialog, InProcessHost* host) {
  const int32_t row = DialogGetSelection(DialogItem(dialog, kIdEffect));
  if (strcmp(EffectTable[EffectRowForBuild(row)].name, "Ring") == 0) return 0;
  int32_t width = 0, height = 0;
  if (!MeasureTextCanvas(dialog, &width, &height)) return 0;
  const int32_t framesId = FramesControl(EffectRowForBuild(row));
  const int32_t frames = framesId ? ReadDlgValue(dialog, framesId) : 1;
  const int32_t bits = DialogGetCheck(DialogItem(dialog, kIdAlphaTransparency)) ? 32 : 24;
  return RefuseCanvas(host, width, height, bits, frames);
}

// Removes the output's reserved temporary when the command ends without using it.
struct ScopedOutputReservation {
  ~ScopedOutputReservation() { ReleaseOutputFile(); }
};

// Gives the animation picker the file of --animation, read by `host`: the picker asks the host
// that is current while it loads. A file that gives no animation is the picker's failure.
int LoadRunAnimation(WindowHandle dialog, const CommandLine& line, InProcessHost* host,
                     std::string* error) {
  WindowHandle picker = DialogItem(dialog, kIdAnimationPicker);
  if (line.animation.empty() || !picker) return 1;
  HostRecord* saved = CurrentHost;
  CurrentHost = &host->record;
  const std::string text = "ANMCTL" + std::to_string(kIdAnimationPicker) + "=" + line.animation;
  const int taken = AnimationPickerTakeLine(picker, text.c_str());
  CurrentHost = saved;
  const char* path = AnimationPickerPath(picker);
  if (!taken || !path || !path[0]) return *error = kAnimationOpenFailure, 0;
  return 1;
}

std::string EngineFailure(const char* what) {
  const std::string shown = LastShownMessage();
  return shown.empty() ? std::string(what) : std::string(what) + ": " + shown;
}

}  // namespace

int RenderAnimation(const CommandLine& line, std::string* error, HostFile* built) {
  RunDialog run;
  if (!PrepareRun(line, "render", OutputUnknown, &run, error)) return 0;
  // A GIF holds at most 256 colours and no alpha plane: its build is an indexed one. Boxes the
  // settings or a document turned on give way; the options asking for it are a contradiction.
  const OutputKind kind = OutputKindFor(line.output, line.format);
  if (kind == OutputGif) {
    if (line.trueColour == 1 || line.alpha == 1)
      return *error = std::string("a GIF cannot hold a ") +
                      (line.alpha == 1 ? "--alpha" : "--true-color") + " build: " + line.output +
                      " (use .webp)",
             0;
    DialogSetCheck(DialogItem(run.dialog, kIdTrueColour), 0);
    DialogSetCheck(DialogItem(run.dialog, kIdAlphaTransparency), 0);
  }
  // A fixed palette keeps no index free: a transparent key or the marks of unchanged pixels
  // would take the index of a real colour and punch holes in the letters.
  const int indexed = !DialogGetCheck(DialogItem(run.dialog, kIdTrueColour)) &&
                      !DialogGetCheck(DialogItem(run.dialog, kIdAlphaTransparency));
  if (indexed && !DialogGetCheck(DialogItem(run.dialog, kIdCustomPalette))) {
    for (const auto& [id, option] : {std::pair{kIdTransparent, "--transparent"},
                                     std::pair{kIdSupercompress, "--supercompress"}})
      if (DialogGetCheck(DialogItem(run.dialog, id)))
        return *error = std::string(option) +
                        " needs a palette with a free index: add --custom-palette"
                        " (or use --true-color with .webp)",
               0;
  }
  // True colour and alpha builds need a host that takes frames of 24 and 32 bits.
  const int32_t trueColour = DialogGetCheck(DialogItem(run.dialog, kIdTrueColour)) ||
                             DialogGetCheck(DialogItem(run.dialog, kIdAlphaTransparency));
  WarnOfSubstituteFont(run.dialog);
  InProcessHost host;
  host.largestSide = kind == OutputWebp ? kWebpLargestSide : 65535;
  if (RefuseBeforeDrawing(run.dialog, &host)) return *error = host.refusal, 0;
  ScopedOutputReservation reservation;
  if (kind != OutputPngFolder && !ReserveOutputFile(line.output, error)) return 0;
  ProgressBar bar;
  BeginProgress(&bar, stderr, line.quiet);
  BeginInProcessHost(&host, trueColour, &bar);
  if (!LoadRunAnimation(run.dialog, line, &host, error)) {
    EndInProcessHost(&host);
    EndProgress(&bar);
    return 0;
  }
  RecordShownMessage("");
  const int ok = BuildFrames(run.dialog, &host.record, 0);
  EndInProcessHost(&host);
  EndProgress(&bar);
  if (!host.refusal.empty()) return *error = host.refusal, 0;
  const HostFile* file = InProcessResult(&host);
  if (!ok || !file) return *error = EngineFailure("the build failed"), 0;
  if (built) *built = *file;
  if (file->frames.empty()) return *error = "the build made no frames", 0;
  OutputOptions options;
  options.format = line.format;
  options.loopCount = line.loop == -1 ? 0 : line.loop;
  options.frame = line.frame == -1 ? 0 : line.frame - 1;
  uint64_t bytes = 0;
  if (!WriteAnimationOutput(file, options, line.output, error, &bytes)) return 0;
  if (!line.quiet)
    fprintf(stderr, "gm5: wrote %s: %zu frame%s, %dx%d, %llu bytes\n",
            line.output == "-" ? "the standard output" : line.output.c_str(), file->frames.size(),
            file->frames.size() == 1 ? "" : "s", file->record.width, file->record.height,
            static_cast<unsigned long long>(bytes));
  return 1;
}

int RenderPreview(const CommandLine& line, std::string* error) {
  RunDialog run;
  if (!PrepareRun(line, "preview", OutputPng, &run, error)) return 0;
  BuildContext context{};
  context.dialog = run.dialog;
  context.sample = 1;
  // The main dialog's sample button: 300 by 170 dialog units at the dialog font's 6 by 13 base
  // units. No effect sizes its sample by it; the context carries it as the dialog's would.
  context.sampleWidth = 450;
  context.sampleHeight = 276;
  WarnOfSubstituteFont(run.dialog);
  InProcessHost host;
  BeginInProcessHost(&host, 1, nullptr);
  const int loaded = LoadRunAnimation(run.dialog, line, &host, error);
  EndInProcessHost(&host);
  if (!loaded) return 0;
  RecordShownMessage("");
  const int32_t row = DialogGetSelection(DialogItem(run.dialog, kIdEffect));
  if (!RunEffectPreview(row, &context)) return *error = EngineFailure("the preview failed"), 0;
  std::vector<uint8_t> rgba;
  int32_t width = 0, height = 0;
  if (const void* header = MovableLock(context.image)) {
    const BitmapInfoHeader* info = static_cast<const BitmapInfoHeader*>(header);
    width = info->biWidth;
    height = info->biHeight;
    const int32_t bits = info->biBitCount;
    if ((bits == 24 || bits == 32) && width > 0 && height > 0 && width <= 65535 &&
        height <= 65535) {
      rgba.resize(static_cast<size_t>(width) * height * 4);
      uint8_t* out = rgba.data();
      // Pixels read as 0x00BBGGRR; the sample has no alpha plane and is opaque.
      for (int32_t y = 0; y < height; ++y)
        for (int32_t x = 0; x < width; ++x, out += 4) {
          const uint32_t pixel = ReadDibPixel(header, x, y);
          out[0] = pixel & 0xFF;
          out[1] = (pixel >> 8) & 0xFF;
          out[2] = (pixel >> 16) & 0xFF;
          out[3] = 0xFF;
        }
    }
    MovableUnlock(context.image);
  }
  MovableFree(context.image);
  if (rgba.empty()) return *error = "the preview made no picture", 0;
  return WritePictureOutput(rgba.data(), width, height, line.output, error);
}
