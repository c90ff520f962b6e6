// The gradient editors' windows. The Gradient dialog works on a copy of the description and of the
// multi-colour gradient (held by its fountain button) and stores both on OK; its preview is drawn
// again on each change, a midpoint change waiting for a short timer. The library dialog lists the
// library's gradients as strips and writes the file again on OK.
#include "materials/gradient_dialog_win32.h"

#include <windows.h>
#include <commctrl.h>

#include <cstring>
#include <ctime>
#include <vector>

#include "controls/control_kinds.h"
#include "controls/value_controls.h"
#include "materials/data_folder.h"
#include "materials/fountain_button.h"
#include "materials/fountain_library.h"
#include "materials/gradient_dialog.h"
#include "platform/win32/code_module_win32.h"
#include "shell/messages.h"
#include "shell/paint_dib_win32.h"

namespace {

constexpr const char kLibraryLoadFailed[] = "There has been an error loading the fountain library.";
constexpr const char kLibraryUpdateFailed[] =
    "There has been an error updating the fountain library.";

WindowHandle AsHandle(HWND window) {
  return reinterpret_cast<WindowHandle>(window);
}

// The edits with updowns, and their updowns' ranges (also held as the updowns' text).
struct SpinRange {
  int32_t id, low, high;
};
constexpr SpinRange kSpins[] = {
    {kIdGradientMidpoint, 1, 99},     {kIdGradientRotation, -360, 360}, {kIdGradientEdgePad, 0, 45},
    {kIdGradientCentreX, -100, 100}, {kIdGradientCentreY, -100, 100},
};

struct GradientRun {
  GradientSpec spec;
  FountainGradient fountain;
  MovableHandle preview;
  int ready;  // 0 while the controls are being filled, so their notes are not changes
};

GradientRun* RunOf(HWND dialog) {
  return reinterpret_cast<GradientRun*>(GetWindowLongPtrA(dialog, DWLP_USER));
}

int32_t CheckedType(HWND dialog) {
  for (int32_t type = 0; type < 4; ++type)
    if (IsDlgButtonChecked(dialog, kGradientTypeIds[type]) == BST_CHECKED) return type;
  return kGradientLinear;
}

// The description as the controls show it now, on top of the one the dialog started from.
GradientSpec SpecOfControls(HWND dialog, const GradientSpec& from) {
  GradientSpec spec = from;
  WindowHandle d = AsHandle(dialog);
  spec.type = CheckedType(dialog);
  spec.startColour = GetDlgItemInt(dialog, kIdGradientStart, nullptr, FALSE);
  spec.endColour = GetDlgItemInt(dialog, kIdGradientEnd, nullptr, FALSE);
  spec.midpoint = ReadDlgValue(d, kIdGradientMidpoint);
  spec.rotation = ReadDlgValue(d, kIdGradientRotation);
  spec.edgePad = ReadDlgValue(d, kIdGradientEdgePad);
  spec.centreX = HoldGradientCentre(ReadDlgValue(d, kIdGradientCentreX));
  spec.centreY = HoldGradientCentre(ReadDlgValue(d, kIdGradientCentreY));
  spec.twoColour = IsDlgButtonChecked(dialog, kIdGradientTwoColour) == BST_CHECKED ? 1 : 0;
  return spec;
}

void EnableWithPartners(HWND dialog, int32_t id, int enable) {
  for (int32_t each : {id, id + kGradientLabelOffset, id + 10000})
    if (HWND control = GetDlgItem(dialog, each)) EnableWindow(control, enable ? TRUE : FALSE);
}

void EnableForType(HWND dialog) {
  const int32_t type = CheckedType(dialog);
  EnableWithPartners(dialog, kIdGradientRotation, GradientRotationApplies(type));
  EnableWithPartners(dialog, kIdGradientCentreX, GradientCentreApplies(type));
  EnableWithPartners(dialog, kIdGradientCentreY, GradientCentreApplies(type));
}

void RefreshPreview(HWND dialog) {
  GradientRun* run = RunOf(dialog);
  HWND preview = GetDlgItem(dialog, kIdGradientPreview);
  if (!run || !preview) return;
  RECT r;
  GetClientRect(preview, &r);
  const GradientSpec spec = SpecOfControls(dialog, run->spec);
  FountainGradient fountain = run->fountain;
  ButtonFountain(AsHandle(GetDlgItem(dialog, kIdGradientFountain)), &fountain);
  MovableHandle image = MakeGradientImage(r.right, r.bottom, &spec, &fountain);
  // A failed drawing keeps the old picture.
  if (image) {
    MovableFree(run->preview);
    run->preview = image;
  }
  InvalidateRect(preview, nullptr, FALSE);
}

void FillControls(HWND dialog, GradientRun* run) {
  const GradientSpec& spec = run->spec;
  CheckRadioButton(dialog, kGradientTypeIds[0], kGradientTypeIds[3],
                   GradientTypeButton(spec.type));
  CheckRadioButton(dialog, kIdGradientTwoColour, kIdGradientMultiColour,
                   spec.twoColour ? kIdGradientTwoColour : kIdGradientMultiColour);
  SetDlgItemInt(dialog, kIdGradientStart, spec.startColour & 0xFFFFFF, FALSE);
  SetDlgItemInt(dialog, kIdGradientEnd, spec.endColour & 0xFFFFFF, FALSE);
  for (const SpinRange& spin : kSpins)
    SendDlgItemMessageA(dialog, spin.id + 10000, UDM_SETRANGE32, static_cast<WPARAM>(spin.low),
                        static_cast<LPARAM>(spin.high));
  const int32_t midpoint = HoldGradientMidpoint(spec.midpoint);
  SendDlgItemMessageA(dialog, kIdGradientMidpointSlider, TBM_SETRANGE, FALSE, MAKELPARAM(1, 99));
  SendDlgItemMessageA(dialog, kIdGradientMidpointSlider, TBM_SETPOS, TRUE, midpoint);
  SetDlgItemInt(dialog, kIdGradientMidpoint, static_cast<UINT>(midpoint), FALSE);
  SetDlgItemInt(dialog, kIdGradientRotation, static_cast<UINT>(spec.rotation), TRUE);
  SetDlgItemInt(dialog, kIdGradientEdgePad, static_cast<UINT>(spec.edgePad), TRUE);
  SetDlgItemInt(dialog, kIdGradientCentreX, static_cast<UINT>(spec.centreX), TRUE);
  SetDlgItemInt(dialog, kIdGradientCentreY, static_cast<UINT>(spec.centreY), TRUE);
  // The dialog's button edits the copy only: it keeps no file of its own.
  FountainGradient copy = run->fountain;
  copy.flags &= ~kFountainOwnFile;
  SendDlgItemMessageA(dialog, kIdGradientFountain, kMessageFountainCreate, 0,
                      reinterpret_cast<LPARAM>(&copy));
  EnableForType(dialog);
}

void PaintPreview(HWND dialog, const DRAWITEMSTRUCT* item) {
  GradientRun* run = RunOf(dialog);
  FillRect(item->hDC, &item->rcItem, GetSysColorBrush(COLOR_BTNFACE));
  if (run && run->preview)
    PaintPackedDib(item->hDC, item->rcItem.left, item->rcItem.top, run->preview);
}

void Command(HWND dialog, int32_t id, int32_t note) {
  GradientRun* run = RunOf(dialog);
  if (!run) return;
  if (id == IDOK) {
    run->spec = SpecOfControls(dialog, run->spec);
    ButtonFountain(AsHandle(GetDlgItem(dialog, kIdGradientFountain)), &run->fountain);
    EndDialog(dialog, 1);
    return;
  }
  if (id == IDCANCEL) {
    EndDialog(dialog, 0);
    return;
  }
  if (!run->ready) return;
  if (GradientTypeOfButton(id) >= 0) {
    EnableForType(dialog);
    RefreshPreview(dialog);
  } else if (id == kIdGradientStart || id == kIdGradientEnd) {
    uint32_t colour = GetDlgItemInt(dialog, id, nullptr, FALSE);
    if (!ChooseColour(AsHandle(dialog), &colour)) return;
    SetDlgItemInt(dialog, id, colour, FALSE);
    InvalidateRect(GetDlgItem(dialog, id), nullptr, FALSE);
    RefreshPreview(dialog);
  } else if (id == kIdGradientMidpoint && note == EN_CHANGE) {
    const int32_t midpoint = ReadDlgValue(AsHandle(dialog), kIdGradientMidpoint);
    SendDlgItemMessageA(dialog, kIdGradientMidpointSlider, TBM_SETPOS, TRUE, midpoint);
    // Another change restarts the wait.
    SetTimer(dialog, kMidpointTimerId, kMidpointDelay, nullptr);
  } else if ((id == kIdGradientRotation || id == kIdGradientEdgePad ||
              id == kIdGradientCentreX || id == kIdGradientCentreY) &&
             note == EN_CHANGE) {
    RefreshPreview(dialog);
  } else if (id == kIdGradientTwoColour || id == kIdGradientMultiColour ||
             id == kIdGradientFountain) {
    RefreshPreview(dialog);
  }
}

INT_PTR CALLBACK GradientDialogProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_INITDIALOG: {
      GradientRun* run = reinterpret_cast<GradientRun*>(lParam);
      SetWindowLongPtrA(dialog, DWLP_USER, lParam);
      FillControls(dialog, run);
      run->ready = 1;
      RefreshPreview(dialog);
      return TRUE;
    }
    case WM_COMMAND:
      Command(dialog, LOWORD(wParam), HIWORD(wParam));
      return TRUE;
    case WM_HSCROLL:
      if (reinterpret_cast<HWND>(lParam) == GetDlgItem(dialog, kIdGradientMidpointSlider)) {
        const LRESULT position =
            SendDlgItemMessageA(dialog, kIdGradientMidpointSlider, TBM_GETPOS, 0, 0);
        // The edit's change note starts the timer.
        if (static_cast<int32_t>(position) != ReadDlgValue(AsHandle(dialog), kIdGradientMidpoint))
          SetDlgItemInt(dialog, kIdGradientMidpoint, static_cast<UINT>(position), FALSE);
      }
      return TRUE;
    case WM_TIMER:
      if (wParam == kMidpointTimerId) {
        KillTimer(dialog, kMidpointTimerId);
        RefreshPreview(dialog);
      }
      return TRUE;
    case WM_DRAWITEM: {
      const DRAWITEMSTRUCT* item = reinterpret_cast<const DRAWITEMSTRUCT*>(lParam);
      if (item->CtlID == static_cast<UINT>(kIdGradientPreview))
        PaintPreview(dialog, item);
      else
        PaintColourButton(AsHandle(dialog), item);
      return TRUE;
    }
    case WM_DESTROY:
      KillTimer(dialog, kMidpointTimerId);
      if (GradientRun* run = RunOf(dialog)) {
        MovableFree(run->preview);
        run->preview = nullptr;
      }
      return FALSE;
    default:
      return FALSE;
  }
}

