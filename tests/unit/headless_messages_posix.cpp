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
  ShowMessage(nullptr, std::string(3000, 'x').c_str());
  EXPECT_EQ(std::string(LastShownMessage()), std::string(1023, 'x'));
}
