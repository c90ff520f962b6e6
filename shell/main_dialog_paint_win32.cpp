// The main dialog's own painting: the sample through the effect's preview, the size label, and
// the font box's owner-drawn items. Every GDI object made here is deleted before the paint
// returns; the sample's image is freed after it is shown.
#include "shell/main_dialog_paint_win32.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "documents/settings.h"
#include "imaging/resampler.h"
#include "platform/memory.h"
#include "resources/resource_ids.h"
#include "shell/effect_table.h"
#include "shell/packed_dib.h"
#include "shell/paint_dib_win32.h"

namespace {

constexpr UINT kSizeLabelFormat = DT_NOPREFIX | DT_SINGLELINE | DT_VCENTER;  // 0x824

// What each font box item keeps: the family's description, as EnumFontFamiliesA gave it.
struct FontItem {
  LOGFONTA font;
  DWORD fontType;
};

struct FontFill {
  HWND box;
  int count;
};

int CALLBACK AddFontFamily(const LOGFONTA* font, const TEXTMETRICA*, DWORD fontType, LPARAM param) {
  FontFill* fill = reinterpret_cast<FontFill*>(param);
  // Vertical variants of the Far East families are not families of their own.
  if (!font || font->lfFaceName[0] == '@' || !font->lfFaceName[0]) return 1;
  ScopedBlock block(MovableAlloc(sizeof(FontItem)));
  {
    ScopedLock lock(block.handle);
    if (!lock) return 1;
    FontItem* item = reinterpret_cast<FontItem*>(lock.bytes);
    item->font = *font;
    item->fontType = fontType;
  }
  const LRESULT index =
      SendMessageA(fill->box, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(font->lfFaceName));
  if (index < 0) return 1;
  SendMessageA(fill->box, CB_SETITEMDATA, static_cast<WPARAM>(index),
               reinterpret_cast<LPARAM>(block.Release()));
  ++fill->count;
  return 1;
}

// The item's font at the item's height, or null for symbol fonts, whose names would not read.
HFONT CreateItemFont(MovableHandle block, int height) {
  ScopedLock lock(block);
  if (!lock) return nullptr;
  LOGFONTA font = reinterpret_cast<const FontItem*>(lock.bytes)->font;
  if (font.lfCharSet == SYMBOL_CHARSET) return nullptr;
  font.lfHeight = -height;
  font.lfWidth = 0;
  return CreateFontIndirectA(&font);
}

}  // namespace

int FillFontBox(HWND dialog, HWND box) {
  FreeFontItems(box);
  SendMessageA(box, CB_RESETCONTENT, 0, 0);
  FontFill fill = {box, 0};
  HDC dc = GetDC(dialog);
  if (!dc) return 0;
  EnumFontFamiliesA(dc, nullptr, reinterpret_cast<FONTENUMPROCA>(AddFontFamily),
                    reinterpret_cast<LPARAM>(&fill));
  ReleaseDC(dialog, dc);
  return fill.count;
}

void FreeFontItems(HWND box) {
  if (!box) return;
  const LRESULT count = SendMessageA(box, CB_GETCOUNT, 0, 0);
  for (LRESULT i = 0; i < count; ++i) {
    const LRESULT data = SendMessageA(box, CB_GETITEMDATA, static_cast<WPARAM>(i), 0);
    if (data == CB_ERR || !data) continue;
    MovableFree(reinterpret_cast<MovableHandle>(data));
    SendMessageA(box, CB_SETITEMDATA, static_cast<WPARAM>(i), 0);
  }
}

void PaintFontItem(const DRAWITEMSTRUCT* item) {
  HDC dc = item->hDC;
  RECT r = item->rcItem;
  const bool selected = (item->itemState & ODS_SELECTED) != 0;
  FillRect(dc, &r, GetSysColorBrush(selected ? COLOR_HIGHLIGHT : COLOR_WINDOW));
  if (item->itemID != static_cast<UINT>(-1)) {
    char name[LF_FACESIZE + 1] = "";
    const LRESULT length = SendMessageA(item->hwndItem, CB_GETLBTEXTLEN, item->itemID, 0);
    if (length > 0 && length <= LF_FACESIZE)
      SendMessageA(item->hwndItem, CB_GETLBTEXT, item->itemID, reinterpret_cast<LPARAM>(name));
    // The closed box shows the name in the dialog's font; the list shows each in its own face.
    HFONT font = (item->itemState & ODS_COMBOBOXEDIT)
                     ? nullptr
                     : CreateItemFont(reinterpret_cast<MovableHandle>(item->itemData),
                                      std::max<int>(8, r.bottom - r.top - 4));
    HGDIOBJ oldFont = font ? SelectObject(dc, font) : nullptr;
    SetBkMode(dc, TRANSPARENT);
    SetTextColor(dc, GetSysColor(selected ? COLOR_HIGHLIGHTTEXT : COLOR_WINDOWTEXT));
    RECT text = r;
    text.left += 3;
    DrawTextA(dc, name, -1, &text, DT_NOPREFIX | DT_SINGLELINE | DT_VCENTER);
    if (font) {
      SelectObject(dc, oldFont);
      DeleteObject(font);
    }
  }
  if (item->itemState & ODS_FOCUS) DrawFocusRect(dc, &r);
}

