// Parsing of gm5's arguments: a table of commands and of options with their value kinds.
#include "cli/command_line.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <strings.h>

#include "shell/effect_table.h"

namespace {

struct CommandName {
  const char* name;
  Gm5Command command;
};

const CommandName kCommands[] = {
    {"effects", CommandEffects},
    {"settings", CommandSettings},
    {"save-document", CommandSaveDocument},
    {"render", CommandRender},
    {"preview", CommandPreview},
    {"fonts", CommandFonts},
    {"controls", CommandControls},
    {"help", CommandHelp},
};

// Options taking a whole number of at least `least`.
struct NumberOption {
  const char* name;
  int32_t CommandLine::*field;
  int32_t least;
};

const NumberOption kNumberOptions[] = {
    {"--frames", &CommandLine::frames, 1}, {"--delay", &CommandLine::delay, 0},
    {"--pause", &CommandLine::pause, 0},   {"--loop", &CommandLine::loop, 0},
    {"--frame", &CommandLine::frame, 1},
};

// Switches that set one field to 1, with a --no- form that sets it to 0.
struct Switch {
  const char* name;
  int32_t CommandLine::*field;
};

const Switch kSwitches[] = {
    {"bold", &CommandLine::bold},
    {"italic", &CommandLine::italic},
    {"true-color", &CommandLine::trueColour},
    {"custom-palette", &CommandLine::customPalette},
    {"dither", &CommandLine::dither},
    {"transparent", &CommandLine::transparent},
    {"supercompress", &CommandLine::supercompress},
    {"alpha", &CommandLine::alpha},
};

// A whole decimal number within int32_t.
int ParseInteger(const std::string& text, int32_t* value) {
  if (text.empty()) return 0;
  errno = 0;
  char* end = nullptr;
  long long n = strtoll(text.c_str(), &end, 10);
  if (errno || *end || n < INT32_MIN || n > INT32_MAX) return 0;
  *value = static_cast<int32_t>(n);
  return 1;
}

int SplitPair(const std::string& text, std::string* key, std::string* value) {
  size_t at = text.find('=');
  if (at == std::string::npos || at == 0) return 0;
  *key = text.substr(0, at);
  *value = text.substr(at + 1);
  return 1;
}

}  // namespace

int ParseCommandLine(int argc, const char* const* argv, CommandLine* line, std::string* error) {
  int optionsEnded = 0;
  for (int i = 1; i < argc; ++i) {
    std::string arg = argv[i];
    if (optionsEnded || arg.size() < 2 || arg[0] != '-') {
      if (line->command == CommandNone && !optionsEnded) {
        for (const CommandName& c : kCommands)
          if (arg == c.name) line->command = c.command;
        if (line->command == CommandNone) {
          *error = "unknown command: " + arg + " (see gm5 --help)";
          return 0;
        }
      } else {
        line->arguments.push_back(arg);
      }
      continue;
    }
    if (arg == "--") {
      optionsEnded = 1;
      continue;
    }
    // The value of an option is the next argument, or follows an = in the same one.
    std::string name = arg, inlineValue;
    int hasInline = 0;
    size_t equals = arg.find('=');
    if (arg.compare(0, 2, "--") == 0 && equals != std::string::npos) {
      name = arg.substr(0, equals);
      inlineValue = arg.substr(equals + 1);
      hasInline = 1;
    }
    auto takeValue = [&](std::string* value) {
      if (hasInline) {
        *value = inlineValue;
        return 1;
      }
      if (i + 1 >= argc) {
        *error = "missing value after " + name;
        return 0;
      }
      *value = argv[++i];
      return 1;
    };

    // Options without a value take none, not even after an =.
    const int flag = name == "-h" || name == "--help" || name == "--version" || name == "-q" ||
                     name == "--quiet" || name == "--defaults" || name == "--path";
    if (flag && hasInline) {
      *error = "option takes no value: " + name;
      return 0;
    }
    const NumberOption* numeric = nullptr;
    for (const NumberOption& o : kNumberOptions)
      if (name == o.name) numeric = &o;
    if (numeric) {
      std::string value;
      if (!takeValue(&value)) return 0;
      if (!ParseInteger(value, &(line->*numeric->field)) ||
          line->*numeric->field < numeric->least) {
        *error = "bad value for " + name + ": " + value + " (a whole number from " +
                 std::to_string(numeric->least) + ")";
        return 0;
      }
    } else if (name == "--format") {
      if (!takeValue(&line->format)) return 0;
      if (line->format != "gif" && line->format != "webp" && line->format != "png") {
        *error = "bad value for --format: " + line->format + " (gif, webp or png)";
        return 0;
      }
    } else if (name == "-h" || name == "--help") {
      line->help = 1;
    } else if (name == "--version") {
      line->version = 1;
    } else if (name == "-q" || name == "--quiet") {
      line->quiet = 1;
    } else if (name == "--defaults") {
      line->defaults = 1;
    } else if (name == "--path") {
      line->path = 1;
    } else if (name == "-o" || name == "--output") {
      if (!takeValue(&line->output)) return 0;
    } else if (name == "--effect") {
      if (!takeValue(&line->effect)) return 0;
    } else if (name == "--animation") {
      if (!takeValue(&line->animation)) return 0;
    } else if (name == "--text") {
      if (!takeValue(&line->text)) return 0;
      line->hasText = 1;
    } else if (name == "--font") {
      if (!takeValue(&line->font)) return 0;
    } else if (name == "--size") {
      std::string value;
      if (!takeValue(&value)) return 0;
      if (!ParseInteger(value, &line->size) || line->size <= 0) {
        *error = "bad value for --size: " + value;
        return 0;
      }
    } else if (name == "--set") {
      std::string value, key, setting;
      if (!takeValue(&value)) return 0;
      if (!SplitPair(value, &key, &setting)) {
        *error = "bad value for --set: " + value + " (expected KEY=VALUE)";
        return 0;
      }
      line->settings.emplace_back(key, setting);
    } else if (name == "--control") {
      std::string value, id, setting;
      int32_t number = 0;
      if (!takeValue(&value)) return 0;
      if (!SplitPair(value, &id, &setting) || !ParseInteger(id, &number) || number <= 0) {
        *error = "bad value for --control: " + value + " (expected ID=VALUE)";
        return 0;
      }
      line->controls.emplace_back(number, setting);
    } else {
      int matched = 0;
      for (const Switch& s : kSwitches) {
        if (name == std::string("--") + s.name) {
          line->*s.field = 1;
          matched = 1;
        } else if (name == std::string("--no-") + s.name) {
          line->*s.field = 0;
          matched = 1;
        }
      }
      if (!matched || hasInline) {
        *error = (matched ? "option takes no value: " : "unknown option: ") + name;
        return 0;
      }
    }
  }
  return 1;
}

