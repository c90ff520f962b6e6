// The rendering commands. The engine reports its own failures by showing a message; gm5 keeps
// those off stderr during a run and puts the last one into its single line instead.
#include "cli/render_command.h"

#include <unistd.h>

#include <cstdio>
#include <strings.h>
#include <vector>

#include "cli/dialog_state.h"
#include "cli/inprocess_host.h"
#include "cli/settings_command.h"
#include "host/writers/animation_output.h"
#include "shell/build_pipeline.h"
#include "shell/crt_random.h"
#include "shell/effect_table.h"
#include "shell/main_dialog_ids.h"
#include "shell/messages.h"
#include "shell/packed_dib.h"
#include "text/drawing_layer.h"

namespace {

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

// The shared start of both commands: the arguments' form, the output's type, the settings and
// the dialog with the document and the options applied.
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
  const OutputKind kind = OutputKindForPath(line.output);
  if (kind == OutputUnknown || (wanted != OutputUnknown && kind != wanted))
    return *error = "unknown output type: " + line.output +
                    (wanted == OutputPng ? " (a sample is written as .png)"
                                         : " (use .gif, .webp, .png or a folder)"),
           0;
  if (!PrepareSettings(line, error)) return 0;
  run->dialog = CreateRunDialog(line, document, error);
  return run->dialog != nullptr;
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
  if (OutputKindForPath(line.output) == OutputGif) {
    if (line.trueColour == 1 || line.alpha == 1)
      return *error = std::string("a GIF cannot hold a ") +
                      (line.alpha == 1 ? "--alpha" : "--true-color") + " build: " + line.output +
                      " (use .webp)",
             0;
    DialogSetCheck(DialogItem(run.dialog, kIdTrueColour), 0);
    DialogSetCheck(DialogItem(run.dialog, kIdAlphaTransparency), 0);
  }
  // True colour and alpha builds need a host that takes frames of 24 and 32 bits.
  const int32_t trueColour = DialogGetCheck(DialogItem(run.dialog, kIdTrueColour)) ||
                             DialogGetCheck(DialogItem(run.dialog, kIdAlphaTransparency));
  ProgressBar bar;
  BeginProgress(&bar, stderr, line.quiet);
  InProcessHost host;
  BeginInProcessHost(&host, trueColour, &bar);
  RecordShownMessage("");
  const int ok = BuildFrames(run.dialog, &host.record, 0);
  EndInProcessHost(&host);
  EndProgress(&bar);
  const HostFile* file = InProcessResult(&host);
  if (!ok || !file) return *error = EngineFailure("the build failed"), 0;
  if (built) *built = *file;
  if (file->frames.empty()) return *error = "the build made no frames", 0;
  return WriteAnimationOutput(file, InProcessDelayMilliseconds(&host), line.output, error);
}

int RenderPreview(const CommandLine& line, std::string* error) {
  RunDialog run;
  if (!PrepareRun(line, "preview", OutputPng, &run, error)) return 0;
  BuildContext context{};
  context.dialog = run.dialog;
  context.sample = 1;
  context.sampleWidth = line.sampleWidth;
  context.sampleHeight = line.sampleHeight;
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
