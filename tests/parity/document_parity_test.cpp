// Loads the document that the Windows build wrote under Wine, line ends and all, and compares the
// controls' state with the one the Windows run recorded.
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "controls/page_setup.h"
#include "documents/effect_document.h"
#include "documents/settings.h"
#include "tests/support/value_dialog.h"

TEST(DocumentParity, ADocumentFromWindowsLoadsTheSameControls) {
  const char* dir = std::getenv("GM5_PARITY_DIR");
  ASSERT_NE(dir, nullptr) << "GM5_PARITY_DIR must name the Windows run's parity folder";
  std::ifstream stateFile(std::string(dir) + "/document-state.txt");
  std::vector<std::string> expected;
  for (std::string line; std::getline(stateFile, line);) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    expected.push_back(line);
  }
  ASSERT_FALSE(expected.empty());
  ResetSettings();
  WindowHandle dialog = CreateValueDialog();
  ASSERT_NE(dialog, nullptr);
  AddTestFonts(dialog);
  LoadDocument(dialog, (std::string(dir) + "/document.gm5").c_str());
  const std::vector<std::string> loaded = DialogState(dialog);
  ASSERT_EQ(loaded.size(), expected.size());
  for (size_t i = 0; i < loaded.size(); ++i) {
    const size_t held = expected[i].find(" held ");
    // Pickers take the held value only; their text waits for the read-back.
    if (held != std::string::npos)
      EXPECT_EQ(loaded[i].substr(loaded[i].find(" held ")), expected[i].substr(held));
    else
      EXPECT_EQ(loaded[i], expected[i]);
  }
  DialogDestroy(dialog);
  ResetSettings();
}
