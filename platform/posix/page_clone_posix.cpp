// Effect pages on the headless model: without dialog resources a page's controls are made from
// its page table, as the resource's twins would be, and hidden. Material buttons get their record
// here, and the model frees it with the dialog.
#include "controls/page_setup.h"
#include "controls/value_controls.h"
#include "materials/material_button.h"
#include "platform/dialog.h"

namespace {

constexpr int32_t kPageResourceBase = 7400;

void HideItem(WindowHandle dialog, int32_t id) {
  DialogShowItem(DialogItem(dialog, id), 0);
}

}  // namespace

int DialogClonePage(WindowHandle dialog, int32_t resourceId) {
  const int32_t style = resourceId - kPageResourceBase;
  if (!dialog || style < 0 || style >= static_cast<int32_t>(kPageTables.size())) return 0;
  const PageTable& page = kPageTables[style];
  if (!AddTableControls(dialog, page, 1)) return 0;
  for (int32_t i = 0; i < page.count; ++i) {
    const PageControl& c = page.controls[i];
    HideItem(dialog, c.id);
    if (HasLabel(c)) HideItem(dialog, c.id + 1);
    if (HasUpDown(c)) HideItem(dialog, c.id + kUpDownIdOffset);
  }
  return 1;
}

int DialogCreateMaterial(WindowHandle button, uint32_t creationColour) {
  if (!button || DialogControlKind(button) != kControlMaterialButton) return 0;
  if (!ButtonMaterialHandle(button))
    DialogSetUserData(button, CreateButtonMaterial(creationColour));
  return ButtonMaterialHandle(button) != nullptr;
}