INT_PTR CALLBACK MarkerPositionProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_INITDIALOG: {
      SetWindowLongPtrA(dialog, DWLP_USER, lParam);
      const int32_t* position = reinterpret_cast<const int32_t*>(lParam);
      SendDlgItemMessageA(dialog, kIdMarkerPosition + 10000, UDM_SETRANGE32, 1, 255);
      SetDlgItemInt(dialog, kIdMarkerPosition, static_cast<UINT>(*position), FALSE);
      return TRUE;
    }
    case WM_COMMAND:
      if (LOWORD(wParam) == IDOK) {
        int32_t* position = reinterpret_cast<int32_t*>(GetWindowLongPtrA(dialog, DWLP_USER));
        *position = ReadDlgValue(AsHandle(dialog), kIdMarkerPosition);
        EndDialog(dialog, 1);
      } else if (LOWORD(wParam) == IDCANCEL) {
        EndDialog(dialog, 0);
      }
      return TRUE;
    default:
      return FALSE;
  }
}

// The library dialog's state: the list, a strip picture for each entry and the record it serves.
struct LibraryRun {
  GradientLibraryList list;
  std::vector<MovableHandle> strips;
  FountainGradient* gradient;
  char path[kDataPathSize];
  int changed;
};

LibraryRun* LibraryOf(HWND dialog) {
  return reinterpret_cast<LibraryRun*>(GetWindowLongPtrA(dialog, DWLP_USER));
}

