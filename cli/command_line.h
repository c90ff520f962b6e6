// gm5's command line: the command, its file arguments and the options, read into one flat record.
// Parsing checks the form of every option (known name, value present, numbers and KEY=VALUE
// pairs well formed) and leaves the meaning of keys, ids and names to the commands.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

enum Gm5Command : int32_t {
  CommandNone = 0,  // no command: --help or --version alone
  CommandEffects,
  CommandSettings,
  CommandSaveDocument,
  CommandRender,
  CommandPreview,
  CommandFonts,
  CommandControls,
  CommandHelp,
};

struct CommandLine {
  Gm5Command command = CommandNone;
  std::vector<std::string> arguments;  // the command's file or key arguments, in order
  std::string output;                  // -o / --output
  int help = 0, version = 0, quiet = 0, defaults = 0;
  int path = 0;  // settings --path: print where the configuration file is
  std::string effect;  // --effect, as typed
  std::string animation;  // --animation: the file of the animation picker, or empty
  int hasText = 0;
  std::string text;
  std::string font;
  int32_t size = 0;  // --size, 0 when not given
  // --frames, --delay (hundredths of a second), --pause (hundredths), --loop (0 for ever),
  // --frame (from 1, a single PNG): -1 when not given.
  int32_t frames = -1, delay = -1, pause = -1, loop = -1, frame = -1;
  std::string format;  // --format gif|webp|png
  int32_t bold = -1, italic = -1;  // -1 not given, else 0 or 1
  // --true-color, --custom-palette, --dither, --transparent, --supercompress, --alpha, and their
  // --no- forms: -1 not given, else 0 or 1.
  int32_t trueColour = -1, customPalette = -1, dither = -1, transparent = -1, supercompress = -1,
          alpha = -1;
  std::vector<std::pair<std::string, std::string>> settings;  // --set KEY=VALUE, in order
  std::vector<std::pair<int32_t, std::string>> controls;      // --control ID=VALUE, in order
};

// Reads argv[1..argc-1]. Returns 0 with a one-line `error` on an unknown command or option, a
// missing or malformed value.
int ParseCommandLine(int argc, const char* const* argv, CommandLine* line, std::string* error);

// Nonzero when any option that shapes a build or names an output was given.
int HasBuildOptions(const CommandLine& line);

// The row of the effect named `name` in the Effect box, in any case; -1 when there is none.
int32_t FindEffectRow(const std::string& name);

// The usage text printed by --help.
const char* Gm5Usage();
