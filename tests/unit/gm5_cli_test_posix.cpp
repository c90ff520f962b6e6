// gm5's command line: option forms and their errors, effect names, the progress line, the
// in-process host, and the program itself run as a user would (output, exit status and one-line
// messages, nothing left behind by a failure).
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "tests/support/run_gm5.h"

#include "cli/colour_text.h"
#include "cli/command_line.h"
#include "cli/inprocess_host.h"
#include "cli/progress.h"
#include "cli/settings_command.h"
#include "cli/text_encoding.h"
#include "documents/settings.h"
#include "materials/fountain_button.h"
#include "shell/effect_table.h"
#include "tests/support/scratch_folder.h"
#include "text/text_mask.h"

namespace {

int Parse(std::vector<const char*> args, CommandLine* line, std::string* error) {
  args.insert(args.begin(), "gm5");
  return ParseCommandLine(static_cast<int>(args.size()), args.data(), line, error);
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
                   "-q", "--", "--odd-name"},
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
      {{"preview", "--sample-size", "300x200"}, "unknown option: --sample-size"},
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
  // One line per row: its number, its name, and whether the row can build.
  ProgramRun effects = RunGm5("effects");
  EXPECT_EQ(effects.status, 0);
  EXPECT_EQ(std::count(effects.out.begin(), effects.out.end(), '\n'), kEffectCount);
  std::istringstream lines(effects.out);
  std::string line;
  for (int32_t row = 0; row < kEffectCount && std::getline(lines, line); ++row) {
    const size_t last = line.rfind(' ');
    ASSERT_TRUE(last != std::string::npos && last > 3) << line;
    std::string name = line.substr(3, last - 3);
    name.erase(name.find_last_not_of(' ') + 1);
    EXPECT_EQ(line.substr(0, 3), (row < 10 ? " " : "") + std::to_string(row) + " ");
    EXPECT_EQ(name, EffectTable[row].name);
    EXPECT_EQ(line.substr(last + 1), EffectTable[row].build ? "build" : "-") << line;
    if (row == kEffectDefaultRow) {
      EXPECT_EQ(line.substr(last + 1), "build");
    }
  }
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

namespace {

// Runs a shell command line as it stands; returns its exit status.
int RunShell(const std::string& command) {
  const int status = system(command.c_str());
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

std::string Text(const std::string& path) {
  const std::vector<uint8_t> bytes = FileBytes(path);
  return std::string(bytes.begin(), bytes.end());
}

const std::string kSmall = " --defaults -q --text Hi --size 20 --font 'DejaVu Sans' ";

}  // namespace

// A folder of frames takes only its own frames: a folder holding anything else is refused and
// left as it was, the places that stand for a whole tree are never written, and a later, shorter
// render replaces the frames without leaving the earlier render's last ones.
TEST(Gm5Program, FolderOutputKeepsWhatIsNotItsOwn) {
  ScratchFolder scratch;
  const std::string pics = scratch.Path("pics/");
  std::filesystem::create_directories(scratch.Path("pics/sub"));
  std::ofstream(scratch.Path("pics/photo.jpg")) << "photo";
  std::ofstream(scratch.Path("pics/frame-0001.png")) << "old frame";
  const std::string refused =
      ": frames are written only into a folder of their own (for example frames/)";
  ExpectFailures({
      {"render" + kSmall + "-o " + pics,
       "cannot write " + pics +
           ": the folder holds photo.jpg, which is not a frame (use an empty folder)"},
      {"render" + kSmall + "-o /", "cannot write /" + refused},
      {"render" + kSmall + "-o " + scratch.Path("."),
       "cannot write " + scratch.Path(".") + refused},
      {"render" + kSmall + "-o " + scratch.Path("pics/.."),
       "cannot write " + scratch.Path("pics/..") + refused},
      {"render" + kSmall + "-o /dev/null/", "cannot write /dev/null/: it is not a folder"},
  });
  EXPECT_EQ(Text(scratch.Path("pics/photo.jpg")), "photo");
  EXPECT_EQ(Text(scratch.Path("pics/frame-0001.png")), "old frame");
  EXPECT_TRUE(std::filesystem::is_directory(scratch.Path("pics/sub")));

  const std::string frames = scratch.Path("frames");
  ASSERT_EQ(RunGm5("render" + kSmall + "--control 112=6 -o " + frames).status, 0);
  std::ofstream(frames + "/frame-9999.png") << "from a longer render";
  ProgramRun again = RunGm5("render" + kSmall + "--control 112=4 -o " + frames + "/");
  EXPECT_EQ(again.status, 0) << again.out;
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(frames))
    names.push_back(entry.path().filename().string());
  std::sort(names.begin(), names.end());
  EXPECT_EQ(names, (std::vector<std::string>{"frame-0001.png", "frame-0002.png", "frame-0003.png",
                                             "frame-0004.png"}));
}

// Every output lands whole where it was asked for, in the format asked for, or fails with the
// system's reason; a rewritten document keeps its predecessor.
TEST(Gm5Program, OutputsLandWholeWhereAsked) {
  ScratchFolder scratch;
  const std::string gif = scratch.Path("a.gif"), piped = scratch.Path("piped.gif");
  ASSERT_EQ(RunGm5("render" + kSmall + "-o " + gif).status, 0);
  ASSERT_EQ(RunShell(std::string(GM5_PROGRAM_PATH) + " render" + kSmall + "-o - > " + piped), 0);
  EXPECT_EQ(FileBytes(piped), FileBytes(gif));
  EXPECT_GT(FileBytes(gif).size(), 100u);
  const std::string sample = scratch.Path("sample.png"), pipedSample = scratch.Path("piped.png");
  ASSERT_EQ(RunGm5("preview" + kSmall + "-o " + sample).status, 0);
  ASSERT_EQ(RunShell(std::string(GM5_PROGRAM_PATH) + " preview" + kSmall + "-o - > " + pipedSample),
            0);
  EXPECT_EQ(FileBytes(pipedSample), FileBytes(sample));
  const std::string forced = scratch.Path("forced.gif");
  ASSERT_EQ(RunGm5("render" + kSmall + "--format webp -o " + forced).status, 0);
  EXPECT_EQ(Text(forced).substr(8, 4), "WEBP");
  EXPECT_EQ(RunGm5("render" + kSmall + "-o /dev/null").status, 0);
  // The temporary name must not make the longest valid name fail.
  const std::string longest = scratch.Path(std::string(251, 'n') + ".gif");
  ProgramRun named = RunGm5("render" + kSmall + "-o " + longest);
  EXPECT_EQ(named.status, 0) << named.out;
  EXPECT_EQ(FileBytes(longest), FileBytes(gif));

  // A full disk fails the run with the system's reason, for an animation and a document alike.
  const std::string full = scratch.Path("full.gm5");
  std::filesystem::create_symlink("/dev/full", full);
  ExpectFailures(
      {{"render" + kSmall + "-o /dev/full", "cannot write /dev/full: No space left on device"},
       {"save-document " + full + kSmall, "cannot write " + full + ": No space left on device"}});
  std::filesystem::remove(full);
  const std::string document = scratch.Path("d.gm5");
  ASSERT_EQ(RunGm5("save-document " + document + kSmall).status, 0);
  const std::string first = Text(document);
  ASSERT_EQ(RunGm5("save-document " + document + " --defaults --text Later").status, 0);
  EXPECT_EQ(Text(document + ".bak"), first);
  EXPECT_NE(Text(document).find("\nTXTFLD52=Later\n"), std::string::npos);
  // A link is followed, and stays a link; a name too long to take ".bak" is still written.
  const std::string linked = scratch.Path("linked.gm5");
  std::filesystem::create_symlink(document, linked);
  ASSERT_EQ(RunGm5("save-document " + linked + " --defaults --text Linked").status, 0);
  EXPECT_TRUE(std::filesystem::is_symlink(linked));
  EXPECT_NE(Text(document).find("\nTXTFLD52=Linked\n"), std::string::npos);
  std::filesystem::remove(linked);
  const std::string longDocument = scratch.Path(std::string(250, 'd') + ".gm5");
  for (int i = 0; i < 2; ++i)
    EXPECT_EQ(RunGm5("save-document " + longDocument + " --defaults").status, 0) << i;
  EXPECT_TRUE(std::filesystem::exists(longDocument));
  std::filesystem::remove(longDocument);
  std::vector<std::string> names = scratch.Names();
  std::sort(names.begin(), names.end());
  EXPECT_EQ(names, (std::vector<std::string>{"a.gif", "d.gm5", "d.gm5.bak", "forced.gif",
                                             std::string(251, 'n') + ".gif", "piped.gif",
                                             "piped.png", "sample.png"}));
}

// A run stopped by any of the signals that end a session, while it renders, leaves nothing in
// the output's folder: the temporary, opened before the frames are drawn, goes with it.
TEST(Gm5Program, StoppedRenderLeavesNothingBehind) {
  ScratchFolder scratch;
  const std::string out = scratch.Path("slow.webp");
  // Thousands of large frames: the run is still drawing when the signal comes.
  const std::vector<std::string> words = {
      GM5_PROGRAM_PATH,     "render", "--defaults", "-q",       "--font", "DejaVu Sans", "--text",
      "Stopped on the way", "--size", "80",         "--frames", "2000",   "-o",          out};
  std::vector<char*> argv;
  for (const std::string& word : words) argv.push_back(const_cast<char*>(word.c_str()));
  argv.push_back(nullptr);
  for (int number : {SIGHUP, SIGPIPE, SIGALRM, SIGINT, SIGTERM}) {
    SCOPED_TRACE(strsignal(number));
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      const int null = open("/dev/null", O_WRONLY);
      dup2(null, STDOUT_FILENO);
      dup2(null, STDERR_FILENO);
      execv(argv[0], argv.data());
      _exit(127);
    }
    // Waits for this run's temporary, for at most a minute, however slow the machine is.
    const std::string temporary = scratch.Path(".gm5-" + std::to_string(child) + ".part");
    int status = 0, ended = 0, seen = 0;
    for (int i = 0; i < 60000 && !seen && !ended; ++i) {
      seen = std::filesystem::exists(temporary);
      if (!seen) ended = waitpid(child, &status, WNOHANG) == child, usleep(1000);
    }
    if (!ended) {
      kill(child, seen ? number : SIGKILL);
      ASSERT_EQ(waitpid(child, &status, 0), child);
    }
    EXPECT_TRUE(seen) << "no temporary appeared";
    EXPECT_TRUE((WIFSIGNALED(status) && WTERMSIG(status) == number) ||
                (WIFEXITED(status) && WEXITSTATUS(status) == 1))
        << status;
    EXPECT_EQ(scratch.Names(), std::vector<std::string>());
    for (const std::string& name : scratch.Names()) std::filesystem::remove(scratch.Path(name));
  }
}

