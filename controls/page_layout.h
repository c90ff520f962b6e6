// The layout of the effect pages: where each control of a page table stands, in dialog units of
// the main dialog's client area, with the window class, style and text its dialog resource gives
// it. Labels stand left of their controls, in two or three columns of the page area below the
// sample. The page resources are written from this (FormatPageResources); nothing here allocates.
#pragma once

#include <cstdint>
#include <string>

#include "controls/page_tables.h"

// The page area of the main dialog, in dialog units: left, top, right, bottom.
constexpr int32_t kPageAreaLeft = 8;
constexpr int32_t kPageAreaTop = 174;
constexpr int32_t kPageAreaRight = 308;
constexpr int32_t kPageAreaBottom = 356;
// A page holds at most this many windows: controls, labels and updowns.
constexpr int32_t kPageMaxPlacements = 96;

// One window of a page resource.
struct PagePlacement {
  int32_t id;
  ControlKind kind;         // kControlLabel for a label, kControlUpDown for an updown
  const char* windowClass;  // as the resource names it
  uint32_t style;
  char text[40];
  int32_t x, y, cx, cy;  // dialog units
};

// The window class and style a control of `kind` has in a page resource.
const char* PageWindowClass(ControlKind kind);
uint32_t PageWindowStyle(ControlKind kind);

// Lays out a page into `out` in resource order: each label, then its control, then the updown.
// Returns the number of windows, or 0 when the page does not fit its area in three columns.
int32_t LayoutPage(const PageTable& page, PagePlacement* out, int32_t capacity);

// The text of the resource script that holds the dialogs of all twenty-one pages, 7400 + style.
// Returns 0 when a page does not fit.
int FormatPageResources(std::string* script);
