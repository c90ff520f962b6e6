// The main dialog's own painting: the sample picture (control 25), the size label (control 12)
// and the items of the font box (control 53), each of which holds a block with its font's
// description. Windows-only; the dialog procedure routes WM_DRAWITEM and WM_MEASUREITEM here.
#pragma once

#include <windows.h>

// Paints the sample through the selected row's preview, fitted and centred on the key colour; a
// row without a picture leaves the area in system colour 23.
void PaintSample(HWND dialog, const DRAWITEMSTRUCT* item);
// Paints the size label: its text on system colour 14 (the literal brush 15), in a shadow frame.
void PaintSizeLabel(const DRAWITEMSTRUCT* item);
// Paints one item of the font box: the family's name in its own face where it has letters.
void PaintFontItem(const DRAWITEMSTRUCT* item);

// Fills the font box with the families of the display, each item with its block. Returns the
// number of items.
int FillFontBox(HWND dialog, HWND box);
// Frees every item's block; safe to call twice.
void FreeFontItems(HWND box);