int FillLibraryList(HWND dialog, LibraryRun* run) {
  if (!LibraryFilePath(run->path, sizeof run->path) ||
      !LoadGradientLibraryList(run->path, &run->list))
    return 0;
  HWND list = GetDlgItem(dialog, kIdLibraryList);
  RECT r;
  GetClientRect(list, &r);
  const int width = r.right - GetSystemMetrics(SM_CXVSCROLL);
  for (size_t i = 0; i < run->list.entries.size(); ++i) {
    // A strip that can't be made leaves its row blank.
    run->strips.push_back(
        FountainStrip(&run->list.entries[i], width > 1 ? width : 1, kLibraryStripHeight));
    SendMessageA(list, LB_ADDSTRING, 0, static_cast<LPARAM>(i));
  }
  SendMessageA(list, LB_SETCURSEL, static_cast<WPARAM>(run->list.selected), 0);
  return 1;
}

void PaintLibraryRow(HWND dialog, const DRAWITEMSTRUCT* item) {
  LibraryRun* run = LibraryOf(dialog);
  if (!run || item->itemID == static_cast<UINT>(-1)) return;
  const int selected = (item->itemState & ODS_SELECTED) != 0;
  FillRect(item->hDC, &item->rcItem,
           GetSysColorBrush(selected ? COLOR_HIGHLIGHT : COLOR_WINDOW));
  if (item->itemID < run->strips.size())
    PaintPackedDib(item->hDC, item->rcItem.left + 1, item->rcItem.top + 1,
                   run->strips[item->itemID]);
}

