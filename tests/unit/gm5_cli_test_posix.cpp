// gm5's command line: option forms and their errors, effect names, the progress line, the
// in-process host, and the program itself run as a user would (output, exit status and one-line
// messages, nothing left behind by a failure).
#include <sys/wait.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>

#include <gtest/gtest.h>

#include "cli/command_line.h"
#include "cli/inprocess_host.h"
#include "cli/progress.h"
#include "tests/support/scratch_folder.h"

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
  FILE* pipe = popen((std::string(GM5_PROGRAM_PATH) + " " + arguments + " 2>&1").c_str(), "r");
  if (!pipe) return run;
  char buffer[4096];
  for (size_t n; (n = fread(buffer, 1, sizeof buffer, pipe)) > 0;) run.out.append(buffer, n);
  const int status = pclose(pipe);
  run.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  return run;
}

struct Failure {
  std::string arguments, message;
};

// Each run fails with status 1 and exactly its one line.
void ExpectFailures(const std::vector<Failure>& failures) {
  for (const Failure& f : failures) {
    ProgramRun run = RunGm5(f.arguments);
    EXPECT_EQ(run.status, 1) << f.arguments;
    EXPECT_EQ(run.out, "gm5: " + f.message + "\n");
  }
}

}  // namespace

TEST(CommandLine, ReadsOptionsInBothFormsAndRejectsMalformedOnesWithOneLine) {
  CommandLine line;
  std::string error;
  ASSERT_EQ(Parse({"effects", "--text", "Hi there", "--size=40", "--set", "MainDelay=7",
                   "--control=112=3", "--no-bold", "--italic", "--true-color", "-o", "out.gif",
                   "-q", "--sample-size=320x200", "--", "--odd-name"},
                  &line, &error),
            1)
      << error;
  EXPECT_EQ(line.command, CommandEffects);
  EXPECT_TRUE(line.hasText && line.text == "Hi there" && line.size == 40);
  EXPECT_EQ(line.settings, (decltype(line.settings){{"MainDelay", "7"}}));
  EXPECT_EQ(line.controls, (decltype(line.controls){{112, "3"}}));
  EXPECT_EQ(std::vector<int>({line.bold, line.italic, line.trueColour, line.dither, line.quiet}),
            std::vector<int>({0, 1, 1, -1, 1}));
  EXPECT_EQ(line.output, "out.gif");
  EXPECT_EQ(line.sampleWidth * 1000 + line.sampleHeight, 320200);
  EXPECT_EQ(line.arguments, std::vector<std::string>{"--odd-name"});

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
    CommandLine bad;
    EXPECT_EQ(Parse(c.args, &bad, &error), 0) << c.message;
    EXPECT_EQ(error, c.message);
  }
  EXPECT_EQ(FindEffectRow("unplugged tv"), 17);
  EXPECT_EQ(FindEffectRow("ARROWS"), 0);
  EXPECT_EQ(FindEffectRow("Unplugged"), -1);
}

// The in-process host serves the engine one host at a time, keeps the committed file, not the
// test file, as the result, and draws the engine's progress, but only on a terminal.
TEST(InProcessHost, ServesTheEngineAndShowsItsProgress) {
  FILE* out = tmpfile();
  ASSERT_NE(out, nullptr);
  ProgressBar bar;
  BeginProgress(&bar, out, 0);
  EXPECT_EQ(bar.enabled, 0);  // a file is not a terminal
  ProgressCaption(&bar, "Building");
  EXPECT_EQ(ftell(out), 0);
  bar.enabled = 1;
  InProcessHost host, colour;
  BeginInProcessHost(&host, 0, &bar);
  EXPECT_EQ(host.record.capabilities, kHostIndexed);

  HostService service = host.record.service;
  FileObjectRecord record{};
  record.size = sizeof record;
  record.version = kInterfaceVersion;
  record.bits = 8;
  record.width = record.height = 2;
  FileObjectRecord test = record;
  service(nullptr, HostOpProgressCaption, 0, reinterpret_cast<uint64_t>("Quantizing"));
  service(nullptr, HostOpProgress, 5, 10);
  ASSERT_EQ(service(nullptr, HostOpCreateFile, 0, reinterpret_cast<uint64_t>(&record)), 1u);
  EXPECT_EQ(service(&record, HostOpCloseFile, 1, 0), 1u);
  ASSERT_EQ(service(nullptr, HostOpCreateTestFile, 0, reinterpret_cast<uint64_t>(&test)), 1u);
  EXPECT_EQ(service(&test, HostOpCloseFile, 1, 0), 1u);
  ASSERT_NE(InProcessResult(&host), nullptr);
  EXPECT_EQ(InProcessResult(&host)->serial, 1);
  EndInProcessHost(&host);
  EXPECT_EQ(service(nullptr, HostOpCreateFile, 0, reinterpret_cast<uint64_t>(&record)), 0u);
  EndProgress(&bar);
  char written[512] = {};
  rewind(out);
  EXPECT_GT(fread(written, 1, sizeof written - 1, out), 0u);
  fclose(out);
  EXPECT_STREQ(written,
               "\rQuantizing      \x1b[K"
               "\rQuantizing       [###############...............] 5/10\x1b[K\n");
  BeginInProcessHost(&colour, 1, nullptr);
  EXPECT_EQ(colour.record.capabilities & kHostIndexed, 0u);
  EXPECT_EQ(InProcessResult(&colour), nullptr);
  EndInProcessHost(&colour);
}

