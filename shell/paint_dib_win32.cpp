// PaintPackedDib: a device-dependent copy of the image made in the target's format, copied across
// through a compatible DC. Pictures of 8 bits or fewer realise their own palette first, so that they
// keep their colours on palette displays.
#include "shell/paint_dib_win32.h"

#include <vector>

#include "shell/packed_dib.h"

void PaintPackedDib(HDC dc, int x, int y, MovableHandle handle) {
  if (!handle) return;
  ScopedLock lock(handle);
  if (!lock) return;
  const BitmapInfoHeader* header = reinterpret_cast<const BitmapInfoHeader*>(lock.bytes);
  const BITMAPINFO* info = reinterpret_cast<const BITMAPINFO*>(lock.bytes);

  HPALETTE palette = nullptr;
  HPALETTE previousPalette = nullptr;
  if (header->biBitCount <= 8) {
    const int entries = 1 << header->biBitCount;
    std::vector<uint8_t> storage(sizeof(LOGPALETTE) + entries * sizeof(PALETTEENTRY));
    LOGPALETTE* logical = reinterpret_cast<LOGPALETTE*>(storage.data());
    logical->palVersion = 0x300;
    logical->palNumEntries = static_cast<WORD>(entries);
    const uint8_t* table = lock.bytes + kDibHeaderBytes;
    for (int i = 0; i < entries; ++i) {
      logical->palPalEntry[i].peRed = table[i * 4 + 2];
      logical->palPalEntry[i].peGreen = table[i * 4 + 1];
      logical->palPalEntry[i].peBlue = table[i * 4 + 0];
      logical->palPalEntry[i].peFlags = 0;
    }
    palette = CreatePalette(logical);
    if (palette) {
      previousPalette = SelectPalette(dc, palette, FALSE);
      RealizePalette(dc);
    }
  }

  HBITMAP bitmap = CreateDIBitmap(dc, reinterpret_cast<const BITMAPINFOHEADER*>(header), CBM_INIT,
                                  DibBits(lock.bytes), info, DIB_RGB_COLORS);
  if (bitmap) {
    HDC source = CreateCompatibleDC(dc);
    if (source) {
      HGDIOBJ previous = SelectObject(source, bitmap);
      BitBlt(dc, x, y, header->biWidth, header->biHeight, source, 0, 0, SRCCOPY);
      SelectObject(source, previous);
      DeleteDC(source);
    }
    DeleteObject(bitmap);
  }
  if (palette) {
    SelectPalette(dc, previousPalette, FALSE);
    DeleteObject(palette);
  }
}

void PaintPackedDibInset(HDC dc, MovableHandle handle) { PaintPackedDib(dc, 2, 2, handle); }