// Frames larger than the output holds or memory keeps are refused from the text's measure, before
// any frame is drawn, and nothing is written. Drawing these would take minutes to hours.
TEST(Gm5Program, ImpossibleRendersAreRefusedBeforeDrawing) {
  ScratchFolder scratch;
  const std::string text = " --font 'DejaVu Sans' -q --size 400 --text '" + std::string(100, 'W') +
                           "' -o " + scratch.Path("big");
  const struct {
    std::string arguments, start, end;
  } cases[] = {
      {"render --defaults" + text + ".webp", "gm5: the animation would be ",
       ", larger than the output holds (16383 pixels a side)\n"},
      {"render --defaults --frames 32760" + text + ".gif", "gm5: the animation would need about ",
       " of memory (use a smaller --size)\n"},
  };
  for (const auto& c : cases) {
    const ProgramRun run = RunGm5(c.arguments);
    EXPECT_EQ(run.status, 1) << c.arguments;
    ASSERT_GT(run.out.size(), c.start.size() + c.end.size()) << run.out;
    EXPECT_EQ(run.out.substr(0, c.start.size()), c.start) << run.out;
    EXPECT_EQ(run.out.substr(run.out.size() - c.end.size()), c.end) << run.out;
    // The size named is at least the text's: a hundred glyphs a few hundred pixels wide each.
    int width = 0, height = 0;
    const size_t frames = run.out.find(" frames of ");
    const size_t at = frames == std::string::npos ? c.start.size() : frames + 11;
    ASSERT_EQ(sscanf(run.out.c_str() + at, "%dx%d", &width, &height), 2) << run.out;
    EXPECT_GT(width, 16383);
    EXPECT_GE(height, 400);
    EXPECT_EQ(scratch.Names(), std::vector<std::string>());
  }
}

