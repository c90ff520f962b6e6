// The pickers' cells and their block: set-up, press, read-back and document lines. The block is a
// movable block {value, saved} whose handle is the control's user data.
#include "controls/direction_picker.h"

#include <cstdio>
#include <cstring>

#include "controls/item_text.h"
#include "documents/settings.h"
#include "platform/memory.h"

namespace {

// SDWDIR has no centre cell, and its cells 3 and 4 are right and left, in that order.
const PickerShape kShapes[] = {
    {kControlShadowPicker,
     "SDWDIR",
     7104,
     8,
     {0, 25, 50, 50, 0, 0, 25, 50},
     {0, 0, 0, 25, 25, 50, 50, 50}},
    {kControlScroll4Picker, "SCRL4D", 7105, 4, {25, 50, 0, 25}, {0, 25, 25, 50}},
    {kControlScroll2Picker, "SCRL2D", 7106, 2, {0, 25}, {0, 0}},
    {kControlScrollHVPicker, "SCRLHV", 7110, 2, {0, 25}, {25, 0}},
};

struct PickerBlock {
  int32_t value;
  int32_t* saved;
};

MovableHandle BlockOf(WindowHandle picker) {
  return static_cast<MovableHandle>(DialogGetUserData(picker));
}

void WriteValueText(WindowHandle picker, int32_t value) {
  char text[16];
  std::snprintf(text, sizeof text, "%u", static_cast<uint32_t>(value));
  DialogSetText(picker, text);
}

}  // namespace

const PickerShape* FindPickerShape(ControlKind kind) {
  for (const PickerShape& shape : kShapes)
    if (shape.kind == kind) return &shape;
  return nullptr;
}

int32_t PickerCellAt(const PickerShape* shape, int32_t x, int32_t y) {
  if (!shape) return -1;
  for (int32_t cell = 0; cell < shape->cellCount; ++cell)
    if (x >= shape->left[cell] && x < shape->left[cell] + kPickerCellSide &&
        y >= shape->top[cell] && y < shape->top[cell] + kPickerCellSide)
      return cell;
  return -1;
}

int PickerSetUp(WindowHandle picker, int32_t value, int32_t* saved) {
  if (!picker || !FindPickerShape(DialogControlKind(picker))) return 0;
  PickerDestroy(picker);
  MovableHandle block = MovableAlloc(sizeof(PickerBlock));
  if (!block) return 0;
  {
    ScopedLock lock(block);
    if (!lock) {
      MovableFree(block);
      return 0;
    }
    const PickerBlock fields = {value, saved};
    std::memcpy(lock.bytes, &fields, sizeof fields);
  }
  DialogSetUserData(picker, block);
  return 1;
}

void PickerReadBack(WindowHandle picker) {
  ScopedLock lock(BlockOf(picker));
  if (!lock) return;
  int translated = 0;
  PickerBlock fields;
  std::memcpy(&fields, lock.bytes, sizeof fields);
  fields.value = static_cast<int32_t>(
      GetDialogItemInt(DialogParent(picker), DialogItemId(picker), &translated, 0));
  std::memcpy(lock.bytes, &fields, sizeof fields);
}

uint32_t PickerPress(WindowHandle picker, int32_t x, int32_t y) {
  const PickerShape* shape = FindPickerShape(DialogControlKind(picker));
  PickerBlock fields;
  {
    ScopedLock lock(BlockOf(picker));
    if (!lock || !shape) return 0;
    std::memcpy(&fields, lock.bytes, sizeof fields);
    const int32_t old = fields.value;
    const int32_t cell = PickerCellAt(shape, x, y);
    if (cell >= 0) fields.value = cell;
    std::memcpy(lock.bytes, &fields, sizeof fields);
    uint32_t repaint = 0;
    if (old >= 0 && old < shape->cellCount) repaint |= 1u << old;
    if (fields.value >= 0 && fields.value < shape->cellCount) repaint |= 1u << fields.value;
    WriteValueText(picker, fields.value);
    if (fields.saved) *fields.saved = fields.value;
    return repaint;
  }
}

int PickerTakeLine(WindowHandle picker, const char* line) {
  const PickerShape* shape = FindPickerShape(DialogControlKind(picker));
  if (!shape || !TagMatches(line, shape->tag)) return 0;
  const char* value = std::strchr(line, '=');
  if (!value) return 0;
  while (*value == '=' || *value == ' ' || *value == '\t') ++value;
  ScopedLock lock(BlockOf(picker));
  if (lock) {
    PickerBlock fields;
    std::memcpy(&fields, lock.bytes, sizeof fields);
    fields.value = ParseAtoi(value);
    std::memcpy(lock.bytes, &fields, sizeof fields);
  }
  return 1;
}

size_t PickerFormatLine(WindowHandle picker, char* line, size_t size) {
  const PickerShape* shape = FindPickerShape(DialogControlKind(picker));
  if (!line || size == 0) return 0;
  line[0] = 0;
  if (!shape) return 0;
  int translated = 0;
  const int n = std::snprintf(
      line, size, "%s%d=%u", shape->tag, DialogItemId(picker),
      GetDialogItemInt(DialogParent(picker), DialogItemId(picker), &translated, 0));
  if (n < 0) {
    line[0] = 0;
    return 0;
  }
  return static_cast<size_t>(n) < size ? static_cast<size_t>(n) : size - 1;
}

int PickerValue(WindowHandle picker, int32_t* value) {
  ScopedLock lock(BlockOf(picker));
  if (!lock) return 0;
  PickerBlock fields;
  std::memcpy(&fields, lock.bytes, sizeof fields);
  if (value) *value = fields.value;
  return 1;
}

void PickerDestroy(WindowHandle picker) {
  if (!picker) return;
  MovableHandle block = BlockOf(picker);
  DialogSetUserData(picker, nullptr);
  MovableFree(block);
}
