#include <gtest/gtest.h>

#include "controls/page_setup.h"
#include "materials/material_button.h"

TEST(MaterialButton, EffectsFindTheRecordThroughTheButton) {
  InstallControlKinds();
  WindowHandle dialog = DialogCreate();
  WindowHandle fill = DialogAddControl(dialog, 100, kControlMaterialButton, "Fill");
  DialogSetUserData(fill, CreateButtonMaterial(0xBD7E40));
  Material* m = MaterialForButton(DialogItem(dialog, 100));
  ASSERT_NE(m, nullptr);
  EXPECT_EQ(m->solidColour, 0xBD7E40u);
  EXPECT_EQ(MovableUnlock(ButtonMaterialHandle(fill)), 0) << "one lock, released by the caller";
  EXPECT_EQ(MaterialForButton(DialogAddControl(dialog, 102, kControlMaterialButton, "")), nullptr);
  DialogDestroy(dialog);
}
