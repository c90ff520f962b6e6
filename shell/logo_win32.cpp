// The animated logo: a dark band with a sweep of light, and the letters "GM5", each bobbing on a
// sine wave and shifting hue with its own phase. Drawn off screen and copied in one blit, so the
// control never flickers; every GDI object lives only within one paint.
#include "shell/logo_win32.h"

#include <cmath>

namespace {

int logoStep = 0;  // one dialog at a time; the step survives only for looks

COLORREF Hue(double turn) {
  const double r = 0.5 + 0.5 * std::cos(6.283185307179586 * turn);
  const double g = 0.5 + 0.5 * std::cos(6.283185307179586 * (turn - 1.0 / 3));
  const double b = 0.5 + 0.5 * std::cos(6.283185307179586 * (turn - 2.0 / 3));
  return RGB(static_cast<int>(80 + 175 * r), static_cast<int>(80 + 175 * g),
             static_cast<int>(80 + 175 * b));
}

void DrawLogo(HDC dc, int width, int height, int step) {
  // Background: a vertical gradient of dark blue, in bands of four pixels.
  for (int y = 0; y < height; y += 4) {
    RECT band = {0, y, width, y + 4};
    HBRUSH brush = CreateSolidBrush(RGB(16, 20 + y * 40 / height, 48 + y * 60 / height));
    FillRect(dc, &band, brush);
    DeleteObject(brush);
  }
  // A sweep of light that crosses the band every 80 steps.
  const int sweep = (step * width / 40) % (width * 2) - width / 2;
  for (int i = 0; i < 6; ++i) {
    HPEN pen = CreatePen(PS_SOLID, 1, RGB(60 + i * 12, 70 + i * 12, 110 + i * 12));
    HGDIOBJ old = SelectObject(dc, pen);
    MoveToEx(dc, sweep + i, 0, nullptr);
    LineTo(dc, sweep + i - height / 2, height);
    SelectObject(dc, old);
    DeleteObject(pen);
  }
  HFONT font = CreateFontA(-(height * 3 / 4), 0, 0, 0, FW_BOLD, 0, 0, 0, ANSI_CHARSET, 0, 0,
                           ANTIALIASED_QUALITY, 0, "Arial");
  HGDIOBJ oldFont = SelectObject(dc, font);
  SetBkMode(dc, TRANSPARENT);
  static const char kLetters[] = "GM5";
  SIZE whole = {};
  GetTextExtentPoint32A(dc, kLetters, 3, &whole);
  int x = (width - whole.cx) / 2;
  for (int i = 0; i < 3; ++i) {
    SIZE letter = {};
    GetTextExtentPoint32A(dc, kLetters + i, 1, &letter);
    const double phase = step * 0.15 - i * 0.9;
    const int y =
        (height - letter.cy) / 2 + static_cast<int>(std::lround(std::sin(phase) * height / 10));
    SetTextColor(dc, RGB(0, 0, 0));
    TextOutA(dc, x + 1, y + 1, kLetters + i, 1);
    SetTextColor(dc, Hue(step / 90.0 + i / 3.0));
    TextOutA(dc, x, y, kLetters + i, 1);
    x += letter.cx;
  }
  SelectObject(dc, oldFont);
  DeleteObject(font);
}

}  // namespace

void StartLogo(HWND dialog) {
  logoStep = 0;
  SetTimer(dialog, kLogoTimerId, kLogoPeriod, nullptr);
}

void StopLogo(HWND dialog) {
  KillTimer(dialog, kLogoTimerId);
}

void AdvanceLogo(HWND dialog, int logoId) {
  ++logoStep;
  if (HWND logo = GetDlgItem(dialog, logoId)) InvalidateRect(logo, nullptr, FALSE);
}

void PaintLogo(const DRAWITEMSTRUCT* item) {
  const int width = item->rcItem.right - item->rcItem.left;
  const int height = item->rcItem.bottom - item->rcItem.top;
  if (width <= 0 || height <= 0) return;
  HDC memory = CreateCompatibleDC(item->hDC);
  HBITMAP bitmap = CreateCompatibleBitmap(item->hDC, width, height);
  if (memory && bitmap) {
    HGDIOBJ old = SelectObject(memory, bitmap);
    DrawLogo(memory, width, height, logoStep);
    BitBlt(item->hDC, item->rcItem.left, item->rcItem.top, width, height, memory, 0, 0, SRCCOPY);
    SelectObject(memory, old);
  }
  if (bitmap) DeleteObject(bitmap);
  if (memory) DeleteDC(memory);
}