int HasBuildOptions(const CommandLine& line) {
  int any = !line.output.empty() || line.defaults || !line.effect.empty() || line.hasText ||
            !line.font.empty() || line.size || !line.settings.empty() || !line.controls.empty() ||
            !line.format.empty();
  for (const NumberOption& o : kNumberOptions) any |= line.*o.field != -1;
  for (const Switch& s : kSwitches) any |= line.*s.field != -1;
  return any;
}

int32_t FindEffectRow(const std::string& name) {
  for (int32_t row = 0; row < kEffectCount; ++row)
    if (strcasecmp(EffectTable[row].name, name.c_str()) == 0) return row;
  return -1;
}

const char* Gm5Usage() {
  return "usage: gm5 COMMAND [ARGUMENTS] [OPTIONS]\n"
         "\n"
         "Renders text animations with the Glyph Motion 5 engine.\n"
         "\n"
         "commands:\n"
         "  render [DOC.gm5] -o OUT      build the animation: OUT.gif, OUT.webp, OUT.png (one\n"
         "                               frame), a folder of numbered PNG frames (OUT/), or -\n"
         "                               for the standard output (GIF unless --format says)\n"
         "  preview [DOC.gm5] -o OUT.png the selected effect's sample picture\n"
         "  effects                      list the effects, one per line: row, name, and build\n"
         "                               where the effect can build (- where not yet)\n"
         "  controls [EFFECT]            the controls of the main dialog, or of EFFECT's page:\n"
         "                               id, kind, range, current value and label\n"
         "  fonts                        the font names the system has\n"
         "  help [EFFECT]                the manual's section on EFFECT, as text (the\n"
         "                               effects' names without one)\n"
         "  settings [KEY]               each setting's value and default (or only KEY's);\n"
         "                               with --path, where the configuration file is\n"
         "  save-document OUT.gm5 [DOC.gm5]\n"
         "                               write the state the options give (over DOC's) as an\n"
         "                               effect document\n"
         "\n"
         "options:\n"
         "      --defaults               start from the built-in defaults, not the configuration\n"
         "      --set KEY=VALUE          set a setting by its configuration key\n"
         "      --control ID=VALUE       set a control by its id, as a document line would\n"
         "      --effect NAME            the effect, by its name in the Effect box (any case)\n"
         "      --animation FILE         Omni's animation: an animated GIF or WebP, or a PNG\n"
         "      --text TEXT, --font NAME, --size N\n"
         "      --frames N               the number of frames of the effect, where it has one\n"
         "      --delay N                each frame's delay, in hundredths of a second\n"
         "      --pause N                the pause after the last frame, in hundredths\n"
         "      --loop N                 repeats of a GIF or WebP (0: for ever, the default)\n"
         "      --frame N                the frame (from 1) a single PNG shows (1)\n"
         "      --format gif|webp|png    the output's format, whatever its extension\n"
         "      --bold, --italic, --true-color, --custom-palette, --dither, --transparent,\n"
         "      --supercompress, --alpha (and each with --no- to turn it off)\n"
         "  -h, --help                   this text\n"
         "  -o, --output OUT             where render and preview write\n"
         "  -q, --quiet                  no progress bar and no closing line\n"
         "      --version                the program's version\n"
         "\n"
         "\n"
         "Colours: #RRGGBB, #RGB, a CSS colour name, or the engine's decimal 0xBBGGRR value.\n"
         "Exit status: 0 on success, 1 on any failure, with a one-line message on stderr.\n";
}
