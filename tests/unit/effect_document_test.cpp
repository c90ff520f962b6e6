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
  std::string folder_;
  WindowHandle dialog_ = nullptr;
};

const char kHead[] =
    ";This is a document created by Glyph Motion 5 Plugin by Cobalt Lanternary - do not edit.\n";

}  // namespace

TEST_F(Documents, WriteThenReadRestoresEveryControl) {
  ChangeEveryControl(dialog_, 3);
  const std::vector<std::string> changed = DialogState(dialog_);
  const std::string path = folder_ + "all.gm5";
  ASSERT_EQ(SaveDocument(dialog_, path.c_str()), 1);

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
    const std::string held = changed[i].substr(changed[i].find('=') + 1);
    if (changed[i].find(" held ") != std::string::npos)
      EXPECT_EQ(loaded[i].substr(loaded[i].find(" held ")), held.substr(held.find(" held ")));
    else
      EXPECT_EQ(loaded[i], changed[i]);
  }
  EXPECT_TRUE(g_shown.empty());
  DialogDestroy(other);
}

TEST_F(Documents, FileShapeAndBackup) {
  const std::string path = folder_ + "shape.gm5";
  ASSERT_EQ(SaveDocument(dialog_, path.c_str()), 1);
  DialogSetText(DialogItem(dialog_, 112), "33");
  ASSERT_EQ(SaveDocument(dialog_, path.c_str()), 1);
  std::ifstream in(path), backup(path + ".bak");
  std::stringstream now, before;
  now << in.rdbuf();
  before << backup.rdbuf();
  EXPECT_EQ(now.str().rfind(std::string(kHead) + ";Start of document\nCHKBOX10=1\nSPNBTN11=5\n", 0),
            0u);
  EXPECT_NE(now.str().find("\nSPNBTN112=33\n"), std::string::npos);
  EXPECT_NE(before.str().find("\nSPNBTN112=64\n"), std::string::npos);
  EXPECT_EQ(now.str().substr(now.str().size() - 17), ";End of document\n");
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

TEST_F(Documents, HostileLinesChangeNothing) {
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
  text += "\n";
  LoadDocument(dialog_, Write("hostile.gm5", text).c_str());
  EXPECT_EQ(DialogState(dialog_), before);
  EXPECT_EQ(DialogTakePostedMessage(dialog_), kMessageAfterLoad);
}

TEST_F(Documents, BadFilesShowTheirMessageAndChangeNothing) {
  const std::vector<std::string> before = DialogState(dialog_);
  LoadDocument(dialog_, Write("damaged.gm5", "Glyph Motion 5 Plugin\nSPNBTN112=3\n").c_str());
  LoadDocument(dialog_, (folder_ + "missing.gm5").c_str());
  EXPECT_EQ(SaveDocument(dialog_, (folder_ + "no/such/folder.gm5").c_str()), 0);
  EXPECT_EQ(g_shown,
            (std::vector<std::string>{kDocumentDamaged, kDocumentOpenError, kDocumentCreateError}));
  EXPECT_EQ(DialogTakePostedMessage(dialog_), 0u);
  EXPECT_EQ(DialogState(dialog_), before);

  LoadDocument(dialog_, Write("empty.gm5", "").c_str());
  LoadDocument(dialog_, Write("head.gm5", kHead).c_str());
  EXPECT_EQ(DialogTakePostedMessage(dialog_), kMessageAfterLoad);
  EXPECT_EQ(DialogTakePostedMessage(dialog_), kMessageAfterLoad);
  EXPECT_EQ(DialogState(dialog_), before);
}
