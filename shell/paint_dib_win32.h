// Painting Packed DIBs on a Windows device context, at their own size. Windows-only: the dialogs
// use it for samples and previews.
#pragma once

#include <windows.h>

#include "platform/memory.h"

// Paints the image with its top-left corner at (x, y). A null handle or a failed lock paints nothing.
void PaintPackedDib(HDC dc, int x, int y, MovableHandle handle);
// The same at (2, 2), inside the sunken frame of the picture previews.
void PaintPackedDibInset(HDC dc, MovableHandle handle);
