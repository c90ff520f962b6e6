// A colour button click served by the reference host: the request it checks, the swatch cube, and
// a cancel when the host's script has no colour left.
#include <cstdio>
#include <string>

#include <gtest/gtest.h>

#include "controls/page_setup.h"
#include "controls/value_controls.h"
#include "documents/settings.h"
#include "host/host_session.h"
#include "shell/host_interface.h"

namespace {

HostSession* g_session = nullptr;
uint64_t Serve(void* object, int32_t opcode, uint64_t a, uint64_t b) {
  return ServeHostCall(g_session, object, opcode, a, b);
}

std::string ReadAll(std::FILE* file) {
  std::string text;
  std::rewind(file);
  for (int c; (c = std::fgetc(file)) != EOF;) text += static_cast<char>(c);
  return text;
}

}  // namespace

TEST(ColourButtonHost, TheHostChoosesOrCancels) {
  ResetSettings();
  HostSession session;
  g_session = &session;
  session.log = std::tmpfile();
  ASSERT_NE(session.log, nullptr);
  ASSERT_EQ(ReadHostAnswerLine(&session, "colour 0x00FF00"), 1);
  HostRecord record = {};
  record.version = kInterfaceVersion;
  record.service = Serve;
  CurrentHost = &record;
  SetColourChooser(nullptr);

  WindowHandle dialog = CreateValueDialog();
  ASSERT_NE(dialog, nullptr);
  DialogKillTimer(dialog, kUpdateTimerId);
  DialogNotify(dialog, 171, 0);  // Snow's outline colour
  EXPECT_EQ(*SettingInteger("Style002OutlineColor"), 0x00FF00);
  char text[16];
  DialogGetText(DialogItem(dialog, 171), text, sizeof text);
  EXPECT_STREQ(text, "65280");
  EXPECT_EQ(DialogTimerPeriod(dialog, kUpdateTimerId), 250u);

  DialogKillTimer(dialog, kUpdateTimerId);
  DialogNotify(dialog, 171, 0);  // the script has no colour left: a cancel
  EXPECT_EQ(*SettingInteger("Style002OutlineColor"), 0x00FF00);
  EXPECT_EQ(DialogTimerPeriod(dialog, kUpdateTimerId), 0u);

  const std::string log = ReadAll(session.log);
  EXPECT_NE(log.find("swatches=cube"), std::string::npos) << log;
  EXPECT_NE(log.find("error=cancelled"), std::string::npos) << log;
  EXPECT_EQ(log.find("bad-record"), std::string::npos) << log;
  CurrentHost = nullptr;
  DialogDestroy(dialog);
  std::fclose(session.log);
  ResetSettings();
}
