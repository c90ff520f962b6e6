// gm5's command line: option forms and their errors, effect names, the progress line, and the
// program itself run as a user would (output, exit status and one-line messages).
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include <gtest/gtest.h>

#include "cli/command_line.h"
#include "cli/inprocess_host.h"
#include "cli/progress.h"

namespace {

int Parse(std::vector<const char*> args, CommandLine* line, std::string* error) {
  args.insert(args.begin(), "gm5");
  return ParseCommandLine(static_cast<int>(args.size()), args.data(), line, error);
}

struct ProgramRun {
  int status = -1;
  std::string out;
};

// Runs gm5 with `arguments` (shell words), stderr joined to stdout.
ProgramRun RunGm5(const std::string& arguments) {
  ProgramRun run;
  std::string command = std::string(GM5_PROGRAM_PATH) + " " + arguments + " 2>&1";
  FILE* pipe = popen(command.c_str(), "r");
  if (!pipe) return run;
  char buffer[4096];
  size_t n;
  while ((n = fread(buffer, 1, sizeof buffer, pipe)) > 0) run.out.append(buffer, n);
  int status = pclose(pipe);
  run.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  return run;
}

}  // namespace

TEST(CommandLine, ReadsOptionsInBothForms) {
  CommandLine line;
  std::string error;
  ASSERT_EQ(Parse({"effects", "--text", "Hi there", "--size=40", "--set", "MainDelay=7",
                   "--control=112=3", "--no-bold", "--italic", "--true-color", "-o", "out.gif",
                   "-q", "--sample-size=320x200", "--", "--odd-name"},
                  &line, &error),
            1)
      << error;
  EXPECT_EQ(line.command, CommandEffects);
  EXPECT_TRUE(line.hasText);
  EXPECT_EQ(line.text, "Hi there");
  EXPECT_EQ(line.size, 40);
  ASSERT_EQ(line.settings.size(), 1u);
  EXPECT_EQ(line.settings[0].first, "MainDelay");
  EXPECT_EQ(line.settings[0].second, "7");
  ASSERT_EQ(line.controls.size(), 1u);
  EXPECT_EQ(line.controls[0].first, 112);
  EXPECT_EQ(line.controls[0].second, "3");
  EXPECT_EQ(line.bold, 0);
  EXPECT_EQ(line.italic, 1);
  EXPECT_EQ(line.trueColour, 1);
  EXPECT_EQ(line.dither, -1);
  EXPECT_EQ(line.output, "out.gif");
  EXPECT_EQ(line.quiet, 1);
  EXPECT_EQ(line.sampleWidth * 1000 + line.sampleHeight, 320200);
  EXPECT_EQ(line.arguments, std::vector<std::string>{"--odd-name"});
}

TEST(CommandLine, RejectsMalformedOptionsWithOneLine) {
  const struct {
    std::vector<const char*> args;
    const char* message;
  } cases[] = {
      {{"draw"}, "unknown command: draw (see gm5 --help)"},
      {{"effects", "--colour"}, "unknown option: --colour"},
      {{"effects", "--text"}, "missing value after --text"},
      {{"effects", "--size", "12px"}, "bad value for --size: 12px"},
      {{"effects", "--size=0"}, "bad value for --size: 0"},
      {{"effects", "--set", "=3"}, "bad value for --set: =3 (expected KEY=VALUE)"},
      {{"effects", "--control", "x=1"}, "bad value for --control: x=1 (expected ID=VALUE)"},
      {{"effects", "--dither=1"}, "option takes no value: --dither"},
      {{"preview", "--sample-size", "300x"},
       "bad value for --sample-size: 300x (expected WIDTHxHEIGHT)"},
      {{"preview", "--sample-size=0x10"},
       "bad value for --sample-size: 0x10 (expected WIDTHxHEIGHT)"},
  };
  for (const auto& c : cases) {
    CommandLine line;
    std::string error;
    EXPECT_EQ(Parse(c.args, &line, &error), 0) << c.message;
    EXPECT_EQ(error, c.message);
  }
}

TEST(CommandLine, FindsEffectsByNameInAnyCase) {
  EXPECT_EQ(FindEffectRow("Simple"), 12);
  EXPECT_EQ(FindEffectRow("unplugged tv"), 17);
  EXPECT_EQ(FindEffectRow("ARROWS"), 0);
  EXPECT_EQ(FindEffectRow("Unplugged"), -1);
  EXPECT_EQ(FindEffectRow(""), -1);
}

