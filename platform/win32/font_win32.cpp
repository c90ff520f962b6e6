// The layout font on Windows: a GDI font selected into a context of the dialog (or the screen) in
// MM_TEXT, and its LOGFONTA read back for GDI+. A missing face is GDI's to substitute, and the
// description names the face GDI chose, so that GDI+ measures and draws with that same face.
#include <windows.h>

#include <cstring>
#include <new>

#include "platform/font.h"

int CreateLayoutFont(WindowHandle window, const char* faceName, int32_t cellHeight, int32_t bold,
                     int32_t italic, LayoutFont* font) {
  *font = LayoutFont();
  HWND hwnd = reinterpret_cast<HWND>(window);
  HDC dc = GetDC(hwnd);
  if (!dc) return 0;
  SetMapMode(dc, MM_TEXT);
  HFONT created =
      CreateFontA(cellHeight, 0, 0, 0, bold ? kFontWeightBold : kFontWeightNormal,
                  italic ? TRUE : FALSE, FALSE, FALSE, DEFAULT_CHARSET, 0, 0, 0, 0, faceName);
  LOGFONTA* logFont = new (std::nothrow) LOGFONTA();
  if (!created || !logFont || !GetObjectA(created, sizeof *logFont, logFont)) {
    delete logFont;
    if (created) DeleteObject(created);
    ReleaseDC(hwnd, dc);
    return 0;
  }
  font->previousFont = SelectObject(dc, created);
  // GetObjectA answers the face that was asked for; the selected font knows the one in use.
  char face[LF_FACESIZE] = "";
  if (GetTextFaceA(dc, sizeof face, face) > 0) lstrcpynA(logFont->lfFaceName, face, LF_FACESIZE);
  font->deviceContext = dc;
  font->logFont = logFont;
  font->font = created;
  font->window = window;
  font->description.height = cellHeight;
  font->description.weight = bold ? kFontWeightBold : kFontWeightNormal;
  font->description.italic = italic ? 1 : 0;
  if (faceName) std::strncpy(font->description.faceName, faceName, kFaceNameBytes - 1);
  return 1;
}

void DeleteLayoutFont(LayoutFont* font) {
  if (!font || !font->deviceContext) return;
  HDC dc = static_cast<HDC>(font->deviceContext);
  SelectObject(dc, static_cast<HGDIOBJ>(font->previousFont));
  DeleteObject(static_cast<HGDIOBJ>(font->font));
  ReleaseDC(reinterpret_cast<HWND>(font->window), dc);
  delete static_cast<LOGFONTA*>(font->logFont);
  *font = LayoutFont();
}

int32_t FontCellHeight(void* deviceContext) {
  TEXTMETRICA metrics;
  if (!deviceContext || !GetTextMetricsA(static_cast<HDC>(deviceContext), &metrics)) return 0;
  return metrics.tmHeight;
}
