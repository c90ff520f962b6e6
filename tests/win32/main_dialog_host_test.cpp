// The main dialog driven through gm5host scripts, one scenario a script: the host's kind at
// start, Shift and the configuration written on close, the update timer and the boxes that depend
// on each other, Test and Build through the host, Open/Save through the real file dialogs, and a
// screenshot of every effect's page.
#include <windows.h>

#include <cstdio>
#include <string>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "tests/win32/host_run_win32.h"

namespace {

std::string Reads(std::initializer_list<const char*> steps) {
  std::string script;
  for (const char* step : steps) script += std::string(step) + "\n";
  return script;
}

}  // namespace

// A first use: the delays reset to the host's kind, and true color ends on for a true-colour host
// even when the host does not offer it. Each run then changes two values and closes, which
// writes the configuration; the next run without Shift starts from it, with Shift from the
// defaults, the delays reset twice: to the offered true colour's 40 and 1000, or to 4 and 100.
TEST(MainDialog, HostKindSetsTheStartAndCloseWritesTheConfiguration) {
  if (!DisplayAvailable()) GTEST_SKIP() << "no display";
  struct Expected {
    int capabilities;
    const char *delayRange, *pauseRange, *delay, *pause;
    int trueColour, trueColourEnabled, transparentEnabled, superEnabled, alpha, alphaEnabled;
  };
  static const Expected kKinds[] = {
      {0, "1,1000,40", "1,10000,1000", "50", "1000", 1, 1, 0, 0, 0, 1},
      {1, "1,100,4", "1,1000,100", "5", "100", 0, 0, 1, 1, 0, 0},
      {2, "1,1000,40", "1,10000,1000", "50", "1000", 1, 1, 0, 0, 0, 1},
      {3, "1,100,4", "1,1000,100", "5", "100", 1, 1, 1, 1, 0, 0},
  };
  const std::string script =
      Reads({"wait-dialog", "read-text 10011", "read-text 10023", "read-text 11", "read-text 23",
             "read-check 10", "read-enabled 10", "read-enabled 35", "read-check 19",
             "read-enabled 19", "read-check 62", "read-enabled 62", "read-enabled 63",
             "read-enabled 1", "set-text 11 7", "set-text 52 Kept", "click 2"});
  auto value = [](const HostRun& run, const char* read, int id, const char* key) {
    return run.Value(std::string(read) + " id=" + std::to_string(id) + " ", key);
  };
  for (const Expected& kind : kKinds) {
    SCOPED_TRACE(kind.capabilities);
    ForgetConfiguration();
    HostRun run = RunHost("--capabilities " + std::to_string(kind.capabilities), script);
    ASSERT_EQ(run.exitCode, 0u);
    EXPECT_EQ(value(run, "read-text", 10011, "text"), kind.delayRange);
    EXPECT_EQ(value(run, "read-text", 10023, "text"), kind.pauseRange);
    EXPECT_EQ(value(run, "read-text", 11, "text"), kind.delay);
    EXPECT_EQ(value(run, "read-text", 23, "text"), kind.pause);
    const std::pair<const char*, int> flags[] = {{"read-check id=10 ", kind.trueColour},
                                                 {"read-enabled id=10 ", kind.trueColourEnabled},
                                                 {"read-enabled id=35 ", kind.transparentEnabled},
                                                 {"read-check id=19 ", 0},
                                                 {"read-enabled id=19 ", kind.superEnabled},
                                                 {"read-check id=62 ", kind.alpha},
                                                 {"read-enabled id=62 ", kind.alphaEnabled},
                                                 {"read-enabled id=63 ", kind.alphaEnabled},
                                                 {"read-enabled id=1 ", 1}};
    for (const auto& [prefix, flag] : flags)
      EXPECT_EQ(run.Value(prefix, prefix[5] == 'c' ? "check" : "enabled"), std::to_string(flag))
          << prefix;
  }
  const std::string written = ReadConfiguration();
  for (const char* line : {"MainDelay = 7\n", "IsFirst = 0\n", "MainText = Kept\n"})
    EXPECT_NE(written.find(line), std::string::npos) << line;
  // The documents folder the plug-in starts with is the setting that is written.
  const size_t openPath = written.find("OpenPath = ");
  ASSERT_NE(openPath, std::string::npos);
  const std::string folder =
      written.substr(openPath + 11, written.find('\n', openPath) - openPath - 11);
  EXPECT_GT(folder.size(), 3u);
  EXPECT_EQ(folder.back(), '\\') << folder;

  const std::string reads = Reads(
      {"wait-dialog", "read-text 11", "read-text 23", "read-text 52", "read-check 10", "click 2"});
  const struct {
    const char *arguments, *delay, *pause, *text, *trueColour;
  } kRuns[] = {{"--capabilities 3", "7", nullptr, "Kept", nullptr},
               {"--capabilities 3 --shift", "40", "1000", "This%20space%20for%20rent...", "1"},
               {"--capabilities 1 --shift", "4", "100", nullptr, nullptr}};
  for (const auto& r : kRuns) {
    HostRun run = RunHost(r.arguments, reads);
    EXPECT_EQ(value(run, "read-text", 11, "text"), r.delay) << r.arguments;
    const std::tuple<const char*, int, const char*> optional[] = {
        {"read-text", 23, r.pause}, {"read-text", 52, r.text}, {"read-check", 10, r.trueColour}};
    for (const auto& [read, id, want] : optional) {
      if (!want) continue;
      EXPECT_EQ(value(run, read, id, read[5] == 't' ? "text" : "check"), want) << id;
    }
  }
  ForgetConfiguration();
}