// What is read is read as it stands or refused in one line: files that are not regular files,
// text the code page cannot hold, options given a value they do not take. Reading the settings
// creates nothing.
TEST(Gm5Program, InputsAreReadFaithfullyOrRefused) {
  ScratchFolder scratch(1);
  const std::string folder = scratch.Path("config/Cobalt Lanternary");
  EXPECT_EQ(RunGm5("settings MainDelay").out, "MainDelay=5 (default 5)\n");
  EXPECT_FALSE(std::filesystem::exists(folder));
  std::filesystem::create_directories(folder + "/rfdplgm5.ini");
  std::filesystem::create_directories(scratch.Path("d.gm5"));
  const std::string out = " -o " + scratch.Path("x.gif");
  ExpectFailures({
      {"settings MainDelay",
       "cannot read the configuration " + folder + "/rfdplgm5.ini: not a regular file"},
      {"render " + scratch.Path("d.gm5") + kSmall + out,
       "cannot read " + scratch.Path("d.gm5") + ": not a regular file"},
      {"render --defaults=0" + out, "option takes no value: --defaults"},
      {"render --defaults --quiet=1" + out, "option takes no value: --quiet"},
      {"render --defaults --text 'a→b'" + out,
       "the text holds U+2192 (→), which the engine's code page (Windows-1252) cannot hold"},
      {"render --defaults --text \"$(printf 'a\\nb')\"" + out,
       "the text holds a control character, U+000A (the text is a single line)"},
      {"render --defaults --transparent" + out,
       "--transparent needs a palette with a free index: add --custom-palette (or use "
       "--true-color with .webp)"},
      {"render --defaults --set MainSupercompress=1" + out,
       "--supercompress needs a palette with a free index: add --custom-palette (or use "
       "--true-color with .webp)"},
      {"settings --defaults --set Style012FillColor=teal --set AlphaGreyBack=ink",
       "bad value for AlphaGreyBack: ink (a colour: #RRGGBB, #RGB, a CSS colour name such as navy, "
       "or a number 0xBBGGRR)"},
      {"render --defaults --control 106=#12" + out,
       "bad value for control 106: #12 (a colour: #RRGGBB, #RGB, a CSS colour name such as navy, "
       "or a number 0xBBGGRR)"},
  });
  // A setting its control clamps is reported, as an option would be.
  EXPECT_EQ(
      RunGm5("save-document " + scratch.Path("c.gm5") + " --defaults --set MainFontSize=5000").out,
      "gm5: the setting MainFontSize=5000 is outside the range of its control; using 400\n");
  // So is a number a document gives a spin edit that its control clamps.
  {
    std::string lines = Text(scratch.Path("c.gm5"));
    const size_t at = lines.find("\nSPNBTN112=");
    ASSERT_NE(at, std::string::npos);
    lines.replace(at, lines.find('\n', at + 1) - at, "\nSPNBTN112=99999");
    FILE* file = fopen(scratch.Path("clamped.gm5").c_str(), "wb");
    ASSERT_TRUE(file);
    fwrite(lines.data(), 1, lines.size(), file);
    fclose(file);
    const std::string said =
        RunGm5("preview " + scratch.Path("clamped.gm5") + " --defaults -q -o " + scratch.Path("s.png")).out;
    EXPECT_NE(said.find("clamped.gm5: 99999 is outside the range of control 112; using 32760\n"),
              std::string::npos)
        << said;
  }
  // Typed UTF-8 is saved as UTF-8, blanks and all, and reads back unchanged.
  const std::string document = scratch.Path("t.gm5"), again = scratch.Path("u.gm5");
  ASSERT_EQ(RunGm5("save-document " + document + " --defaults --text '  Café €5 '").status, 0);
  EXPECT_NE(Text(document).find("\nTXTFLD52=  Café €5 \n"), std::string::npos);
  ASSERT_EQ(RunGm5("save-document " + again + " --defaults --control 22=0").status, 0);
  EXPECT_EQ(RunShell(std::string(GM5_PROGRAM_PATH) + " render " + document +
                     " --defaults -q --font 'DejaVu Sans' -o /dev/null"),
            0);
  // The whole text is drawn, however long: 300 letters make a wider picture than their first 263
  // (the size the renderer's text buffer once had), and as wide as 300 letters should be.
  auto width = [&](size_t letters) {
    const ProgramRun run = RunGm5("render --defaults --font 'DejaVu Sans' --size 10 --control 22=0 "
                                  "--text " + std::string(letters, 'm') + " -o /dev/null");
    const size_t at = run.out.find(" frame, ");
    return at == std::string::npos ? -1 : std::atoi(run.out.c_str() + at + 8);
  };
  const int whole = width(300), cut = width(263);
  EXPECT_GT(cut, 0);
  EXPECT_NEAR(whole - cut, (cut - width(26)) * 37 / 237, 3);
}

