#include <cstring>
#include <string>

#include <gtest/gtest.h>

#include "controls/page_setup.h"
#include "controls/value_controls.h"
#include "materials/fountain_button.h"
#include "materials/fountain_markers.h"

// A headless fountain button writes its FOUNTB line and a second button takes it back whole.
TEST(FountainButtonRow, HeadlessLineMovesTheRecordBetweenButtons) {
  InstallControlKinds();
  const ControlKindProcs* row = DialogKindProcs(kControlFountainButton);
  ASSERT_NE(row, nullptr);
  WindowHandle dialog = DialogCreate();
  WindowHandle a = DialogAddControl(dialog, 336, kControlFountainButton, "");
  WindowHandle b = DialogAddControl(dialog, 337, kControlFountainButton, "");
  ASSERT_TRUE(row->create(a, 0) && row->create(b, 0));
  {
    ScopedLock lock(static_cast<MovableHandle>(DialogGetUserData(a)));
    ASSERT_TRUE(lock);
    FountainGradient* g = reinterpret_cast<FountainGradient*>(lock.bytes);
    ASSERT_EQ(g->markerCount, 7u);
    ASSERT_TRUE(AddFountainMarker(g, 100, 0x0000FF));
  }
  char line[kControlLineSize];
  const size_t length = FormatControlLine(a, line, sizeof line);
  ASSERT_EQ(length, std::strlen("FOUNTB336=") + 2 * 585);
  EXPECT_EQ(FormatControlLine(a, line, 100), 0u) << "a line that does not fit is not cut";
  FormatControlLine(a, line, sizeof line);
  EXPECT_FALSE(row->takeLine(b, "MATLBT337=00"));
  ASSERT_TRUE(row->takeLine(b, line));
  {
    ScopedLock la(static_cast<MovableHandle>(DialogGetUserData(a)));
    ScopedLock lb(static_cast<MovableHandle>(DialogGetUserData(b)));
    EXPECT_EQ(std::memcmp(la.bytes, lb.bytes, kFountainSize), 0);
    EXPECT_EQ(reinterpret_cast<FountainGradient*>(lb.bytes)->markerCount, 8u);
  }
  row->destroy(a);
  row->destroy(b);
  EXPECT_EQ(DialogGetUserData(a), nullptr);
  DialogDestroy(dialog);
}