TEST(MainDialog, ChangesRepaintTheSampleOnceAndBoxesInterlock) {
  if (!DisplayAvailable()) GTEST_SKIP() << "no display";
  ForgetConfiguration();
  HostRun run = RunHost(
      "--capabilities 2",
      Reads({"wait-dialog", "sleep 500", "count-paints 25", "set-text 52 Hello", "read-paints 25",
             "count-paints 25", "select 58 0", "select 58 12", "read-paints 25", "wait-timer",
             "read-paints 25", "read-text 12",
             // True color and Alpha transparency hold each other.
             "set-check 62 1", "read-check 10", "set-check 10 0", "read-check 62",
             // Build needs a text.
             "set-text 52 ", "read-enabled 1", "set-text 52 x", "read-enabled 1", "click 2"}));
  ASSERT_EQ(run.exitCode, 0u);
  // A new text repaints at once; a new page waits for the timer and then repaints once.
  std::vector<int> paints;
  for (const std::string& line : run.lines)
    if (line.rfind("read-paints", 0) == 0)
      paints.push_back(std::stoi(line.substr(line.find("paints=") + 7)));
  ASSERT_EQ(paints.size(), 3u);
  EXPECT_GE(paints[0], 1);
  EXPECT_EQ(paints[1], 0);
  EXPECT_EQ(paints[2], 1);
  EXPECT_EQ(run.Value("read-check id=10 ", "check"), "1");
  EXPECT_EQ(run.Value("read-check id=62 ", "check"), "0");
  EXPECT_EQ(run.Value("read-enabled id=1 ", "enabled"), "0");
  EXPECT_EQ(run.Count("read-enabled id=1 enabled=1"), 1);
}

