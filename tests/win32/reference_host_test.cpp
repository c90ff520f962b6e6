// PLUGIN16DoBuild as the reference host runs it: a host too old, hosts of level 16 and 32 whose
// dialog is cancelled, and a host without a service. The host's log tells what the plug-in did:
// the message boxes it showed, the value it returned, and the GDI objects and GDI+ sessions its
// own imports made and released.
#include <windows.h>

#include <cstdlib>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "tests/win32/host_run_win32.h"

TEST(ReferenceHost, RefusesAHostBelowLevel16WithItsMessage) {
  if (!DisplayAvailable()) GTEST_SKIP() << "no display";
  HostRun run = RunHost("--version 0x0FFF", "box 1\n");
  ASSERT_EQ(run.exitCode, 0u) << run.lines.size();
  EXPECT_EQ(run.Line("params"),
            "params result=1 size=333 version=4096 name=Glyph%20Motion%20#5 "
            "credit=Glyph%20Motion%20#5%20Plugin%20(c)%20Cobalt%20Lanternary");
  EXPECT_EQ(run.Line("box"),
            "box text=You%20need%20a%20newer%20version%20of%20Reel%20Foundry%20Professional%20or"
            "%20Strip%20Foundry%20to%20support%20this%20plugin.%0A%0APlease%20visit%20the%20Cobalt"
            "%20Lanternary%20web%20page%20to%20update%20your%20software. answer=1");
  EXPECT_EQ(run.Line("dobuild"), "dobuild result=0");
  EXPECT_EQ(run.Count("call "), 0);  // no dialog, so no host service
  EXPECT_EQ(run.Line("watch when=after"),
            "watch when=after gdiObjects=0 gdiplusStartups=0 gdiplusShutdowns=0");
}

// Level 16 and 32 hosts: the dialog opens with its common controls (the level 16 run reads their
// classes and updown texts, and asks for Help), and Cancel returns 1 with everything released.
TEST(ReferenceHost, DialogHasItsControlsAndCancelReleasesEverything) {
  if (!DisplayAvailable()) GTEST_SKIP() << "no display";
  const char* kControls =
      "1 Button 2 Button 9 Button 10 Button 11 Edit 12 Static 13 ComboBox 14 Button 15 Button "
      "16 Button 17 Static 18 Button 19 Button 20 Button 21 Button 22 Button 23 Edit 24 Button "
      "25 Button 35 Button 36 Button 51 Button 52 Edit 53 ComboBox 54 Button 55 Button 57 Edit "
      "58 ComboBox 59 Edit 61 Edit 62 Button 63 Button 64 Button 10011 msctls_updown32 "
      "10023 msctls_updown32 10057 msctls_updown32 10059 msctls_updown32 10061 msctls_updown32";
  std::string reads;
  std::istringstream controls(kControls);
  for (std::string id, name; controls >> id >> name;) reads += "read-class " + id + "\n";
  reads += "read-text 10057\nread-text 10059\nread-text 10061\nclick 9\nsleep 200\n";
  for (const char* version : {"0x1000", "0x2000"}) {
    SCOPED_TRACE(version);
    const bool level16 = version[2] == '1';
    HostRun run = RunHost(std::string("--version ") + version,
                          "wait-dialog\nwatch\n" + (level16 ? reads : "") + "click 2\n");
    ASSERT_EQ(run.exitCode, 0u);
    EXPECT_EQ(run.Count("box"), 0);
    EXPECT_EQ(run.Line("host"), std::string("host version=") +
                                    std::to_string(strtoul(version, nullptr, 16)) +
                                    " capabilities=3 service=1");
    // While the dialog is open: the three shared fonts and one GDI+ session.
    EXPECT_EQ(run.Line("watch when=during"),
              "watch when=during gdiObjects=3 gdiplusStartups=1 gdiplusShutdowns=0");
    EXPECT_EQ(run.Line("dobuild"), "dobuild result=1");
    EXPECT_EQ(run.Line("watch when=after"),
              "watch when=after gdiObjects=0 gdiplusStartups=1 gdiplusShutdowns=1");
    EXPECT_NE(run.Line("call op=17 name=HostOpGetSetting key=EditListMaximum"), "");
    EXPECT_EQ(run.Line("script"), "script unfinished=0");
    if (!level16) continue;
    std::istringstream expected(kControls);
    for (std::string id, name; expected >> id >> name;)
      EXPECT_EQ(run.Line("read-class id=" + id + " "), "read-class id=" + id + " class=" + name);
    // Each updown holds the range and default of its edit as its text.
    EXPECT_EQ(run.Line("read-text id=10057"), "read-text id=10057 text=4,400,24");
    EXPECT_EQ(run.Line("read-text id=10059"), "read-text id=10059 text=0,512,0");
    EXPECT_EQ(run.Line("read-text id=10061"), "read-text id=10061 text=50,150,100");
    EXPECT_EQ(run.Line("call op=9"),
              "call op=9 name=HostOpShowHelp text=RFDPLGM5.HTML#PREFACE result=1");
  }
}

TEST(ReferenceHost, NullServiceOrARefusedHelpSayWhy) {
  if (!DisplayAvailable()) GTEST_SKIP() << "no display";
  HostRun run = RunHost("--version 0x1000 --null-service", "box 1\nwait-dialog\nclick 2\n");
  ASSERT_EQ(run.exitCode, 0u);
  EXPECT_EQ(run.Line("box"), "box text=Internal%20error answer=1");
  EXPECT_EQ(run.Count("call "), 0);
  EXPECT_EQ(run.Line("dobuild"), "dobuild result=1");
  EXPECT_EQ(run.Line("watch when=after"),
            "watch when=after gdiObjects=0 gdiplusStartups=1 gdiplusShutdowns=1");

  run = RunHost("--version 0x1000", "refuse 9\nwait-dialog\nclick 9\nbox 1\nclick 2\n");
  ASSERT_EQ(run.exitCode, 0u);
  EXPECT_EQ(run.Line("box"),
            "box text=There%20has%20been%20an%20error%20displaying%20the%20Help%20document. "
            "answer=1");
  EXPECT_EQ(run.Line("dobuild"), "dobuild result=1");  // the dialog stayed until Cancel
}

TEST(ReferenceHost, AnUnfinishedScriptCancelsTheDialogs) {
  if (!DisplayAvailable()) GTEST_SKIP() << "no display";
  // The box never comes: the driver gives up, cancels the dialog, and the host says so.
  HostRun run = RunHost("--version 0x1000", "timeout 1000\nwait-dialog\nbox 1\n");
  EXPECT_EQ(run.exitCode, 4u);
  EXPECT_NE(run.Line("step n=3 error=timeout"), "");
  EXPECT_EQ(run.Line("dobuild"), "dobuild result=1");
}
