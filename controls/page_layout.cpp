// Lays the effect pages out in columns: rows of label and control, checks across a column, the
// pickers at their fixed size, the four direction checks of a "Directions:" label in a cross, and
// a colour button's enable check (the check that follows it) on the colour's own row.
// Text widths are estimated from the dialog font's character widths, so the columns are as wide
// as their longest label needs and a page's spare width goes to its controls.
#include "controls/page_layout.h"

#include <cstdio>
#include <cstring>

#include "controls/value_controls.h"

namespace {

constexpr uint32_t kChild = 0x40000000u;           // WS_CHILD
constexpr uint32_t kVisible = 0x10000000u;         // WS_VISIBLE
constexpr uint32_t kTabStop = 0x00010000u;         // WS_TABSTOP
constexpr uint32_t kBorder = 0x00800000u;          // WS_BORDER
constexpr uint32_t kVScroll = 0x00200000u;         // WS_VSCROLL
constexpr uint32_t kOwnerDraw = 0x0000000Bu;       // BS_OWNERDRAW
constexpr uint32_t kAutoCheckBox = 0x00000003u;    // BS_AUTOCHECKBOX
constexpr uint32_t kDropDownList = 0x00000003u;    // CBS_DROPDOWNLIST
constexpr uint32_t kEditNumber = 0x00002080u;      // ES_NUMBER | ES_AUTOHSCROLL
constexpr uint32_t kEditAutoScroll = 0x00000080u;  // ES_AUTOHSCROLL
// UDS_SETBUDDYINT | UDS_AUTOBUDDY | UDS_ARROWKEYS | UDS_NOTHOUSANDS. Not aligned to the buddy:
// it stands where the layout puts it, so a twin made from it does not narrow its edit again.
constexpr uint32_t kUpDownStyle = 0x000000B2u;

// Dialog units become pixels edge by edge, each rounded: a unit is kept free at the right and
// bottom of the area, and between windows that would otherwise touch.
constexpr int32_t kAreaWidth = kPageAreaRight - kPageAreaLeft - 1;
constexpr int32_t kAreaHeight = kPageAreaBottom - kPageAreaTop - 1;
constexpr int32_t kColumnGap = 8;
constexpr int32_t kRowGap = 3;
constexpr int32_t kLabelGap = 4;
constexpr int32_t kRowHeight = 12;
constexpr int32_t kCheckHeight = 10;
constexpr int32_t kLabelHeight = 8;
constexpr int32_t kUpDownWidth = 10;
constexpr int32_t kCrossPitch = kCheckHeight + 1;  // the direction checks' cells
// 75 by 75 pixels with the dialog font's base units of 6 by 13 pixels.
constexpr int32_t kPickerWidth = 50;
constexpr int32_t kPickerHeight = 46;
constexpr int32_t kPickerLabelWidth = 46;  // a longer picker label wraps onto a second line
constexpr int32_t kAnimationHeight = 60;
// A fountain button: its markers above a strip tall enough to see.
constexpr int32_t kFountainHeight = 24;
constexpr int32_t kCheckBoxWidth = 14;     // the box and its gap before the caption
constexpr int32_t kNarrowControlMax = 64;  // spin edits and buttons grow no wider than this
constexpr int32_t kMaxColumns = 3;
constexpr int32_t kPairedChecksMax = 90;  // two checks share a row up to this width
constexpr int32_t kColourBesideMin = 8;  // a colour button with its check beside it

// The width of `text` in dialog units: pixel widths of the dialog font's characters, where a
// dialog unit across is a pixel and a half, with a fifth spare for wider faces.
int32_t TextWidth(const char* text) {
  int32_t px = 0;
  for (const char* p = text; p && *p; ++p) {
    const char c = *p;
    if (std::strchr("ijl.,;'!|", c))
      px += 2;
    else if (std::strchr("frt :-()/I", c))
      px += 3;
    else if (c == 'm' || c == 'w')
      px += 8;
    else if (c == 'M' || c == 'W')
      px += 9;
    else if (c >= 'A' && c <= 'Z')
      px += 7;
    else
      px += 5;
  }
  const int32_t units = (px * 2 + 2) / 3;
  return units + units / 5 + 2;
}

enum RowShape { kRowControl, kRowCheck, kRowPicker, kRowCross, kRowTall };

struct Row {
  int32_t first;  // index of its first control in the table
  int32_t count;  // controls it holds (a cross holds its label and four checks)
  RowShape shape;
  int32_t height;
  int32_t labelWidth;  // 0 without a label
  int32_t minControl;  // the control's least width
  int32_t checkWidth;  // a check's width across the column
  int32_t besideWidth;  // the width of a check beside the control, 0 without one
};

struct Column {
  int32_t firstRow, rowCount;
  int32_t labelWidth, width;
};

int IsPickerKind(ControlKind kind) {
  return kind == kControlShadowPicker || kind == kControlScroll4Picker ||
         kind == kControlScroll2Picker || kind == kControlScrollHVPicker;
}

int32_t MinControlWidth(ControlKind kind) {
  switch (kind) {
    case kControlComboList:
    case kControlListBoxList:
      return 50;
    case kControlAnimationPicker:
      return 80;
    default:
      return 34;  // five digits and the updown
  }
}

// With `checksBeside`, a colour button followed by a check holds it on its own row.
int32_t MakeRows(const PageTable& page, Row* rows, int32_t capacity, int checksBeside) {
  int32_t n = 0;
  for (int32_t i = 0; i < page.count && n < capacity;) {
    const PageControl& c = page.controls[i];
    Row row = {i, 1, kRowControl, kRowHeight, 0, MinControlWidth(c.kind), 0, 0};
    if (c.kind == kControlLabel) {
      // A label followed by checks without captions: the checks sit in a cross beside it.
      int32_t checks = 0;
      while (i + 1 + checks < page.count && checks < 4 &&
             page.controls[i + 1 + checks].kind == kControlCheckBox &&
             !page.controls[i + 1 + checks].caption[0])
        ++checks;
      row.count = 1 + checks;
      row.shape = kRowCross;
      row.height = 3 * kCrossPitch - 1;
      row.labelWidth = TextWidth(c.caption);
      row.minControl = 3 * kCrossPitch - 1;
    } else if (c.kind == kControlCheckBox) {
      row.shape = kRowCheck;
      row.height = kCheckHeight;
      row.minControl = 0;
      row.checkWidth = kCheckBoxWidth + TextWidth(c.caption);
      // Two short checks in a row share it.
      if (i + 1 < page.count && page.controls[i + 1].kind == kControlCheckBox) {
        const int32_t second = kCheckBoxWidth + TextWidth(page.controls[i + 1].caption);
        const int32_t cell = row.checkWidth > second ? row.checkWidth : second;
        if (2 * cell + kLabelGap <= kPairedChecksMax) {
          row.count = 2;
          row.checkWidth = 2 * cell + kLabelGap;
        }
      }
    } else if (IsPickerKind(c.kind)) {
      row.shape = kRowPicker;
      row.height = kPickerHeight;
      row.minControl = kPickerWidth;
      const int32_t w = TextWidth(c.caption);
      row.labelWidth = w < kPickerLabelWidth ? w : kPickerLabelWidth;
    } else {
      if (c.kind == kControlAnimationPicker) {
        row.shape = kRowTall;
        row.height = kAnimationHeight;
      }
      if (c.kind == kControlFountainButton) {
        row.shape = kRowTall;
        row.height = kFountainHeight;
      }
      row.labelWidth = HasLabel(c) ? TextWidth(c.caption) : 0;
      // A colour's enable check stands at its right.
      if (checksBeside && c.kind == kControlColourButton && i + 1 < page.count &&
          page.controls[i + 1].kind == kControlCheckBox) {
        row.count = 2;
        row.besideWidth = kCheckBoxWidth + TextWidth(page.controls[i + 1].caption);
        row.minControl = kColourBesideMin + kLabelGap + row.besideWidth;
      }
    }
    rows[n++] = row;
    i += row.count;
  }
  return n;
}

// Fills columns from the top, moving to the next one when a row would pass the bottom. Returns the
// number of columns used, or 0 when `columns` are not enough.
int32_t FillColumns(const Row* rows, int32_t rowCount, Column* columns, int32_t columnCount) {
  int32_t used = 0, height = 0;
  for (int32_t r = 0; r < rowCount; ++r) {
    const int32_t needed = (height ? height + kRowGap : 0) + rows[r].height;
    if (used == 0 || needed > kAreaHeight) {
      if (used == columnCount) return 0;
      columns[used++] = {r, 0, 0, 0};
      height = rows[r].height;
    } else {
      height = needed;
    }
    ++columns[used - 1].rowCount;
  }
  return used;
}

// Gives each column its label width and width; the spare width of the area is shared out evenly.
int SizeColumns(const Row* rows, Column* columns, int32_t used) {
  int32_t total = (used - 1) * kColumnGap;
  for (int32_t k = 0; k < used; ++k) {
    Column& col = columns[k];
    int32_t labels = 0, controls = 0, checks = 0;
    for (int32_t r = col.firstRow; r < col.firstRow + col.rowCount; ++r) {
      // A picker may stand further left than the other controls: its label wraps instead.
      const int32_t own = rows[r].labelWidth + kLabelGap + rows[r].minControl;
      if (rows[r].shape == kRowPicker) {
        if (own > checks) checks = own;
        continue;
      }
      if (rows[r].labelWidth > labels) labels = rows[r].labelWidth;
      if (rows[r].minControl > controls) controls = rows[r].minControl;
      if (rows[r].checkWidth > checks) checks = rows[r].checkWidth;
    }
    col.labelWidth = labels;
    col.width = labels + kLabelGap + controls;
    if (checks > col.width) col.width = checks;
    total += col.width;
  }
  if (total > kAreaWidth) return 0;
  const int32_t spare = (kAreaWidth - total) / used;
  for (int32_t k = 0; k < used; ++k) columns[k].width += spare;
  return 1;
}

int Add(PagePlacement* out, int32_t capacity, int32_t* n, int32_t id, ControlKind kind,
        const char* text, int32_t x, int32_t y, int32_t cx, int32_t cy) {
  if (*n >= capacity) return 0;
  PagePlacement& p = out[(*n)++];
  p.id = id;
  p.kind = kind;
  p.windowClass = PageWindowClass(kind);
  p.style = PageWindowStyle(kind);
  std::snprintf(p.text, sizeof p.text, "%s", text ? text : "");
  p.x = x;
  p.y = y;
  p.cx = cx;
  p.cy = cy;
  return 1;
}

// The window text a control starts with: colour buttons and pickers hold their value in decimal.
void InitialText(const PageControl& c, char* text, size_t size) {
  if (c.kind == kControlColourButton)
    std::snprintf(text, size, "%u", c.colour);
  else if (IsPickerKind(c.kind))
    std::snprintf(text, size, "%d", c.keyDefault);
  else if (c.kind == kControlCheckBox || c.kind == kControlLabel)
    std::snprintf(text, size, "%s", c.caption);
  else
    text[0] = 0;
}

int PlaceRow(const PageTable& page, const Row& row, const Column& col, int32_t x, int32_t y,
             PagePlacement* out, int32_t capacity, int32_t* n) {
  const PageControl& c = page.controls[row.first];
  const int32_t cx = x + col.labelWidth + kLabelGap;
  int32_t cw = col.width - col.labelWidth - kLabelGap;
  char text[40];
  InitialText(c, text, sizeof text);
  switch (row.shape) {
    case kRowCheck: {
      if (row.count == 1)
        return Add(out, capacity, n, c.id, c.kind, text, x, y, col.width, kCheckHeight);
      const int32_t half = (col.width - kLabelGap) / 2;
      const PageControl& second = page.controls[row.first + 1];
      return Add(out, capacity, n, c.id, c.kind, text, x, y, half, kCheckHeight) &&
             Add(out, capacity, n, second.id, second.kind, second.caption, x + half + kLabelGap, y,
                 half, kCheckHeight);
    }
    case kRowCross: {
      // North above, South below, the first of the side boxes on the left.
      static const int32_t kCellX[4] = {1, 0, 1, 2};
      static const int32_t kCellY[4] = {0, 1, 2, 1};
      if (!Add(out, capacity, n, c.id, c.kind, text, x, y + 1, col.labelWidth, kLabelHeight))
        return 0;
      for (int32_t k = 1; k < row.count; ++k) {
        const PageControl& check = page.controls[row.first + k];
        if (!Add(out, capacity, n, check.id, check.kind, check.caption,
                 cx + kCellX[k - 1] * kCrossPitch, y + kCellY[k - 1] * kCrossPitch, kCheckHeight,
                 kCheckHeight))
          return 0;
      }
      return 1;
    }
    case kRowPicker: {
      // In line with the column's controls when there is room, else at the column's right edge.
      const int32_t wanted =
          x + (row.labelWidth > col.labelWidth ? row.labelWidth : col.labelWidth) + kLabelGap;
      const int32_t px =
          wanted + kPickerWidth <= x + col.width ? wanted : x + col.width - kPickerWidth;
      const int32_t labelWidth = px - kLabelGap - x;
      const int32_t lines = TextWidth(c.caption) > labelWidth ? 2 : 1;
      return Add(out, capacity, n, c.id + 1, kControlLabel, c.caption, x, y, labelWidth,
                 lines * kLabelHeight + 2) &&
             Add(out, capacity, n, c.id, c.kind, text, px, y, kPickerWidth, kPickerHeight);
    }
    default:
      break;
  }
  const int narrow = c.kind != kControlComboList && c.kind != kControlListBoxList &&
                     c.kind != kControlAnimationPicker;
  // A check beside the control keeps its width at the column's right; the control takes the rest.
  if (row.besideWidth) cw -= row.besideWidth + kLabelGap;
  if (narrow && cw > kNarrowControlMax) cw = kNarrowControlMax;
  if (HasLabel(c) && !Add(out, capacity, n, c.id + 1, kControlLabel, c.caption, x, y + 2,
                          col.labelWidth, kLabelHeight))
    return 0;
  if (!HasUpDown(c)) {
    if (!Add(out, capacity, n, c.id, c.kind, text, cx, y, cw, row.height)) return 0;
  } else if (!Add(out, capacity, n, c.id, c.kind, text, cx, y, cw - kUpDownWidth - 1,
                  row.height) ||
             !Add(out, capacity, n, c.id + kUpDownIdOffset, kControlUpDown, c.range,
                  cx + cw - kUpDownWidth, y, kUpDownWidth, row.height)) {
    return 0;
  }
  if (!row.besideWidth) return 1;
  const PageControl& check = page.controls[row.first + 1];
  return Add(out, capacity, n, check.id, check.kind, check.caption, x + col.width - row.besideWidth,
             y + (row.height - kCheckHeight) / 2, row.besideWidth, kCheckHeight);
}

}  // namespace