// Save on an untitled document asks for a name; once named, Save writes without asking, and Open
// reads it back. Then a screenshot of the dialog with each effect's page, for looking at, goes to
// build/windows/screenshots.
TEST(MainDialog, OpenAndSaveRoundTripThroughTheFileDialogsAndEveryPageShows) {
  if (!DisplayAvailable()) GTEST_SKIP() << "no display";
  ForgetConfiguration();
  const std::string path = TempFolder() + "gm5_round_trip.gm5";
  DeleteFileA(path.c_str());
  const std::string bin = BuildPath(GM5_PLUGIN_PATH);
  const std::string folder =
      bin.substr(0, bin.find_last_of('\\', bin.find_last_of('\\') - 1)) + "\\screenshots";
  CreateDirectoryA(folder.c_str(), nullptr);
  std::string screenshots;
  for (int row = 0; row < 21; ++row) {
    char name[32];
    std::snprintf(name, sizeof name, "\\page-%02d.png", row);
    screenshots +=
        "select 58 " + std::to_string(row) + "\nsleep 700\nscreenshot 0 " + folder + name + "\n";
  }
  HostRun run =
      RunHost("--capabilities 3",
              "dialog-size 700 500\n" + Reads({"wait-dialog", "set-text 52 First", "click 38"}) +
                  "file-dialog " + path + "\n" +
                  Reads({"sleep 500", "set-text 52 Second", "click 38", "sleep 300",
                         "set-text 52 Changed", "click 37"}) +
                  "file-dialog " + path + "\n" + Reads({"sleep 800", "read-text 52"}) +
                  screenshots + "click 2\n");
  ASSERT_EQ(run.exitCode, 0u);
  EXPECT_EQ(run.Count("file-dialog"), 2);
  // Each file dialog takes the size the host keeps for them.
  EXPECT_EQ(run.Line("file-dialog"), "file-dialog title=Save%20As width=700 height=500");
  EXPECT_EQ(run.Line("file-dialog title=Open"), "file-dialog title=Open width=700 height=500");
  EXPECT_EQ(run.Value("read-text id=52 ", "text"), "Second");
  EXPECT_EQ(run.Count("box"), 0);
  EXPECT_EQ(run.Count("screenshot path="), 21);
  for (const std::string& line : run.lines) {
    if (line.rfind("screenshot", 0) == 0) {
      EXPECT_NE(line.find("result=1"), std::string::npos) << line;
    }
  }
  DeleteFileA(path.c_str());
  DeleteFileA((path + ".bak").c_str());
  ForgetConfiguration();
}

TEST(MainDialog, TestStaysOpenAndBuildCloses) {
  if (!DisplayAvailable()) GTEST_SKIP() << "no display";
  ForgetConfiguration();
  // A true-colour host: Test builds flat frames with Alpha transparency off for the run only;
  // Build then hands over frames with their alpha plane and ends the dialog.
  HostRun run = RunHost("--capabilities 2",
                        Reads({"wait-dialog", "set-text 52 Go", "set-text 112 4", "set-check 62 1",
                               "click 24", "read-check 62", "click 1"}));
  ASSERT_EQ(run.exitCode, 0u);
  EXPECT_EQ(run.Line("read-check id=62"), "read-check id=62 check=1");
  EXPECT_EQ(run.Line("dobuild"), "dobuild result=1");
  EXPECT_EQ(run.Line("script"), "script unfinished=0");
  // The host's calls of the two runs, in order, from the start of work to the close.
  std::string order;
  for (const std::string& line : run.lines) {
    if (line.rfind("call op=", 0) != 0) continue;
    const std::string op = line.substr(8, line.find(' ', 8) - 8);
    if (op == "13" || op == "10" || op == "12") continue;  // progress and the registration query
    if (op == "2" && !order.empty() && order.back() == '+') continue;
    order += (order.empty() ? "" : " ") + op + (op == "2" ? "+" : "");
  }
  EXPECT_EQ(order, "17 17 21 18 5 15 2+ 3 4 18 1 15 2+ 3 4");
  EXPECT_EQ(run.Count("call op=2 name=HostOpAddImage file=1"), 4);
  EXPECT_EQ(run.Count("call op=2 name=HostOpAddImage file=1 index=0 delay=50 transparent=0"), 1);
  EXPECT_EQ(run.Count("call op=2 name=HostOpAddImage file=2 index=0 delay=50 transparent=1"), 1);
  EXPECT_NE(run.Line("call op=2 name=HostOpAddImage file=2").find("imageBits=32"),
            std::string::npos);
  ForgetConfiguration();
}