// A document saved from options renders exactly as the options do, for every kind of control,
// and each option changes the picture (so that a value lost on the way would show).
TEST(Gm5Program, SavedDocumentRendersAsItsOptions) {
  ScratchFolder scratch;
  const std::string base = " --defaults -q --text Hi --size 40 ";
  const struct {
    const char *effect, *option;
  } cases[] = {
      {"--effect simple", "--control 112=6"},                // spin edit
      {"--effect simple", "--control 106=#f80"},             // colour button
      {"--effect simple", "--control 123=0"},                // check box
      {"--effect simple", "--control 13=2"},                 // combo list
      {"--effect simple", "--text ' Hé '"},                  // text field
      {"--effect simple", "--font 'DejaVu Serif'"},          // font box
      {"--effect simple", "--control 120=3"},                // eight-way picker
      {"--effect simple", "--control 118=2"},                // four-way picker
      {"--effect candy --frames 4", "--control 871=3"},      // four-way picker of a frame set
      {"--effect wavelet --frames 4", "--control 548=0"},    // two-way picker
  };
  for (const auto& c : cases) {
    const std::string direct = scratch.Path("direct.gif"), viaDocument = scratch.Path("doc.gif");
    const std::string document = scratch.Path("state.gm5"), plain = scratch.Path("plain.gif");
    const std::string options = std::string(c.effect) + " " + c.option;
    ASSERT_EQ(RunGm5("render" + base + options + " -o " + direct).status, 0) << options;
    ASSERT_EQ(RunGm5("save-document " + document + base + options).status, 0) << options;
    ASSERT_EQ(RunGm5("render " + document + " -q --defaults -o " + viaDocument).status, 0);
    ASSERT_EQ(RunGm5("render" + base + c.effect + " -o " + plain).status, 0) << c.effect;
    EXPECT_EQ(FileBytes(viaDocument), FileBytes(direct)) << options;
    EXPECT_NE(FileBytes(plain), FileBytes(direct)) << options;
  }
}