TEST(Gm5Program, AnswersHelpVersionEffectsAndErrors) {
  ProgramRun effects = RunGm5("effects");
  EXPECT_EQ(effects.status, 0);
  EXPECT_EQ(effects.out.rfind(" 0 Arrows\n 1 Candy\n", 0), 0u);
  EXPECT_NE(effects.out.find("\n12 Simple\n"), std::string::npos);
  EXPECT_EQ(std::count(effects.out.begin(), effects.out.end(), '\n'), 21);
  ProgramRun version = RunGm5("--version"), help = RunGm5("--help");
  EXPECT_EQ(version.status + help.status, 0);
  EXPECT_EQ(version.out, "gm5 " GM5_VERSION "\n");
  EXPECT_EQ(help.out.rfind("usage: gm5 ", 0), 0u);
  ExpectFailures({{"", "no command given (see gm5 --help)"},
                  {"paint", "unknown command: paint (see gm5 --help)"},
                  {"effects extra", "effects takes no arguments"},
                  {"effects --no-dither", "effects takes no options"},
                  {"effects -o x.gif", "effects takes no options"}});
}

TEST(Gm5Program, SettingsShowValuesBesideDefaults) {
  ProgramRun delay = RunGm5("settings MainDelay --defaults --set MainDelay=9");
  EXPECT_EQ(delay.status, 0);
  EXPECT_EQ(delay.out, "MainDelay=9 (default 5)\n");
  ProgramRun all = RunGm5("settings --defaults");
  EXPECT_EQ(all.status, 0);
  EXPECT_NE(all.out.find("\nMainText=This space for rent... (default This space for rent...)\n"),
            std::string::npos);
  ExpectFailures({{"settings Nope --defaults", "unknown setting: Nope"},
                  {"settings --defaults --set MainDelay=x", "bad value for MainDelay: x"},
                  {"settings --defaults --set MainDither=2", "bad value for MainDither: 2"},
                  {"settings --defaults --set Nope=1", "unknown setting: Nope"},
                  {"settings --defaults --dither", "settings takes only --defaults and --set"}});
}

TEST(Gm5Program, SaveDocumentWritesTheOptionsStateOrNothing) {
  ScratchFolder scratch;
  const std::string out = scratch.Path("a.gm5");
  ProgramRun saved = RunGm5("save-document " + out +
                            " --defaults --effect 'unplugged tv' --text Hello --dither"
                            " --font 'DejaVu Sans' --control 22=0");
  EXPECT_EQ(saved.status, 0) << saved.out;
  const std::vector<uint8_t> bytes = FileBytes(out);
  const std::string document(bytes.begin(), bytes.end());
  for (const char* line : {"\nCMBBOX58=17\n", "\nTXTFLD52=Hello\n", "\nCHKBOX15=1\n",
                           "\nCHKBOX22=0\n", "\nCHKBOX19=0\n", "\nFNTBOX53=DejaVu Sans\n"})
    EXPECT_NE(document.find(line), std::string::npos) << line;

  const std::string failing = "save-document " + scratch.Path("b.gm5") + " --defaults ";
  const std::string text = scratch.Path("c.txt"), nowhere = scratch.Path("none/d.gm5");
  ExpectFailures({
      {failing + "--effect Bogus", "unknown effect: Bogus (see gm5 effects)"},
      {failing + "--control 99999=1", "unknown control: 99999"},
      {failing + "--control 15=2", "bad value for control 15: 2"},
      {failing + "--control 58=21", "bad value for control 58: 21"},
      {"save-document " + text + " --defaults",
       "unknown output type: " + text + " (a document is written as .gm5)"},
      {"save-document " + nowhere + " --defaults",
       "cannot write " + nowhere + ": no folder " + scratch.Path("none")},
  });
  EXPECT_EQ(scratch.Names(), std::vector<std::string>{"a.gm5"});
}