// Waterside and Tracks on their pages, Test then Build in one use: Waterside's delays are drawn
// from a generator nobody seeds, so the use starts at a fresh runtime's 41, 18467, 6334 (Delay 5
// gives 4, 4, 3) and Build goes on from there; Tracks ends both runs on the resting picture.
TEST(MainDialog, WatersideAndTracksTestAndBuildThroughTheHost) {
  if (!DisplayAvailable()) GTEST_SKIP() << "no display";
  ForgetConfiguration();
  const struct {
    const char* row;
    const char* frames;
    std::vector<std::string> test, build;  // the delays of the test file and of the built one
  } cases[] = {{"18", "479", {"4", "4", "3"}, {"3", "4", "3"}},
               {"15", "741", {"5", "5", "5", "105"}, {"5", "5", "5", "105"}}};
  for (const auto& c : cases) {
    const std::string script = std::string("wait-dialog\nselect 58 ") + c.row + "\nset-text " +
                               c.frames + " 3\n" +
                               Reads({"set-text 11 5", "set-text 23 100", "click 24", "click 1"});
    HostRun run = RunHost("--capabilities 1", script);
    ASSERT_EQ(run.exitCode, 0u);
    EXPECT_EQ(run.Line("dobuild"), "dobuild result=1");
    for (int file = 1; file <= 2; ++file) {
      const std::vector<std::string>& delays = file == 1 ? c.test : c.build;
      const std::string prefix = "call op=2 name=HostOpAddImage file=" + std::to_string(file);
      EXPECT_EQ(run.Count(prefix + " "), static_cast<int>(delays.size())) << c.row;
      for (size_t i = 0; i < delays.size(); ++i)
        EXPECT_EQ(run.Count(prefix + " index=" + std::to_string(i) + " delay=" + delays[i] + " "),
                  1)
            << c.row << " file " << file << " frame " << i;
    }
  }
  ForgetConfiguration();
}

// The frames of a Build from the dialog, with the document that holds its settings, for the
// native build of the same document to compare (tests/parity).
TEST(MainDialog, BuildWritesFramesForTheNativeComparison) {
  if (!DisplayAvailable()) GTEST_SKIP() << "no display";
  ForgetConfiguration();
  char here[MAX_PATH];
  GetCurrentDirectoryA(MAX_PATH, here);
  const std::string folder = std::string(here) + "\\parity";
  CreateDirectoryA(folder.c_str(), nullptr);
  CreateDirectoryA((folder + "\\dialog-build").c_str(), nullptr);
  DeleteFileA((folder + "\\dialog.gm5").c_str());
  HostRun run =
      RunHost("--capabilities 1 --dump \"" + folder + "\\dialog-build\"",
              Reads({"wait-dialog", "select-text 53 DejaVu Sans", "set-text 57 32",
                     "set-text 61 100", "set-text 52 Parity", "set-text 112 6", "click 39"}) +
                  "file-dialog " + folder + "\\dialog.gm5\n" + Reads({"sleep 500", "click 1"}));
  ASSERT_EQ(run.exitCode, 0u);
  EXPECT_EQ(run.Line("select-text id=53").find("row=-1"), std::string::npos) << "font missing";
  EXPECT_EQ(run.Count("call op=2 name=HostOpAddImage file=1"), 6);
  EXPECT_NE(GetFileAttributesA((folder + "\\dialog-build\\file1-frame005.bmp").c_str()),
            INVALID_FILE_ATTRIBUTES);
  ForgetConfiguration();
}