const char* PageWindowClass(ControlKind kind) {
  switch (kind) {
    case kControlLabel:
      return "Static";
    case kControlSpinEdit:
    case kControlSignedSpinEdit:
    case kControlTextField:
      return "Edit";
    case kControlUpDown:
      return "msctls_updown32";
    case kControlComboList:
    case kControlFontBox:
      return "ComboBox";
    case kControlListBoxList:
      return "ListBox";
    case kControlMaterialButton:
      return "MATLBT";
    case kControlFountainButton:
      return "FOUNTB";
    case kControlAnimationPicker:
      return "ANMCTL";
    default:
      return "Button";
  }
}

uint32_t PageWindowStyle(ControlKind kind) {
  const uint32_t base = kChild | kVisible;
  switch (kind) {
    case kControlLabel:
      return base;
    case kControlSpinEdit:
      return base | kTabStop | kBorder | kEditNumber;
    case kControlSignedSpinEdit:
    case kControlTextField:
      return base | kTabStop | kBorder | kEditAutoScroll;
    case kControlUpDown:
      return base | kUpDownStyle;
    case kControlCheckBox:
      return base | kTabStop | kAutoCheckBox;
    case kControlComboList:
    case kControlFontBox:
      return base | kTabStop | kVScroll | kDropDownList;
    case kControlListBoxList:
      return base | kTabStop | kVScroll | kBorder | 0x1u;  // LBS_NOTIFY
    case kControlMaterialButton:
    case kControlFountainButton:
    case kControlAnimationPicker:
      return base | kTabStop;
    default:
      return base | kTabStop | kOwnerDraw;
  }
}