void DeleteLibraryRow(HWND dialog, LibraryRun* run) {
  HWND list = GetDlgItem(dialog, kIdLibraryList);
  const int32_t row = static_cast<int32_t>(SendMessageA(list, LB_GETCURSEL, 0, 0));
  run->list.selected = row;
  if (!DeleteGradientLibraryEntry(&run->list, row)) return;
  MovableFree(run->strips[static_cast<size_t>(row)]);
  run->strips.erase(run->strips.begin() + row);
  SendMessageA(list, LB_DELETESTRING, static_cast<WPARAM>(row), 0);
  SendMessageA(list, LB_SETCURSEL, static_cast<WPARAM>(run->list.selected), 0);
}

INT_PTR CALLBACK LibraryDialogProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_INITDIALOG: {
      SetWindowLongPtrA(dialog, DWLP_USER, lParam);
      if (!FillLibraryList(dialog, reinterpret_cast<LibraryRun*>(lParam))) {
        ShowMessage(AsHandle(dialog), kLibraryLoadFailed);
        EndDialog(dialog, 0);
      }
      return TRUE;
    }
    case WM_MEASUREITEM:
      reinterpret_cast<MEASUREITEMSTRUCT*>(lParam)->itemHeight = kLibraryStripHeight + 2;
      return TRUE;
    case WM_DRAWITEM:
      PaintLibraryRow(dialog, reinterpret_cast<const DRAWITEMSTRUCT*>(lParam));
      return TRUE;
    case WM_COMMAND: {
      LibraryRun* run = LibraryOf(dialog);
      if (!run) return TRUE;
      const int32_t id = LOWORD(wParam);
      if (id == kIdLibraryDelete) {
        DeleteLibraryRow(dialog, run);
      } else if (id == IDOK) {
        run->list.selected = static_cast<int32_t>(
            SendDlgItemMessageA(dialog, kIdLibraryList, LB_GETCURSEL, 0, 0));
        if (CommitGradientLibraryList(run->path, &run->list, run->gradient,
                                      static_cast<uint32_t>(std::time(nullptr))))
          run->changed = run->list.selected >= 0;
        else
          ShowMessage(AsHandle(dialog), kLibraryUpdateFailed);
        EndDialog(dialog, 1);
      } else if (id == IDCANCEL) {
        EndDialog(dialog, 0);
      }
      return TRUE;
    }
    default:
      return FALSE;
  }
}

}  // namespace

int RunGradientDialog(WindowHandle owner, GradientSpec* spec, FountainGradient* fountain) {
  if (!spec || !fountain) return 0;
  GradientRun run = {*spec, *fountain, nullptr, 0};
  const INT_PTR result =
      DialogBoxParamA(CodeModule(), MAKEINTRESOURCEA(kGradientDialogId),
                      reinterpret_cast<HWND>(owner), GradientDialogProc,
                      reinterpret_cast<LPARAM>(&run));
  MovableFree(run.preview);
  if (result != 1) return 0;
  *spec = run.spec;
  *fountain = run.fountain;
  return 1;
}

int RunMarkerPositionDialog(WindowHandle owner, int32_t* position) {
  if (!position) return 0;
  int32_t chosen = *position;
  if (DialogBoxParamA(CodeModule(), MAKEINTRESOURCEA(kMarkerPositionDialogId),
                      reinterpret_cast<HWND>(owner), MarkerPositionProc,
                      reinterpret_cast<LPARAM>(&chosen)) != 1)
    return 0;
  *position = chosen;
  return 1;
}

int RunGradientLibraryDialog(WindowHandle owner, FountainGradient* gradient) {
  if (!gradient) return 0;
  LibraryRun run;
  run.gradient = gradient;
  run.path[0] = 0;
  run.changed = 0;
  DialogBoxParamA(CodeModule(), MAKEINTRESOURCEA(kGradientLibraryDialogId),
                  reinterpret_cast<HWND>(owner), LibraryDialogProc,
                  reinterpret_cast<LPARAM>(&run));
  for (MovableHandle strip : run.strips) MovableFree(strip);
  return run.changed;
}
