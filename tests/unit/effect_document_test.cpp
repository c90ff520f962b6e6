#include "documents/effect_document.h"

#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "controls/page_setup.h"
#include "controls/value_controls.h"
#include "documents/settings.h"
#include "tests/support/value_dialog.h"

namespace {

std::vector<std::string> g_shown;
void Record(WindowHandle, const char* text) {
  g_shown.push_back(text);
}

class Documents : public testing::Test {
 protected:
  void SetUp() override {
    folder_ = MakeTempFolder("gm5-document-test");
    ResetSettings();
    g_shown.clear();
    SetDocumentMessageShower(Record);
    dialog_ = CreateValueDialog();
    ASSERT_NE(dialog_, nullptr);
    AddTestFonts(dialog_);
  }
  void TearDown() override {
    DialogDestroy(dialog_);
    SetDocumentMessageShower(nullptr);
    ResetSettings();
  }
  std::string Write(const std::string& name, const std::string& text) {
    const std::string path = folder_ + name;
    std::ofstream(path, std::ios::binary) << text;
    return path;
  }
  static std::string Read(const std::string& path) {
    std::stringstream text;
    text << std::ifstream(path).rdbuf();
    return text.str();
  }
  std::string folder_;
  WindowHandle dialog_ = nullptr;
};

const char kHead[] =
    ";This is a document created by Glyph Motion 5 Plugin by Cobalt Lanternary - do not edit.\n";

}  // namespace

// A document restores every control; it starts with its head and the controls in id order, ends
// on its end line, and a save keeps the file it replaces as a backup.
TEST_F(Documents, WriteThenReadRestoresEveryControlAndKeepsABackup) {
  const std::string path = folder_ + "all.gm5";
  ASSERT_EQ(SaveDocument(dialog_, path.c_str()), 1);
  const std::string first = Read(path);
  EXPECT_EQ(first.rfind(std::string(kHead) + ";Start of document\nCHKBOX10=1\nSPNBTN11=5\n", 0),
            0u);
  EXPECT_EQ(first.substr(first.size() - 17), ";End of document\n");
  ChangeEveryControl(dialog_, 3);
  const std::vector<std::string> changed = DialogState(dialog_);
  ASSERT_EQ(SaveDocument(dialog_, path.c_str()), 1);
  EXPECT_EQ(Read(path + ".bak"), first);

  WindowHandle other = CreateValueDialog();
  ASSERT_NE(other, nullptr);
  AddTestFonts(other);
  ASSERT_NE(DialogState(other), changed);
  LoadDocument(other, path.c_str());
  EXPECT_EQ(DialogTakePostedMessage(other), kMessageAfterLoad);
  const std::vector<std::string> loaded = DialogState(other);
  ASSERT_EQ(loaded.size(), changed.size());
  for (size_t i = 0; i < loaded.size(); ++i) {
    // A picker takes the held value only; its text and setting wait for the read-back.
    const size_t held = changed[i].find(" held ");
    if (held != std::string::npos) {
      EXPECT_EQ(loaded[i].substr(loaded[i].find(" held ")), changed[i].substr(held));
    } else {
      EXPECT_EQ(loaded[i], changed[i]);
    }
  }
  EXPECT_TRUE(g_shown.empty());
  DialogDestroy(other);
}

TEST_F(Documents, LinesAreClampedTakenInAnyOrderAndTheLastWins) {
  const std::string path = Write("order.gm5", std::string(kHead) +
                                                  "  \tSPNBTN108=999\r\n"
                                                  "CHKBOX123=0\n"
                                                  "SPNBTN112=10\n"
                                                  "SPNBTN112=20\n"
                                                  "FNTBOX53=times\n");
  LoadDocument(dialog_, path.c_str());
  EXPECT_EQ(*SettingInteger("Style000FillOpacity"), 255);
  EXPECT_EQ(*SettingInteger("Style000OutlineEnable"), 0);
  EXPECT_EQ(*SettingInteger("Style000Frames"), 20);
  EXPECT_STREQ(SettingString("MainFontName"), "Times New Roman");
}

// Hostile lines are passed over; a file without the head, a missing file and a folder that cannot
// be written show their message and post nothing; none of them changes a control.
TEST_F(Documents, HostileLinesAndBadFilesChangeNothing) {
  const std::vector<std::string> before = DialogState(dialog_);
  std::string text = std::string(kHead) +
                     "CHKBOX112=1\n"   // wrong word for a spin edit
                     "SPNBTN1198=4\n"  // nobody has this id
                     "SPNBTN-5=4\n"
                     "SPNBTN112\n"            // no "="
                     "MATLBT100=solid 255\n"  // materials are not here yet
                     "SPN\n=\n;SPNBTN112=3\n";
  text += "TXTFLD999=" + std::string(20000, 'z') + "\n";
  for (int i = 0; i < 4096; ++i) text += static_cast<char>((i * 131 + 7) & 0xFF);
  for (const std::string& body : {text + "\n", std::string(), std::string(kHead)}) {
    LoadDocument(dialog_, Write("loaded.gm5", body).c_str());
    EXPECT_EQ(DialogTakePostedMessage(dialog_), kMessageAfterLoad);
  }
  EXPECT_TRUE(g_shown.empty());
  LoadDocument(dialog_, Write("damaged.gm5", "Glyph Motion 5 Plugin\nSPNBTN112=3\n").c_str());
  LoadDocument(dialog_, (folder_ + "missing.gm5").c_str());
  EXPECT_EQ(SaveDocument(dialog_, (folder_ + "no/such/folder.gm5").c_str()), 0);
  EXPECT_EQ(g_shown,
            (std::vector<std::string>{kDocumentDamaged, kDocumentOpenError, kDocumentCreateError}));
  EXPECT_EQ(DialogTakePostedMessage(dialog_), 0u);
  EXPECT_EQ(DialogState(dialog_), before);
}