// Quark's colours come from its Fountain button's FOUNTB line: a document's gradient changes the
// picture, and the button's starting gradient draws as the built-in rainbow does without a line.
TEST(Gm5Program, QuarkTakesItsGradientFromTheDocument) {
  ScratchFolder scratch;
  const std::string document = scratch.Path("quark.gm5");
  ASSERT_EQ(RunGm5("save-document " + document + kSmall + "--effect quark").status, 0);
  std::string text = Text(document);
  const size_t line = text.find("\nFOUNTB336=");
  ASSERT_NE(line, std::string::npos);
  const size_t end = text.find('\n', line + 1);
  auto preview = [&](const std::string& body, const char* name) {
    const std::string path = scratch.Path(std::string(name) + ".gm5");
    FILE* file = fopen(path.c_str(), "wb");
    if (!file) return std::vector<uint8_t>();
    fwrite(body.data(), 1, body.size(), file);
    fclose(file);
    const std::string out = scratch.Path(std::string(name) + ".png");
    if (RunGm5("preview " + path + " -q -o " + out).status != 0) return std::vector<uint8_t>();
    return FileBytes(out);
  };
  const std::vector<uint8_t> saved = preview(text, "saved");
  ASSERT_FALSE(saved.empty());
  EXPECT_EQ(preview(text.substr(0, line) + text.substr(end), "without"), saved);
  FountainGradient grey;
  std::memset(&grey, 0, sizeof grey);
  InitFountainGradient(&grey, 1);
  std::string edited = FountainDocumentLine(336, &grey);
  edited.pop_back();
  EXPECT_NE(preview(text.substr(0, line + 1) + edited + text.substr(end), "grey"), saved);
}

