// The key colour from the alpha switches and the page's Background control.
#include "effects/key_colour.h"

#include "controls/value_controls.h"
#include "documents/settings.h"
#include "materials/material_button.h"

namespace {
constexpr int32_t kIdAlphaTransparency = 62, kIdAlphaBackground = 63;
}

int32_t PageKeyColour(WindowHandle dialog, int32_t mode, int32_t backgroundId) {
  if (mode) return -1;
  if (DialogGetCheck(DialogItem(dialog, kIdAlphaTransparency)) &&
      DialogGetCheck(DialogItem(dialog, kIdAlphaBackground))) {
    const int32_t* grey = SettingInteger("AlphaGreyBack");
    return grey ? *grey : -1;
  }
  WindowHandle background = DialogItem(dialog, backgroundId);
  if (DialogControlKind(background) == kControlColourButton) {
    int translated;
    return static_cast<int32_t>(GetDialogItemInt(dialog, backgroundId, &translated, 0));
  }
  const Material* material = MaterialForButton(background);
  if (!material) return -1;
  const int32_t colour = static_cast<int32_t>(material->solidColour);
  MovableUnlock(ButtonMaterialHandle(background));
  return colour;
}