int32_t LayoutPage(const PageTable& page, PagePlacement* out, int32_t capacity) {
  Row rows[kPageMaxPlacements];
  Column columns[kMaxColumns];
  int32_t rowCount = 0, used = 0;
  // Colours with their enable checks beside them where the page is wide enough; a page that
  // can't take that width has the checks in rows of their own.
  for (int beside = 1; beside >= 0 && !used; --beside) {
    rowCount = MakeRows(page, rows, kPageMaxPlacements, beside);
    // Two columns at least, so that short pages don't stretch their controls across the area.
    for (int32_t count = 2; count <= kMaxColumns && !used; ++count) {
      used = FillColumns(rows, rowCount, columns, count);
      if (used && !SizeColumns(rows, columns, used)) used = 0;
    }
  }
  if (!used) return 0;
  int32_t n = 0, x = kPageAreaLeft;
  for (int32_t k = 0; k < used; ++k) {
    int32_t y = kPageAreaTop;
    for (int32_t r = columns[k].firstRow; r < columns[k].firstRow + columns[k].rowCount; ++r) {
      if (!PlaceRow(page, rows[r], columns[k], x, y, out, capacity, &n)) return 0;
      y += rows[r].height + kRowGap;
    }
    x += columns[k].width + kColumnGap;
  }
  return n;
}