// Material buttons carry their records through documents: a saved document holds each button's
// record, and a record made a texture there renders as a texture, the same through a second save.
TEST(Gm5Program, MaterialRecordsTravelThroughDocuments) {
  ScratchFolder scratch;
  const std::string base = " --defaults -q --text Hi --size 40 --effect simple --control 22=0";
  const std::string saved = scratch.Path("a.gm5"), textured = scratch.Path("b.gm5"),
                    again = scratch.Path("c.gm5");
  ASSERT_EQ(RunGm5("save-document " + saved + base).status, 0);
  std::string lines = Text(saved);
  const size_t fill = lines.find("\nMATLBT100=434F424C434D4154");  // "COBLCMAT"
  ASSERT_NE(fill, std::string::npos);
  const size_t kind = fill + std::string("\nMATLBT100=").size() + 2 * 16;  // the kind's 4 bytes
  ASSERT_EQ(lines.substr(kind, 8), "00000000");                             // Simple
  lines.replace(kind, 8, "02000000");                                        // Texture
  FILE* file = fopen(textured.c_str(), "wb");
  ASSERT_TRUE(file);
  fwrite(lines.data(), 1, lines.size(), file);
  fclose(file);
  ASSERT_EQ(RunGm5("save-document " + again + " " + textured + " --defaults").status, 0);
  // The record comes back a texture (its tile path is the current matrix group's, as any read).
  const std::string resaved = Text(again);
  const size_t refill = resaved.find("\nMATLBT100=");
  ASSERT_NE(refill, std::string::npos);
  EXPECT_EQ(resaved.substr(refill + kind - fill, 8), "02000000");
  const std::string plain = scratch.Path("p.png"), texture = scratch.Path("t.png"),
                    twice = scratch.Path("u.png");
  ASSERT_EQ(RunGm5("render" + base + " -o " + plain).status, 0);
  ASSERT_EQ(RunGm5("render " + textured + " --defaults -q -o " + texture).status, 0);
  ASSERT_EQ(RunGm5("render " + again + " --defaults -q -o " + twice).status, 0);
  EXPECT_NE(FileBytes(texture), FileBytes(plain));
  EXPECT_EQ(FileBytes(texture), FileBytes(twice));
}

