// The direction pickers: 25 by 25 pixel cells on a 75 by 75 grid, one value (the selected cell)
// in a movable block kept in the control's user data with the address of the setting it mirrors.
// The window text holds the value as decimal too. These procedures are the pickers' behaviour on
// any platform; painting is the window layer's.
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/dialog.h"

constexpr int32_t kPickerCellSide = 25;
constexpr int32_t kPickerGridSide = 75;

struct PickerShape {
  ControlKind kind;
  const char* tag;
  int32_t strip;  // the bitmap resource with one picture per cell
  int32_t cellCount;
  int32_t left[8];
  int32_t top[8];
};

// The shape of a picker kind, or null for other kinds.
const PickerShape* FindPickerShape(ControlKind kind);
// The cell that holds (x, y), in number order, or -1.
int32_t PickerCellAt(const PickerShape* shape, int32_t x, int32_t y);

// Set-up: allocates the block with `value` and `saved`. Returns 0 when the block can't be made;
// the picker then holds no value.
int PickerSetUp(WindowHandle picker, int32_t value, int32_t* saved);
// Sets the held value from the window text.
void PickerReadBack(WindowHandle picker);
// A press at (x, y): selects the cell there, if any, then writes the value to the window text and
// the setting. Returns the cells to repaint as a bit mask (old and new value).
uint32_t PickerPress(WindowHandle picker, int32_t x, int32_t y);
// Takes a document line: the tag, "=" and a value that becomes the held value (setting and text
// untouched). Returns 1 when taken.
int PickerTakeLine(WindowHandle picker, const char* line);
// The picker's document line: its tag and id, "=" and the value of its window text. Returns the
// length (0 when `picker` is not a picker).
size_t PickerFormatLine(WindowHandle picker, char* line, size_t size);
// The held value; 0 when there is none.
int PickerValue(WindowHandle picker, int32_t* value);
// Frees the block and clears the user data.
void PickerDestroy(WindowHandle picker);
