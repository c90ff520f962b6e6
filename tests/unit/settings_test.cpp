#include "documents/settings.h"

#include <cstdio>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>

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
    std::ifstream in(path);
    std::stringstream all;
    all << in.rdbuf();
    return all.str();
  }
  std::string folder_;
};

}  // namespace

TEST_F(Settings, SaveThenLoadGivesBackEveryReadableRow) {
  for (int i = 0; i < kSettingCount; ++i) {
    const SettingEntry& e = SettingTable[i];
    if (e.flags & kSettingString)
      std::snprintf(static_cast<char*>(e.value), kSettingTextSize, "value %d", i);
    else
      *static_cast<int32_t*>(e.value) = i * 7919 + 1000;
  }
  SaveSettings();
  ResetSettings();
  LoadSettings();
  for (int i = 0; i < kSettingCount; ++i) {
    const SettingEntry& e = SettingTable[i];
    if (e.flags & kSettingNeverRead) {
      EXPECT_EQ(*static_cast<int32_t*>(e.value), std::strcmp(e.key, "PatchLevel") ? 512 : 1);
    } else if (e.flags & kSettingString) {
      EXPECT_STREQ(static_cast<char*>(e.value), ("value " + std::to_string(i)).c_str()) << e.key;
    } else if (std::strcmp(e.key, "Style002Frames") != 0) {
      EXPECT_EQ(*static_cast<int32_t*>(e.value), i * 7919 + 1000) << e.key;
    }
  }
  const std::string text = Read(Path());
  EXPECT_EQ(text.rfind(";Cobalt Lanternary animtion plugin configuration file\n"
                       ";Edit this at your own risk\n;Last updated ",
                       0),
            0u);
  EXPECT_NE(text.find("\n;\n[PlugIn]\nAddDescriptiveCommentBlock = 1000\n"), std::string::npos);
  EXPECT_NE(text.find("\nPatchLevel = 278165\n"), std::string::npos);  // written though never read
}

TEST_F(Settings, NegativeNumbersAreWrittenUnsignedAndComeBackSaturated) {
  *SettingInteger("MainPalette") = -1;
  SaveSettings();
  EXPECT_NE(Read(Path()).find("\nMainPalette = 4294967295\n"), std::string::npos);
  LoadSettings();
  EXPECT_EQ(*SettingInteger("MainPalette"), 2147483647);
}

TEST_F(Settings, SavingKeepsTheOldFileAsBackup) {
  SaveSettings();
  const std::string first = Read(Path());
  *SettingInteger("MainDelay") = 77;
  SaveSettings();
  EXPECT_EQ(Read(Path() + ".bak"), first);
  EXPECT_NE(Read(Path()).find("MainDelay = 77\n"), std::string::npos);
}

TEST_F(Settings, ShortKeysMatchTheFirstRowThatStartsWithThem) {
  Load("Main = 7\n[PlugIn]\nNoSuchKey = 5\nMainDelay  ==  42\nMainPause= =3\n");
  EXPECT_EQ(*SettingInteger("MainAlphaTrans"), 7);
  EXPECT_EQ(*SettingInteger("MainDelay"), 42);
  EXPECT_EQ(*SettingInteger("MainPause"), 0);  // one run of "=" only
  EXPECT_EQ(*SettingInteger("MainEffect"), 12);
  // A key of no characters is a prefix of every key: a blank line sets the first row.
  Load("\n");
  EXPECT_EQ(*SettingInteger("AddDescriptiveCommentBlock"), 0);
}

TEST_F(Settings, LongLinesArriveInPiecesAndStringsKeep260Characters) {
  const std::string text(248, 'x');
  Load("MainText = " + text + "MainFontName = Arial\n");
  EXPECT_EQ(std::string(SettingString("MainText")), text);
  EXPECT_STREQ(SettingString("MainFontName"), "Arial");
  Load("OpenPath = " + std::string(400, 'p') + "\n");
  EXPECT_EQ(std::strlen(SettingString("OpenPath")), 248u);
}

TEST_F(Settings, RowsNeverReadKeepTheirValues) {
  Load("PatchLevel = 9\nVersionNumber = 3\nUpdateDelay = 40\n");
  EXPECT_EQ(*SettingInteger("PatchLevel"), 1);
  EXPECT_EQ(*SettingInteger("VersionNumber"), 512);
  EXPECT_EQ(*SettingInteger("UpdateDelay"), 40);
}

TEST_F(Settings, ShiftReadsOnlyTheScrambledRows) {
  Load("MainEffect = 3\nRegistrationName = Someone   \nMainText = hello\n", 1);
  EXPECT_EQ(*SettingInteger("MainEffect"), 12);
  EXPECT_STREQ(SettingString("MainText"), "This space for rent...");
  EXPECT_STREQ(SettingString("RegistrationName"), "Someone");
}

TEST_F(Settings, ControlCharactersEndALineAndNumbersReadAsAtoi) {
  Load(
      "MainPause = 12\x01"
      "34\nMainFontSize = -7abc\nMainPalette = 99999999999\n;MainDelay = 3\n");
  EXPECT_EQ(*SettingInteger("MainPause"), 12);
  EXPECT_EQ(*SettingInteger("MainFontSize"), -7);
  EXPECT_EQ(*SettingInteger("MainPalette"), 2147483647);
  EXPECT_EQ(*SettingInteger("MainDelay"), 5);
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