void PaintSizeLabel(const DRAWITEMSTRUCT* item) {
  HDC dc = item->hDC;
  RECT r = item->rcItem;
  // A brush value of n + 1 stands for system colour n: 15 fills in system colour 14.
  FillRect(dc, &r, reinterpret_cast<HBRUSH>(static_cast<INT_PTR>(15)));
  FrameRect(dc, &r, GetSysColorBrush(COLOR_BTNSHADOW));
  char text[64] = "";
  GetWindowTextA(item->hwndItem, text, sizeof text);
  InflateRect(&r, -4, -2);
  const int oldMode = SetBkMode(dc, TRANSPARENT);
  const COLORREF oldColour = SetTextColor(dc, GetSysColor(COLOR_BTNTEXT));
  DrawTextA(dc, text, -1, &r, kSizeLabelFormat);
  SetTextColor(dc, oldColour);
  SetBkMode(dc, oldMode);
}

void PaintSample(HWND dialog, const DRAWITEMSTRUCT* item) {
  HDC dc = item->hDC;
  RECT area = item->rcItem;
  FrameRect(dc, &area, GetSysColorBrush(COLOR_BTNSHADOW));
  InflateRect(&area, -1, -1);
  HRGN clip = CreateRectRgnIndirect(&area);
  SelectClipRgn(dc, clip);
  const int areaWidth = area.right - area.left;
  const int areaHeight = area.bottom - area.top;

  const int32_t row =
      static_cast<int32_t>(SendDlgItemMessageA(dialog, IDC_EFFECT, CB_GETCURSEL, 0, 0));
  BuildContext context;
  std::memset(&context, 0, sizeof context);
  context.dialog = reinterpret_cast<WindowHandle>(dialog);
  context.sampleWidth = areaWidth;
  context.sampleHeight = areaHeight;
  context.sample = 1;
  if (!RunEffectPreview(row, &context)) {
    FillRect(dc, &area, GetSysColorBrush(COLOR_INFOTEXT));
    SelectClipRgn(dc, nullptr);
    DeleteObject(clip);
    return;
  }
  MovableHandle image = context.image;
  int32_t w = 0, h = 0;
  {
    ScopedLock lock(image);
    if (lock) {
      const BitmapInfoHeader* header = reinterpret_cast<const BitmapInfoHeader*>(lock.bytes);
      w = header->biWidth;
      h = std::abs(header->biHeight);
    }
  }
  char size[64];
  std::snprintf(size, sizeof size, "%d x %d pixels", w, h);
  SetDlgItemTextA(dialog, IDC_SIZE_LABEL, size);
  InvalidateRect(GetDlgItem(dialog, IDC_SIZE_LABEL), nullptr, FALSE);

  if (IsDlgButtonChecked(dialog, IDC_FIT_SAMPLE) && w > 0 && h > 0 &&
      (w > areaWidth || h > areaHeight)) {
    const int percent = std::min(areaWidth * 100 / w, areaHeight * 100 / h);
    if (MovableHandle smaller = ResampleByPercent(image, percent, percent)) {
      MovableFree(image);
      image = smaller;
      ScopedLock lock(image);
      if (lock) {
        const BitmapInfoHeader* header = reinterpret_cast<const BitmapInfoHeader*>(lock.bytes);
        w = header->biWidth;
        h = std::abs(header->biHeight);
      }
    }
  }
  const int left = area.left + (areaWidth - w) / 2;
  const int top = area.top + (areaHeight - h) / 2;
  RECT picture = {left, top, left + w, top + h};

  // The surround takes the key colour, so the sample shows what becomes transparent.
  const int32_t key = RunEffectKeyColour(row, reinterpret_cast<WindowHandle>(dialog), 0);
  HRGN surround = CreateRectRgnIndirect(&area);
  HRGN inner = CreateRectRgnIndirect(&picture);
  CombineRgn(surround, surround, inner, RGN_XOR);
  HBRUSH keyBrush = CreateSolidBrush(static_cast<COLORREF>(key) & 0xFFFFFF);
  FillRgn(dc, surround, keyBrush);
  DeleteObject(keyBrush);
  DeleteObject(inner);
  DeleteObject(surround);

  PaintPackedDib(dc, left, top, image);
  const int32_t* keyLine = SettingInteger("SampleWindowKeyLine");
  if (keyLine && *keyLine) {
    RECT line = picture;
    InflateRect(&line, 1, 1);
    FrameRect(dc, &line, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
  }
  MovableFree(image);
  SelectClipRgn(dc, nullptr);
  DeleteObject(clip);
}
