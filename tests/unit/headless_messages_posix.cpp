// Without a screen a box is recorded and answered as dismissed.
#include <string>

#include <gtest/gtest.h>

#include "shell/messages.h"

TEST(HeadlessMessages, RecordTheTextAndNeverAnswerYes) {
  EXPECT_EQ(ShowMessage(nullptr, "Memory error"), kAnswerOk);
  EXPECT_STREQ(LastShownMessage(), "Memory error");
  EXPECT_EQ(AskYesNo(nullptr, "Replace the file?"), kAnswerCancel);
  EXPECT_STREQ(LastShownMessage(), "Replace the file?");
  ShowMessage(nullptr, nullptr);
  EXPECT_STREQ(LastShownMessage(), "");
  std::string longText(3000, 'x');
  ShowMessage(nullptr, longText.c_str());
  EXPECT_EQ(std::string(LastShownMessage()), longText.substr(0, 1023));
}