// Snow from its page in the real dialog: the page's controls with their settings, a screenshot of
// it with its sample, a Test and a Build through the host (both the loop of the Frames control,
// every frame with the Delay), and the Build's frames and document for the native comparison.
TEST(MainDialog, SnowPageTestsAndBuildsItsLoop) {
  if (!DisplayAvailable()) GTEST_SKIP() << "no display";
  ForgetConfiguration();
  char here[MAX_PATH];
  GetCurrentDirectoryA(MAX_PATH, here);
  const std::string folder = std::string(here) + "\\parity";
  CreateDirectoryA(folder.c_str(), nullptr);
  CreateDirectoryA((folder + "\\snow-build").c_str(), nullptr);
  DeleteFileA((folder + "\\snow.gm5").c_str());
  const std::string bin = BuildPath(GM5_PLUGIN_PATH);
  const std::string shots =
      bin.substr(0, bin.find_last_of('\\', bin.find_last_of('\\') - 1)) + "\\screenshots";
  CreateDirectoryA(shots.c_str(), nullptr);
  HostRun run =
      RunHost("--capabilities 1 --dump \"" + folder + "\\snow-build\"",
              Reads({"wait-dialog", "select 58 13", "select-text 53 DejaVu Sans", "set-text 57 40",
                     "set-text 61 100", "set-text 52 Snow", "set-text 175 6", "read-text 195",
                     "read-text 191", "read-class 185", "read-class 167", "read-text 11",
                     "wait-timer", "sleep 500"}) +
                  "screenshot 0 " + shots + "\\snow-page.png\n" + Reads({"click 24", "click 39"}) +
                  "file-dialog " + folder + "\\snow.gm5\n" + Reads({"sleep 500", "click 1"}));
  ASSERT_EQ(run.exitCode, 0u);
  EXPECT_EQ(run.Value("read-text id=195 ", "text"), "10651");
  EXPECT_EQ(run.Value("read-text id=191 ", "text"), "56");
  EXPECT_EQ(run.Value("read-class id=185 ", "class"), "MATLBT");
  EXPECT_EQ(run.Value("read-class id=167 ", "class"), "MATLBT");
  EXPECT_NE(run.Line("screenshot path=").find("result=1"), std::string::npos);
  EXPECT_EQ(run.Line("dobuild"), "dobuild result=1");
  const std::string delay = run.Value("read-text id=11 ", "text");
  for (const char* file : {"1", "2"}) {
    SCOPED_TRACE(file);
    const std::string add = std::string("call op=2 name=HostOpAddImage file=") + file;
    EXPECT_EQ(run.Count(add), 6);
    for (int i = 0; i < 6; ++i)
      EXPECT_EQ(run.Value(add + " index=" + std::to_string(i) + " ", "delay"), delay) << i;
  }
  EXPECT_NE(GetFileAttributesA((folder + "\\snow-build\\file2-frame005.bmp").c_str()),
            INVALID_FILE_ATTRIBUTES);
}

// With the host's SoftButtons on, the dialog's push buttons are owner-drawn (style 11) and still
// work; without it they keep the system's styles.
TEST(MainDialog, SoftButtonsSkinThePushButtons) {
  if (!DisplayAvailable()) GTEST_SKIP() << "no display";
  const int kIds[] = {1, 2, 9, 16, 18, 24, 36};
  for (int soft : {1, 0}) {
    SCOPED_TRACE(soft);
    ForgetConfiguration();
    std::string script = soft ? "setting SoftButtons 1\nwait-dialog\n" : "wait-dialog\n";
    for (int id : kIds) script += "read-style " + std::to_string(id) + "\n";
    HostRun run = RunHost("--capabilities 3", script + "click 2\n");
    ASSERT_EQ(run.exitCode, 0u);
    for (int id : kIds) {
      const std::string style = run.Value("read-style id=" + std::to_string(id) + " ", "style");
      if (soft)
        EXPECT_EQ(style, "11") << id;
      else
        EXPECT_NE(style, "11") << id;
    }
  }
  ForgetConfiguration();
}