// Colour texts against hand-worked 0x00BBGGRR values; the short and long hexadecimal forms and
// the names agree with each other.
TEST(ColourText, TakesEveryFormAndOnlyThose) {
  const struct {
    const char* text;
    uint32_t colour;
  } good[] = {{"#FF8000", 0x0080FF}, {"#f80", 0x0088FF},     {"#ff8800", 0x0088FF},
              {"Orange", 0x00A5FF},  {"navy", 0x800000},     {"rebeccapurple", 0x993366},
              {"32768", 32768},      {"0xFF0000", 0xFF0000}, {"0", 0}};
  for (const auto& g : good) {
    uint32_t colour = 1234;
    EXPECT_EQ(ParseColourText(g.text, &colour), 1) << g.text;
    EXPECT_EQ(colour, g.colour) << g.text;
  }
  for (const char* bad : {"", "#12", "#GG0000", "#1234567", "nocolour", "16777216", "-1", "0x"}) {
    uint32_t colour = 0;
    EXPECT_EQ(ParseColourText(bad, &colour), 0) << bad;
  }
}

// Every character of the code page goes to UTF-8 and back to its byte; characters outside it
// and malformed UTF-8 are refused.
TEST(TextEncoding, CodePageRoundTripsThroughUtf8) {
  for (int byte = 1; byte < 256; ++byte) {
    if (byte == 0x81 || byte == 0x8D || byte == 0x8F || byte == 0x90 || byte == 0x9D) continue;
    const std::string one(1, static_cast<char>(byte));
    std::string back, error;
    const std::string utf8 = Windows1252ToUtf8(one);
    EXPECT_TRUE(IsUtf8(utf8)) << byte;
    EXPECT_EQ(Utf8ToWindows1252(utf8, 0, &back, &error), 1) << byte << error;
    EXPECT_EQ(back, one) << byte;
  }
  std::string out, error;
  ASSERT_EQ(Utf8ToWindows1252("\xE2\x82\xAC \xC3\xA9", 1, &out, &error), 1);
  EXPECT_EQ(out, "\x80 \xE9");
  for (const char* bad : {"\xC3", "\xC0\x80", "\xF0\x9F\x98\x80", "\xED\xA0\x80", "a\tb"})
    EXPECT_EQ(Utf8ToWindows1252(bad, 1, &out, &error), 0) << bad;
}

// A file whose frames cannot fit is refused when the engine creates it, with the estimate.
TEST(InProcessHost, RefusesFilesTheOutputOrMemoryCannotHold) {
  FileObjectRecord record{};
  record.size = sizeof record;
  record.version = kInterfaceVersion;
  record.bits = 8;
  record.width = 1000;
  record.height = 500;
  record.frameCount = 64;
  // 64 frames of 40 + 1024 + 500000 bytes, and the 2000000-byte canvas: 34,068,096 bytes.
  EXPECT_EQ(EstimateFrameBytes(1000, 500, 8, 64), 34068096u);
  const struct {
    uint64_t limit;
    int32_t side;
    int accepted;
    const char* message;
  } cases[] = {
      {40000000, 65535, 1, ""},
      {30000000, 65535, 0,
       "the animation would need about 32.5 MB for its 64 frames of 1000x500, "
       "more than the 28.6 MB of memory (use a smaller --size)"},
      {40000000, 800, 0,
       "the animation would be 1000x500, larger than the output holds (800 "
       "pixels a side)"},
  };
  for (const auto& c : cases) {
    InProcessHost host;
    BeginInProcessHost(&host, 0, nullptr);
    host.memoryLimit = c.limit;
    host.largestSide = c.side;
    EXPECT_EQ(
        host.record.service(nullptr, HostOpCreateFile, 0, reinterpret_cast<uint64_t>(&record)),
        static_cast<uint64_t>(c.accepted));
    EXPECT_EQ(host.refusal, c.message);
    EndInProcessHost(&host);
  }
}

