// The Windows parts of the rows: the value kinds and pickers are standard controls subclassed with
// their kind's procedure, the colour button is owner-drawn, and the material button, the fountain
// button and the animation picker are window classes of their own that make and free their
// records themselves.
#include "controls/control_kinds.h"

#include <windows.h>

#include "controls/animation_picker_win32.h"
#include "materials/fountain_button_win32.h"
#include "materials/material_button_win32.h"

void AddKindWindowParts(ControlKindProcs* row) {
  if (void* procedure = ValueKindProcedure(row->kind)) row->procedure = procedure;
  if (void* procedure = PickerKindProcedure(row->kind)) row->procedure = procedure;
  if (row->kind == kControlColourButton) row->drawItem = PaintColourButton;
  if (row->kind == kControlMaterialButton) {
    row->windowClass = kMaterialButtonClass;
    row->create = CreateMaterialForWindow;
    row->takeLine = nullptr;  // the window takes and writes its document line itself
    row->formatLine = nullptr;
    row->destroy = nullptr;  // the window frees its record when it is destroyed
  }
  if (row->kind == kControlAnimationPicker) {
    row->windowClass = kAnimationPickerClass;
    row->destroy = nullptr;  // the window frees its block and state when it is destroyed
  }
  if (row->kind == kControlFountainButton) {
    // The window makes its record from its own file, takes and writes its document line and
    // frees the record (with its strip picture) when it is destroyed.
    row->windowClass = kFountainButtonClass;
    row->create = CreateFountainForWindow;
    row->takeLine = nullptr;
    row->formatLine = nullptr;
    row->destroy = nullptr;
  }
}

int RegisterKindWindowClasses() {
  const int material = RegisterMaterialButtonClass();
  const int animation = RegisterAnimationPickerClass();
  const int fountain = RegisterFountainButtonClass();
  return material && animation && fountain;
}
