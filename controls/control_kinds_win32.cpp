// The Windows parts of the rows: the value kinds and pickers are standard controls subclassed with
// their kind's procedure, the colour button is owner-drawn, and the material button is a window
// class of its own that makes and frees its record itself.
#include "controls/control_kinds.h"

#include <windows.h>

#include "materials/material_button_win32.h"

void AddKindWindowParts(ControlKindProcs* row) {
  if (void* procedure = ValueKindProcedure(row->kind)) row->procedure = procedure;
  if (void* procedure = PickerKindProcedure(row->kind)) row->procedure = procedure;
  if (row->kind == kControlColourButton) row->drawItem = PaintColourButton;
  if (row->kind == kControlMaterialButton) {
    row->windowClass = kMaterialButtonClass;
    row->create = CreateMaterialForWindow;
    row->destroy = nullptr;  // the window frees its record when it is destroyed
  }
}

int RegisterKindWindowClasses() {
  return RegisterMaterialButtonClass();
}