// The measuring of accents follows the configuration, then --set, like every other setting.
TEST(Gm5Settings, AccentCompensationComesFromTheConfiguration) {
  ScratchFolder scratch(1);
  SetSettingsFolder(nullptr);  // the configuration folder the environment names
  std::filesystem::create_directories(scratch.Path("config/Cobalt Lanternary"));
  std::ofstream(scratch.Path("config/Cobalt Lanternary/rfdplgm5.ini"))
      << "AccentCompensation = 0\n";
  const struct {
    std::vector<const char*> args;
    int32_t expected;
  } cases[] = {{{"settings"}, 0},
               {{"settings", "--set", "AccentCompensation=1"}, 1},
               {{"settings", "--defaults"}, 1}};
  for (const auto& c : cases) {
    CommandLine line;
    std::string error;
    SetAccentCompensation(c.expected ? 0 : 1);
    ASSERT_EQ(Parse(c.args, &line, &error), 1) << error;
    ASSERT_EQ(PrepareSettings(line, &error), 1) << error;
    EXPECT_EQ(AccentCompensation(), c.expected) << c.args.size();
  }
  SetAccentCompensation(1);
}

// The image-tool options say what their controls and writers say: --frames is the effect's frame
// count, --frame N is frame N of the folder of frames, and each option's misuse is refused.
TEST(Gm5Program, ImageToolOptionsMatchTheirControls) {
  ScratchFolder scratch;
  const std::string a = scratch.Path("a.gif"), b = scratch.Path("b.gif");
  ASSERT_EQ(RunGm5("render" + kSmall + "--effect simple --frames 6 -o " + a).status, 0);
  ASSERT_EQ(RunGm5("render" + kSmall + "--effect simple --control 112=6 -o " + b).status, 0);
  EXPECT_EQ(FileBytes(a), FileBytes(b));
  const std::string frames = scratch.Path("frames/"), third = scratch.Path("third.png");
  ASSERT_EQ(RunGm5("render" + kSmall + "--frames 6 -o " + frames).status, 0);
  ASSERT_EQ(RunGm5("render" + kSmall + "--frames 6 --frame 3 -o " + third).status, 0);
  EXPECT_EQ(FileBytes(third), FileBytes(frames + "frame-0003.png"));
  ExpectFailures({
      {"render" + kSmall + "--frame 2 -o " + a,
       "--frame chooses the frame of a single PNG (-o OUT.png)"},
      {"render" + kSmall + "--loop 2 -o " + third, "--loop applies to a GIF or WebP"},
      {"render" + kSmall + "--frames 6 --frame 7 -o " + third,
       "cannot write " + third + ": there is no frame 7 (the animation has 6)"},
      {"render" + kSmall + "--format bmp -o " + a,
       "bad value for --format: bmp (gif, webp or png)"},
      {"render" + kSmall + "--delay x -o " + a, "bad value for --delay: x (a whole number from 0)"},
  });
}

// Each control gm5 controls lists carries the value the document saved from the same state holds.
TEST(Gm5Program, ControlsListAgreesWithTheDocument) {
  ScratchFolder scratch;
  const std::string document = scratch.Path("s.gm5");
  ASSERT_EQ(RunGm5("save-document " + document + " --defaults --control 120=3").status, 0);
  const std::string saved = Text(document);
  for (const char* effect : {"", "simple"}) {
    ProgramRun listed = RunGm5(std::string("controls --defaults --control 120=3 ") + effect);
    ASSERT_EQ(listed.status, 0) << listed.out;
    std::istringstream lines(listed.out);
    int count = 0;
    for (std::string line; std::getline(lines, line); ++count) {
      if (line[0] == '#') continue;  // the page's heading
      std::istringstream fields(line);
      std::string id, tag, range, value;
      fields >> id >> tag >> range >> value;
      if (tag == "MATLBT" || tag == "FOUNTB" || tag == "ANMCTL" || value[0] == '"') continue;
      EXPECT_NE(saved.find("\n" + tag + id + "=" + value + "\n"), std::string::npos) << line;
    }
    EXPECT_GT(count, 10) << effect;
  }
  const std::string simple = RunGm5("controls --defaults simple").out;
  EXPECT_EQ(simple.rfind("# Simple: settings Style000...\n", 0), 0u) << simple;
  EXPECT_NE(simple.find("\n 120  SDWDIR"), std::string::npos);
  ExpectFailures({{"controls --defaults nope", "unknown effect: nope (see gm5 effects)"}});
}
