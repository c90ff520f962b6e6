// gm5: the command-line renderer. Reads the command line, runs one command, and ends with status
// 0, or 1 and a one-line message on stderr naming the problem.
#include <csignal>
#include <cstdio>
#include <string>
#include <strings.h>

#include "cli/command_line.h"
#include "cli/dialog_state.h"
#include "cli/manual.h"
#include "cli/render_command.h"
#include "cli/settings_command.h"
#include "documents/settings.h"
#include "platform/posix/font_list_posix.h"
#include "host/writers/output_file.h"
#include "shell/effect_table.h"

namespace {

// A stopped run leaves nothing behind: the partial output is removed, then the signal goes on.
void OnStopSignal(int number) {
  RemovePartialOutputFromSignal();
  signal(number, SIG_DFL);
  raise(number);
}

int Fail(const std::string& message) {
  fprintf(stderr, "gm5: %s\n", message.c_str());
  return 1;
}

// Row, name, and "build" where the row has a build procedure ("-" where it cannot build yet). The
// names are padded to the longest, "Neural Network", so the last column lines up.
int ListEffects() {
  for (int32_t row = 0; row < kEffectCount; ++row)
    printf("%2d %-14s %s\n", row, EffectTable[row].name, EffectTable[row].build ? "build" : "-");
  return 0;
}

// Nonzero when options other than those choosing the settings were given.
int HasOptionsBeyondSettings(CommandLine line) {
  line.defaults = 0;
  line.settings.clear();
  return HasBuildOptions(line);
}

int ShowSettings(const CommandLine& line) {
  std::string error;
  if (line.path) {
    char path[kSettingTextSize];
    if (!line.arguments.empty() || HasBuildOptions(line))
      return Fail("settings --path takes nothing else");
    if (!SettingsFolderPath("rfdplgm5.ini", path, sizeof path))
      return Fail("no configuration folder (HOME is not set)");
    printf("%s\n", path);
    return 0;
  }
  if (line.arguments.size() > 1) return Fail("settings takes at most one key");
  if (HasOptionsBeyondSettings(line)) return Fail("settings takes only --defaults and --set");
  if (!PrepareSettings(line, &error) ||
      !PrintSettings(stdout, line.arguments.empty() ? std::string() : line.arguments[0], &error))
    return Fail(error);
  return 0;
}

void PrintFamily(const char* family, void*) {
  printf("%s\n", family);
}

int ListFonts(const CommandLine& line) {
  if (!line.arguments.empty() || HasBuildOptions(line)) return Fail("fonts takes no arguments");
  if (ListFontFamilies(PrintFamily, nullptr) == 0) return Fail("no fonts are installed");
  return 0;
}

int ListControls(const CommandLine& line) {
  std::string error;
  if (line.arguments.size() > 1) return Fail("controls takes at most one effect");
  if (!PrepareSettings(line, &error)) return Fail(error);
  return PrintControls(stdout, line, line.arguments.empty() ? std::string() : line.arguments[0],
                       &error)
             ? 0
             : Fail(error);
}

int WriteDocument(const CommandLine& line) {
  std::string error;
  if (line.arguments.empty() || line.arguments.size() > 2)
    return Fail("save-document takes the file to write and the document to start from, if any: "
                "OUT.gm5 [DOC.gm5]");
  if (!line.output.empty()) return Fail("save-document writes the file it is given, not -o");
  const std::string& path = line.arguments[0];
  if (path.size() < 4 || strcasecmp(path.c_str() + path.size() - 4, ".gm5") != 0)
    return Fail("unknown output type: " + path + " (a document is written as .gm5)");
  if (!PrepareSettings(line, &error)) return Fail(error);
  const std::string from = line.arguments.size() == 2 ? line.arguments[1] : std::string();
  WindowHandle dialog = CreateRunDialog(line, from, &error);
  if (!dialog) return Fail(error);
  int ok = SaveRunDocument(dialog, path, &error);
  DestroyRunDialog(dialog);
  return ok ? 0 : Fail(error);
}

// The manual's section on one effect, as text; without an effect, the names help knows.
int PrintHelp(const CommandLine& line) {
  if (line.arguments.size() > 1) return Fail("help takes at most one effect");
  if (HasBuildOptions(line)) return Fail("help takes no options");
  std::vector<ManualSection> sections;
  std::string error;
  ResetSettings();
  if (!ReadManual(kManualSources, kManualSourceCount, &sections, &error)) return Fail(error);
  if (line.arguments.empty()) {
    printf("gm5 help EFFECT prints the manual's section on one effect. The effects:\n");
    for (const ManualSection& s : sections)
      if (s.effectRow >= 0) printf("  %s\n", EffectTable[s.effectRow].name);
    return 0;
  }
  const ManualSection* section = FindEffectSection(sections, line.arguments[0]);
  if (!section) return Fail("unknown effect: " + line.arguments[0] + " (see gm5 effects)");
  fputs(FormatManualText(*section, 78).c_str(), stdout);
  return 0;
}

}  // namespace

// fontconfig keeps part of its parsed configuration for the life of the process; the leak checker
// of the sanitizer builds is told so, so that a rendering run ends without a false report.
extern "C" const char* __lsan_default_suppressions() {
  return "leak:libfontconfig.so\n";
}
// ... and keeps quiet about having used it, so that a failing run still ends in its one line.
extern "C" const char* __lsan_default_options() {
  return "print_suppressions=0";
}

int main(int argc, char** argv) {
  for (int stop : {SIGINT, SIGTERM, SIGHUP, SIGPIPE, SIGALRM}) signal(stop, OnStopSignal);
  CommandLine line;
  std::string error;
  if (!ParseCommandLine(argc, argv, &line, &error)) return Fail(error);
  if (line.help) {
    fputs(Gm5Usage(), stdout);
    return 0;
  }
  if (line.version) {
    printf("gm5 %s\n", GM5_VERSION);
    return 0;
  }
  int status = 1;
  switch (line.command) {
    case CommandNone:
      return Fail("no command given (see gm5 --help)");
    case CommandEffects:
      if (!line.arguments.empty()) return Fail("effects takes no arguments");
      if (HasBuildOptions(line)) return Fail("effects takes no options");
      status = ListEffects();
      break;
    case CommandSettings:
      status = ShowSettings(line);
      break;
    case CommandSaveDocument:
      status = WriteDocument(line);
      break;
    case CommandRender:
      status = RenderAnimation(line, &error) ? 0 : Fail(error);
      break;
    case CommandFonts:
      status = ListFonts(line);
      break;
    case CommandControls:
      status = ListControls(line);
      break;
    case CommandPreview:
      status = RenderPreview(line, &error) ? 0 : Fail(error);
      break;
    case CommandHelp:
      status = PrintHelp(line);
      break;
  }
  if (fflush(stdout) != 0) return Fail("cannot write the standard output");
  return status;
}
