// The string table: every id gives the text of the one list (on Windows through the compiled
// string table), a missing id gives the fallback, and the buffer is shared between calls.
#include <string>

#include <gtest/gtest.h>

#include "shell/messages.h"

TEST(LoadMessage, GivesTheTextsOfTheListOrTheFallbackInOneBuffer) {
  EXPECT_STREQ(LoadMessage(kMessageReadError), "Error reading file");
  EXPECT_STREQ(LoadMessage(kMessageMemoryError), "Memory error");
  EXPECT_STREQ(LoadMessage(kMessageWriteError), "Error writing file");
  // The palette names stand at 1600 to 1608 in the order of the palette box.
  std::string joined;
  for (int32_t id = kMessagePaletteBlackWhite; id <= kMessagePaletteGray256; ++id) {
    joined += std::string(joined.empty() ? "" : ";") + LoadMessage(id);
    EXPECT_STREQ(LoadMessage(id), FindMessageText(id)) << id;
  }
  EXPECT_EQ(joined,
            "Black and white;Sixteen-color Windows;32-color orthogonal;64-color orthogonal;"
            "128-color orthogonal;216-color safe;256-color orthogonal;256-color with gray;"
            "256 gray levels");
  const char* first = LoadMessage(kMessageReadError);
  EXPECT_EQ(LoadMessage(5), first);
  EXPECT_STREQ(first, "String table error - this application may be damaged");
  EXPECT_STREQ(LoadMessage(-1), kMissingMessageText);
  EXPECT_STREQ(LoadMessage(70000), kMissingMessageText);
  EXPECT_EQ(FindMessageText(1609), nullptr);
}
