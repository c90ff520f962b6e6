#include "documents/settings.h"

#include <cstdio>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/value_dialog.h"

namespace {

class Settings : public testing::Test {
 protected:
  void SetUp() override {
    folder_ = MakeTempFolder("gm5-settings-test");
    SetSettingsFolder(folder_.c_str());
    ResetSettings();
  }
  // The folder stays on the temporary one, so nothing later can write to the user's.
  void TearDown() override { ResetSettings(); }
  std::string Path() const { return folder_ + "rfdplgm5.ini"; }
  void Load(const std::string& text, int shift = 0) {
    const std::string path = folder_ + "lines.ini";
    std::ofstream(path) << text;
    std::FILE* file = std::fopen(path.c_str(), "rt");
    ASSERT_NE(file, nullptr);
    LoadSettingsFromFile(file, shift);
    std::fclose(file);
  }
  static std::string Read(const std::string& path) {
    std::stringstream all;
    all << std::ifstream(path).rdbuf();
    return all.str();
  }
  std::string folder_;
};

}  // namespace

TEST_F(Settings, SaveThenLoadGivesBackEveryReadableRowAndKeepsABackup) {
  SaveSettings();
  const std::string first = Read(Path());
  for (int i = 0; i < kSettingCount; ++i) {
    const SettingEntry& e = SettingTable[i];
    if (e.flags & kSettingString)
      std::snprintf(static_cast<char*>(e.value), kSettingTextSize, "value %d", i);
    else
      *static_cast<int32_t*>(e.value) = i * 7919 + 1000;
  }
  *SettingInteger("MainPalette") = -1;
  SaveSettings();
  EXPECT_EQ(Read(Path() + ".bak"), first);
  ResetSettings();
  LoadSettings();
  for (int i = 0; i < kSettingCount; ++i) {
    const SettingEntry& e = SettingTable[i];
    if (e.flags & kSettingNeverRead) {
      EXPECT_EQ(*static_cast<int32_t*>(e.value), std::strcmp(e.key, "PatchLevel") ? 512 : 1);
    } else if (e.flags & kSettingString) {
      EXPECT_STREQ(static_cast<char*>(e.value), ("value " + std::to_string(i)).c_str()) << e.key;
    } else if (std::strcmp(e.key, "Style002Frames") && std::strcmp(e.key, "MainPalette")) {
      EXPECT_EQ(*static_cast<int32_t*>(e.value), i * 7919 + 1000) << e.key;
    }
  }
  // A negative number is written signed and comes back as itself.
  EXPECT_EQ(*SettingInteger("MainPalette"), -1);
  const std::string text = Read(Path());
  EXPECT_EQ(text.rfind(";Cobalt Lanternary animtion plugin configuration file\n"
                       ";Edit this at your own risk\n;Last updated ",
                       0),
            0u);
  EXPECT_NE(text.find("\n;\n[PlugIn]\nAddDescriptiveCommentBlock = 1000\n"), std::string::npos);
  EXPECT_NE(text.find("\nPatchLevel = 278165\n"), std::string::npos);  // written though never read
  EXPECT_NE(text.find("\nMainPalette = -1\n"), std::string::npos);
}

// How lines read: a short key sets the first row that starts with it (a blank line the first
// row), one run of "=" only, numbers as atoi, control characters end a line, long lines arrive in
// pieces, strings keep 248 characters, rows never read keep their values, and with Shift held only
// the scrambled rows are read.
TEST_F(Settings, LinesReadWithTheReadersRules) {
  const struct {
    std::string text;
    int shift;
    std::vector<std::pair<const char*, int32_t>> numbers;
    std::vector<std::pair<const char*, std::string>> strings;
  } cases[] = {
      {"Main = 7\n[PlugIn]\nNoSuchKey = 5\nMainDelay  ==  42\nMainPause= =3\n",
       0,
       {{"MainAlphaTrans", 7}, {"MainDelay", 42}, {"MainPause", 0}, {"MainEffect", 12}},
       {}},
      {"\n", 0, {{"AddDescriptiveCommentBlock", 0}}, {}},
      {"MainPause = 12\x01"
       "34\nMainFontSize = -7abc\nMainPalette = 99999999999\n;MainDelay = 3\n",
       0,
       {{"MainPause", 12}, {"MainFontSize", -7}, {"MainPalette", 2147483647}, {"MainDelay", 5}},
       {}},
      {"MainText = " + std::string(248, 'x') +
           "MainFontName = Arial\nOpenPath = " + std::string(400, 'p') + "\n",
       0,
       {},
       {{"MainText", std::string(248, 'x')},
        {"MainFontName", "Arial"},
        {"OpenPath", std::string(248, 'p')}}},
      {"PatchLevel = 9\nVersionNumber = 3\nUpdateDelay = 40\n",
       0,
       {{"PatchLevel", 1}, {"VersionNumber", 512}, {"UpdateDelay", 40}},
       {}},
      {"MainEffect = 3\nRegistrationName = Someone   \nMainText = hello\n",
       1,
       {{"MainEffect", 12}},
       {{"MainText", "This space for rent..."}, {"RegistrationName", "Someone"}}},
  };
  for (const auto& c : cases) {
    ResetSettings();
    Load(c.text, c.shift);
    for (const auto& [key, value] : c.numbers) EXPECT_EQ(*SettingInteger(key), value) << key;
    for (const auto& [key, value] : c.strings) EXPECT_EQ(SettingString(key), value) << key;
  }
}

TEST_F(Settings, NoFolderMeansNoLoadAndNoSave) {
  SetSettingsFolder("");
  char path[300];
  EXPECT_EQ(SettingsFolderPath("rfdplgm5.ini", path, sizeof path), 0);
  EXPECT_STREQ(path, "");
  *SettingInteger("MainDelay") = 9;
  LoadSettings();
  SaveSettings();
  EXPECT_EQ(*SettingInteger("MainDelay"), 9);
}