TEST(Progress, DrawsCaptionAndBarOnlyWhenEnabled) {
  FILE* out = tmpfile();
  ASSERT_NE(out, nullptr);
  ProgressBar bar;
  BeginProgress(&bar, out, 0);
  EXPECT_EQ(bar.enabled, 0);  // a file is not a terminal
  ProgressCaption(&bar, "Building");
  EXPECT_EQ(ftell(out), 0);
  bar.enabled = 1;
  ProgressCaption(&bar, "Quantizing");
  ProgressStep(&bar, 5, 10);
  EndProgress(&bar);
  rewind(out);
  char text[512] = {};
  fread(text, 1, sizeof text - 1, out);
  fclose(out);
  EXPECT_STREQ(text,
               "\rQuantizing      \x1b[K"
               "\rQuantizing       [###############...............] 5/10\x1b[K\n");
}

TEST(Gm5Program, AnswersHelpVersionEffectsAndErrors) {
  ProgramRun effects = RunGm5("effects");
  EXPECT_EQ(effects.status, 0);
  EXPECT_EQ(effects.out.rfind(" 0 Arrows\n 1 Candy\n", 0), 0u);
  EXPECT_NE(effects.out.find("\n12 Simple\n"), std::string::npos);
  EXPECT_EQ(std::count(effects.out.begin(), effects.out.end(), '\n'), 21);

  ProgramRun version = RunGm5("--version");
  EXPECT_EQ(version.status, 0);
  EXPECT_EQ(version.out, "gm5 " GM5_VERSION "\n");
  ProgramRun help = RunGm5("--help");
  EXPECT_EQ(help.status, 0);
  EXPECT_EQ(help.out.rfind("usage: gm5 ", 0), 0u);

  const struct {
    const char* arguments;
    const char* message;
  } failures[] = {
      {"", "gm5: no command given (see gm5 --help)\n"},
      {"paint", "gm5: unknown command: paint (see gm5 --help)\n"},
      {"effects --bogus", "gm5: unknown option: --bogus\n"},
      {"effects extra", "gm5: effects takes no arguments\n"},
      {"effects --no-dither", "gm5: effects takes no options\n"},
      {"effects -o x.gif", "gm5: effects takes no options\n"},
  };
  for (const auto& f : failures) {
    ProgramRun run = RunGm5(f.arguments);
    EXPECT_EQ(run.status, 1) << f.arguments;
    EXPECT_EQ(run.out, f.message);
  }
}

TEST(InProcessHost, ServesTheEngineAndShowsItsProgress) {
  FILE* out = tmpfile();
  ASSERT_NE(out, nullptr);
  ProgressBar bar;
  BeginProgress(&bar, out, 0);
  bar.enabled = 1;
  InProcessHost host;
  BeginInProcessHost(&host, 0, &bar);
  EXPECT_EQ(host.record.capabilities, kHostIndexed);
  EXPECT_EQ(InProcessDelayMilliseconds(&host), 10);
  HostService service = host.record.service;

  FileObjectRecord record{};
  record.size = sizeof record;
  record.version = kInterfaceVersion;
  record.bits = 8;
  record.width = record.height = 2;
  FileObjectRecord test = record;
  EXPECT_EQ(service(nullptr, HostOpProgressCaption, 0, reinterpret_cast<uint64_t>("Remapping")),
            1u);
  service(nullptr, HostOpProgress, 1, 2);
  ASSERT_EQ(service(nullptr, HostOpCreateFile, 0, reinterpret_cast<uint64_t>(&record)), 1u);
  EXPECT_EQ(service(&record, HostOpCloseFile, 1, 0), 1u);
  ASSERT_EQ(service(nullptr, HostOpCreateTestFile, 0, reinterpret_cast<uint64_t>(&test)), 1u);
  EXPECT_EQ(service(&test, HostOpCloseFile, 1, 0), 1u);
  ASSERT_NE(InProcessResult(&host), nullptr);
  EXPECT_EQ(InProcessResult(&host)->serial, 1);  // the test file is not the result

  EndInProcessHost(&host);
  EXPECT_EQ(service(nullptr, HostOpCreateFile, 0, reinterpret_cast<uint64_t>(&record)), 0u);
  EndProgress(&bar);
  rewind(out);
  char text[512] = {};
  fread(text, 1, sizeof text - 1, out);
  fclose(out);
  EXPECT_NE(strstr(text, "\rRemapping        [###############...............] 1/2"), nullptr)
      << text;

  InProcessHost colour;
  BeginInProcessHost(&colour, 1, nullptr);
  EXPECT_EQ(colour.record.capabilities & kHostIndexed, 0u);
  EXPECT_EQ(InProcessDelayMilliseconds(&colour), 1);
  EXPECT_EQ(InProcessResult(&colour), nullptr);
  EndInProcessHost(&colour);
}