int FormatPageResources(std::string* script) {
  script->assign(
      "// The dialogs of the twenty-one effect pages, 7400 + style, written by gm5_page_rc from "
      "the\n// page tables: do not edit by hand. Coordinates are those of the main dialog's "
      "client area,\n// where each page's controls are made again as hidden twins.\n\n"
      "LANGUAGE 9, 1\n\n");
  PagePlacement placed[kPageMaxPlacements];
  for (const PageTable& page : kPageTables) {
    const int32_t n = LayoutPage(page, placed, kPageMaxPlacements);
    if (!n) return 0;
    char line[256];
    // WS_CHILD | DS_SETFONT | DS_NOFAILCREATE: a control whose class is missing is left out.
    std::snprintf(line, sizeof line,
                  "%d DIALOGEX 0, 0, 488, 362\nSTYLE 0x40000050\nFONT 8, \"MS Sans Serif\"\n"
                  "BEGIN\n",
                  7400 + page.style);
    script->append(line);
    for (int32_t i = 0; i < n; ++i) {
      const PagePlacement& p = placed[i];
      std::snprintf(line, sizeof line, "  CONTROL \"%s\", %d, \"%s\", 0x%08X, %d, %d, %d, %d\n",
                    p.text, p.id, p.windowClass, p.style, p.x, p.y, p.cx, p.cy);
      script->append(line);
    }
    script->append("END\n\n");
  }
  return 1;
}