TEST(Gm5Program, SettingsShowValuesBesideDefaults) {
  ProgramRun delay = RunGm5("settings MainDelay --defaults --set MainDelay=9");
  EXPECT_EQ(delay.status, 0);
  EXPECT_EQ(delay.out, "MainDelay=9 (default 5)\n");
  ProgramRun all = RunGm5("settings --defaults");
  EXPECT_EQ(all.status, 0);
  EXPECT_NE(all.out.find("\nMainText=This space for rent... (default This space for rent...)\n"),
            std::string::npos);

  const struct {
    const char* arguments;
    const char* message;
  } failures[] = {
      {"settings Nope --defaults", "gm5: unknown setting: Nope\n"},
      {"settings --defaults --set MainDelay=x", "gm5: bad value for MainDelay: x\n"},
      {"settings --defaults --set MainDither=2", "gm5: bad value for MainDither: 2\n"},
      {"settings --defaults --set Nope=1", "gm5: unknown setting: Nope\n"},
      {"settings --defaults --dither", "gm5: settings takes only --defaults and --set\n"},
  };
  for (const auto& f : failures) {
    ProgramRun run = RunGm5(f.arguments);
    EXPECT_EQ(run.status, 1) << f.arguments;
    EXPECT_EQ(run.out, f.message);
  }
}

TEST(Gm5Program, SaveDocumentWritesTheOptionsStateOrNothing) {
  namespace fs = std::filesystem;
  fs::path folder = fs::temp_directory_path() / ("gm5-documents-" + std::to_string(getpid()));
  fs::remove_all(folder);
  fs::create_directories(folder);
  const std::string out = (folder / "a.gm5").string();
  ProgramRun saved =
      RunGm5("save-document " + out +
             " --defaults --effect 'unplugged tv' --text Hello --dither --font 'DejaVu Sans'"
             " --control 22=0");
  EXPECT_EQ(saved.status, 0) << saved.out;
  std::ifstream in(out);
  std::string document((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  for (const char* line : {"\nCMBBOX58=17\n", "\nTXTFLD52=Hello\n", "\nCHKBOX15=1\n",
                           "\nCHKBOX22=0\n", "\nCHKBOX19=0\n", "\nFNTBOX53=DejaVu Sans\n"})
    EXPECT_NE(document.find(line), std::string::npos) << line;

  const std::string failing = (folder / "b.gm5").string();
  const struct {
    std::string arguments;
    std::string message;
  } failures[] = {
      {"--effect Bogus", "gm5: unknown effect: Bogus (see gm5 effects)\n"},
      {"--control 99999=1", "gm5: unknown control: 99999\n"},
      {"--control 15=2", "gm5: bad value for control 15: 2\n"},
      {"--control 58=21", "gm5: bad value for control 58: 21\n"},
  };
  for (const auto& f : failures) {
    ProgramRun run = RunGm5("save-document " + failing + " --defaults " + f.arguments);
    EXPECT_EQ(run.status, 1) << f.arguments;
    EXPECT_EQ(run.out, f.message);
  }
  ProgramRun text = RunGm5("save-document " + (folder / "c.txt").string() + " --defaults");
  EXPECT_EQ(text.out, "gm5: unknown output type: " + (folder / "c.txt").string() +
                          " (a document is written as .gm5)\n");
  const std::string nowhere = (folder / "none" / "d.gm5").string();
  ProgramRun missing = RunGm5("save-document " + nowhere + " --defaults");
  EXPECT_EQ(missing.out,
            "gm5: cannot write " + nowhere + ": no folder " + (folder / "none").string() + "\n");
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(folder))
    names.push_back(entry.path().filename().string());
  EXPECT_EQ(names, std::vector<std::string>{"a.gm5"});
  fs::remove_all(folder);
}
