// The main dialog's window procedure: the start (settings, value controls bound to their
// settings, the host's capabilities, the effect pages), the commands of its buttons and boxes,
// the update timer that repaints the sample, and the end, which writes the configuration on
// every close. Value controls are told apart by their class procedure (the dialog port's kinds).
#include <windows.h>
#include <commctrl.h>
#include <shlobj.h>

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "controls/page_tables.h"
#include "controls/value_controls.h"
#include "documents/settings.h"
#include "platform/win32/dialog_win32.h"
#include "resources/resource_ids.h"
#include "shell/about_box_win32.h"
#include "shell/build_pipeline.h"
#include "shell/effect_table.h"
#include "shell/library_state.h"
#include "shell/logo_win32.h"
#include "shell/main_dialog.h"
#include "shell/main_dialog_files_win32.h"
#include "shell/main_dialog_paint_win32.h"
#include "shell/messages.h"
#include "shell/skinned_button_win32.h"

namespace {

constexpr int kCommandBuild = 40;  // posted by Build, so the click's painting ends first
constexpr int kCommandTest = 41;   // posted by Test
constexpr int kFontItemHeight = 18;
constexpr char kInitFailedText[] = "This plugin could not be initialized";
constexpr char kTitle[] = "Glyph Motion #5";
constexpr char kUntitled[] = "untitled.gm5";

const char* const kPaletteNames[] = {
    "Black and white",      "Sixteen-color Windows", "32-color orthogonal",
    "64-color orthogonal",  "128-color orthogonal",  "216-color safe",
    "256-color orthogonal", "256-color with gray",   "256 gray levels"};

// Delay and Pause ranges by the host's kind: indexed hosts count hundredths of a second.
constexpr char kIndexedDelayRange[] = "1,100,4";
constexpr char kIndexedPauseRange[] = "1,1000,100";
constexpr char kTrueColourDelayRange[] = "1,1000,40";
constexpr char kTrueColourPauseRange[] = "1,10000,1000";

WindowHandle Handle(HWND window) {
  return reinterpret_cast<WindowHandle>(window);
}

void SetSetting(const char* key, int32_t value) {
  if (int32_t* setting = SettingInteger(key)) *setting = value;
}

uint32_t Capabilities() {
  return CurrentHost ? CurrentHost->capabilities : 0;
}

void StartUpdateTimer(HWND dialog) {
  const int32_t* delay = SettingInteger("UpdateDelay");
  DialogSetTimer(Handle(dialog), kUpdateTimerId, static_cast<uint32_t>(delay ? *delay : 250));
}

void SetCheckAndSetting(HWND dialog, int id, int checked) {
  CheckDlgButton(dialog, id, checked ? BST_CHECKED : BST_UNCHECKED);
  StoreControlValue(Handle(GetDlgItem(dialog, id)));
}

// A spin edit's value, shown and kept.
void SetSpinValue(HWND dialog, int id, int32_t value) {
  SetDlgItemInt(dialog, id, static_cast<UINT>(value), TRUE);
  StoreControlValue(Handle(GetDlgItem(dialog, id)));
}

// Gives the updown of spin edit `id` its range from its text.
void ApplySpinRange(HWND dialog, int id) {
  HWND updown = GetDlgItem(dialog, id + IDC_UPDOWN_OFFSET);
  char text[261] = "";
  if (updown) GetWindowTextA(updown, text, sizeof text);
  SetUpDownRange(updown, text);
}

void SetSpinRange(HWND dialog, int id, const char* range) {
  SetDlgItemTextA(dialog, id + IDC_UPDOWN_OFFSET, range);
  ApplySpinRange(dialog, id);
}

// Subclasses the main dialog's control `id` by its kind and ties it to its setting.
void BindMainControl(HWND dialog, int32_t id) {
  const PageControl* c = FindPageControl(id);
  HWND control = GetDlgItem(dialog, id);
  if (!c || !control) return;
  DialogSetControlKind(Handle(control), c->kind);
  if (c->kind == kControlSpinEdit) {
    DialogSetControlKind(Handle(GetDlgItem(dialog, id + IDC_UPDOWN_OFFSET)), kControlUpDown);
    ApplySpinRange(dialog, id);
  }
  if (const SettingEntry* setting = FindSetting(c->key))
    BindControl(Handle(control), setting->value);
}

// Binds every keyed control of `kind` in table order.
void BindMainControls(HWND dialog, ControlKind kind) {
  for (int32_t i = 0; i < kMainDialogTable.count; ++i) {
    const PageControl& c = kMainDialogTable.controls[i];
    if (c.kind == kind && c.key) BindMainControl(dialog, c.id);
  }
}

void AskHostSettings() {
  CallHost(nullptr, HostOpGetSetting, 0, reinterpret_cast<uint64_t>("EditListMaximum"));
  const HostSetting* soft = reinterpret_cast<const HostSetting*>(
      CallHost(nullptr, HostOpGetSetting, 0, reinterpret_cast<uint64_t>("SoftButtons")));
  if (soft && (soft->flags & kHostSettingInteger) && soft->value)
    SoftButtons = *static_cast<const int32_t*>(soft->value);
}

// Shift at start: the document starts untitled in the documents folder, where files open.
void ResetDocumentPath() {
  char folder[MAX_PATH] = "";
  if (SHGetFolderPathA(nullptr, CSIDL_PERSONAL, nullptr, 0, folder) != S_OK) return;
  size_t length = std::strlen(folder);
  if (length + 2 >= kOpenPathSize) return;
  if (length == 0 || folder[length - 1] != '\\') folder[length++] = '\\';
  folder[length] = 0;
  lstrcpynA(OpenPath(), folder, static_cast<int>(kOpenPathSize));
  if (char* current = SettingString("CurrentFileName"))
    std::snprintf(current, kSettingTextSize, "%s%s", folder, kUntitled);
}

// The host's kind: indexed hosts have short delays and no alpha; true-colour hosts keep their
// frames in true colour and have no transparent colour or supercompression.
void ApplyCapabilities(HWND dialog, int reset) {
  const bool indexed = (Capabilities() & kHostIndexed) != 0;
  SetSpinRange(dialog, IDC_DELAY, indexed ? kIndexedDelayRange : kTrueColourDelayRange);
  SetSpinRange(dialog, IDC_PAUSE, indexed ? kIndexedPauseRange : kTrueColourPauseRange);
  if (indexed) {
    SetCheckAndSetting(dialog, IDC_ALPHA_TRANSPARENCY, 0);
    SetCheckAndSetting(dialog, IDC_ALPHA_BACKGROUND, 0);
    EnableWindow(GetDlgItem(dialog, IDC_ALPHA_TRANSPARENCY), FALSE);
    EnableWindow(GetDlgItem(dialog, IDC_ALPHA_BACKGROUND), FALSE);
  } else {
    EnableWindow(GetDlgItem(dialog, IDC_TRANSPARENT), FALSE);
    SetCheckAndSetting(dialog, IDC_SUPERCOMPRESS, 0);
    EnableWindow(GetDlgItem(dialog, IDC_SUPERCOMPRESS), FALSE);
    EnableWindow(GetDlgItem(dialog, IDC_ALPHA_TRANSPARENCY), TRUE);
    SetCheckAndSetting(dialog, IDC_TRUE_COLOUR, 1);
    EnableWindow(GetDlgItem(dialog, IDC_TRUE_COLOUR), TRUE);
  }
  // SetSpinRange put each updown's own default in its edit; the settings' values come back.
  if (reset) {
    SetSpinValue(dialog, IDC_DELAY, indexed ? 5 : 50);
    SetSpinValue(dialog, IDC_PAUSE, indexed ? 100 : 1000);
  } else {
    for (int id : {IDC_DELAY, IDC_PAUSE}) {
      if (const int32_t* value =
              static_cast<const int32_t*>(DialogGetUserData(Handle(GetDlgItem(dialog, id)))))
        SetDlgItemInt(dialog, id, static_cast<UINT>(*value), TRUE);
    }
  }
}

void FillPaletteBox(HWND dialog) {
  HWND box = GetDlgItem(dialog, IDC_PALETTE);
  SendMessageA(box, CB_RESETCONTENT, 0, 0);
  for (const char* name : kPaletteNames)
    SendMessageA(box, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(name));
  BindMainControl(dialog, IDC_PALETTE);
}

void FillFontControl(HWND dialog) {
  HWND box = GetDlgItem(dialog, IDC_FONT);
  FillFontBox(dialog, box);
  SendMessageA(box, CB_SETITEMHEIGHT, 0, kFontItemHeight);
  SendMessageA(box, CB_SELECTSTRING, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>("Impact"));
  BindMainControl(dialog, IDC_FONT);
}

// Fills the Effect box and clones every row's page into the dialog. 0 when a row fails.
int FillEffectBox(HWND dialog) {
  HWND box = GetDlgItem(dialog, IDC_EFFECT);
  SendMessageA(box, CB_RESETCONTENT, 0, 0);
  const int ok = InitEffectPages(Handle(dialog), Handle(box));
  BindMainControl(dialog, IDC_EFFECT);
  return ok;
}

int32_t SelectedRow(HWND dialog) {
  const int32_t row =
      static_cast<int32_t>(SendDlgItemMessageA(dialog, IDC_EFFECT, CB_GETCURSEL, 0, 0));
  return std::clamp(row, 0, kEffectCount);
}

void UpdateBuildButton(HWND dialog) {
  EnableWindow(GetDlgItem(dialog, IDC_BUILD),
               GetWindowTextLengthA(GetDlgItem(dialog, IDC_TEXT)) > 0);
}

INT_PTR OnInitDialog(HWND dialog, HostRecord* host) {
  CurrentHost = host;
  AskHostSettings();
  for (int id : {IDC_BUILD, IDC_CANCEL, IDC_HELP_BUTTON, IDC_REGISTER, IDC_ABOUT, IDC_TEST,
                 IDC_OPEN_SAVE})
    SkinButton(GetDlgItem(dialog, id));
  LoadSettings();
  const int shift = SettingsShiftHeld();
  if (!(Capabilities() & kHostTrueColourOffered)) {
    SetSetting("Truecolour", 0);
    CheckDlgButton(dialog, IDC_TRUE_COLOUR, BST_UNCHECKED);
    EnableWindow(GetDlgItem(dialog, IDC_TRUE_COLOUR), FALSE);
  }
  uint32_t afterStart = kMessageAfterStart;
  if (!host || !host->service) {
    ShowMessage(Handle(dialog), "Internal error");
    afterStart = kMessageStartFailed;
  }
  if (shift) ResetDocumentPath();
  BindMainControls(dialog, kControlCheckBox);
  BindMainControls(dialog, kControlSpinEdit);
  SendDlgItemMessageA(dialog, IDC_TEXT, EM_LIMITTEXT, 260, 0);
  BindMainControl(dialog, IDC_TEXT);
  FillFontControl(dialog);
  FillPaletteBox(dialog);
  const int32_t* first = SettingInteger("IsFirst");
  ApplyCapabilities(dialog, (first && *first) || shift);
  if (!FillEffectBox(dialog)) {
    ShowMessage(Handle(dialog), kInitFailedText);
    afterStart = kMessageStartFailed;
  }
  SetFocus(GetDlgItem(dialog, IDC_BUILD));
  PostMessageA(dialog, WM_COMMAND, MAKEWPARAM(IDC_CUSTOM_PALETTE, BN_CLICKED),
               reinterpret_cast<LPARAM>(GetDlgItem(dialog, IDC_CUSTOM_PALETTE)));
  int32_t size[2] = {0, 0};
  CallHost(nullptr, HostOpFileDialogSize, 0, reinterpret_cast<uint64_t>(size));
  SetFileDialogSize(size[0], size[1]);
  StartLogo(dialog);
  SetWindowTextA(dialog, kTitle);
  CentreWindow(Handle(dialog));
  PostMessageA(dialog, afterStart, 0, 0);
  return FALSE;  // focus is set
}

// After the start and after a document load: Shift's delays, the selected page, Build's state.
void OnAfterStart(HWND dialog) {
  if (SettingsShiftHeld()) {
    if (!(Capabilities() & kHostTrueColourOffered)) {
      SetSpinValue(dialog, IDC_DELAY, 4);
      SetSpinValue(dialog, IDC_PAUSE, 100);
    } else {
      SetCheckAndSetting(dialog, IDC_TRUE_COLOUR, 1);
      SetSpinValue(dialog, IDC_DELAY, 40);
      SetSpinValue(dialog, IDC_PAUSE, 1000);
    }
  }
  ShowEffectPage(Handle(dialog), SelectedRow(dialog));
  UpdateBuildButton(dialog);
}

// The end of the dialog, whether it closes or its start failed; the second call does nothing.
void OnEnd(HWND dialog) {
  if (GetPropA(dialog, "GM5Ended")) return;
  SetPropA(dialog, "GM5Ended", reinterpret_cast<HANDLE>(1));
  StopLogo(dialog);
  DialogKillTimer(Handle(dialog), kUpdateTimerId);
  FreeFontItems(GetDlgItem(dialog, IDC_FONT));
  SetSetting("IsFirst", 0);
  SaveSettings();
}

// Help: the host shows the help document at the dialog's topic; a refusal is told and the dialog
// stays.
void OnHelp(HWND dialog) {
  char topic[64];
  if (FormatHelpTopic(kHelpTopicPreface, topic, sizeof topic) &&
      CallHost(nullptr, HostOpShowHelp, 0, reinterpret_cast<uint64_t>(topic)))
    return;
  ShowMessage(Handle(dialog), "There has been an error displaying the Help document.");
}

void RunBuildCommand(HWND dialog, int isTest) {
  HWND button = GetDlgItem(dialog, isTest ? IDC_TEST : IDC_BUILD);
  InvalidateRect(button, nullptr, TRUE);
  UpdateWindow(button);
  CallHost(nullptr, HostOpBeginWork, 0, 0);
  UpdateWindow(dialog);
  BuildFrames(Handle(dialog), CurrentHost, isTest);
  if (isTest) {
    InvalidateRect(dialog, nullptr, TRUE);
    UpdateWindow(dialog);
  } else {
    EndDialog(dialog, 1);
  }
}

void OnCommand(HWND dialog, int id, int notification) {
  switch (id) {
    case IDC_BUILD:
      PostMessageA(dialog, WM_COMMAND, kCommandBuild, 0);
      return;
    case kCommandBuild:
      RunBuildCommand(dialog, 0);
      return;
    case IDC_CANCEL:
      EndDialog(dialog, 0);
      return;
    case IDC_HELP_BUTTON:
      OnHelp(dialog);
      return;
    case IDC_TEST:
      PostMessageA(dialog, WM_COMMAND, kCommandTest, 0);
      return;
    case kCommandTest:
      RunBuildCommand(dialog, 1);
      return;
    case IDC_REGISTER:
    case IDC_ABOUT:
      ShowAboutBox(dialog);
      return;
    case IDC_TRUE_COLOUR:
      StoreControlValue(Handle(GetDlgItem(dialog, id)));
      StartUpdateTimer(dialog);
      if (!IsDlgButtonChecked(dialog, IDC_TRUE_COLOUR))
        SetCheckAndSetting(dialog, IDC_ALPHA_TRANSPARENCY, 0);
      return;
    case IDC_ALPHA_TRANSPARENCY:
      StoreControlValue(Handle(GetDlgItem(dialog, id)));
      StartUpdateTimer(dialog);
      if (IsDlgButtonChecked(dialog, IDC_ALPHA_TRANSPARENCY))
        SetCheckAndSetting(dialog, IDC_TRUE_COLOUR, 1);
      return;
    case IDC_ALPHA_BACKGROUND:
      StoreControlValue(Handle(GetDlgItem(dialog, id)));
      StartUpdateTimer(dialog);
      return;
    case IDC_FIT_SAMPLE:
      StoreControlValue(Handle(GetDlgItem(dialog, id)));
      InvalidateRect(GetDlgItem(dialog, IDC_SAMPLE), nullptr, FALSE);
      return;
    case IDC_PALETTE:
      if (notification == CBN_SELCHANGE) {
        const LRESULT row = SendDlgItemMessageA(dialog, IDC_PALETTE, CB_GETCURSEL, 0, 0);
        SetSetting("MainPalette", row < 0 ? 0 : static_cast<int32_t>(row));
      }
      return;
    case IDC_CUSTOM_PALETTE:
      EnableWindow(GetDlgItem(dialog, IDC_PALETTE),
                   !IsDlgButtonChecked(dialog, IDC_CUSTOM_PALETTE));
      return;
    case IDC_TEXT:
      // The edit also reports its filling at the start, before the dialog shows.
      if (!IsWindowVisible(dialog)) return;
      StoreControlValue(Handle(GetDlgItem(dialog, id)));
      InvalidateRect(GetDlgItem(dialog, IDC_SAMPLE), nullptr, FALSE);
      UpdateBuildButton(dialog);
      return;
    case IDC_EFFECT: {
      if (notification != CBN_SELCHANGE) return;
      const int32_t row = SelectedRow(dialog);
      int32_t* kept = SettingInteger("MainEffect");
      if (kept && *kept == row) return;
      ShowEffectPage(Handle(dialog), row);
      if (kept) *kept = row;
      StartUpdateTimer(dialog);
      return;
    }
    case IDC_OPEN_SAVE:
      ShowOpenSaveMenu(dialog);
      return;
    case kCommandOpen:
      OpenDocument(dialog);
      return;
    case kCommandSave:
      SaveCurrentDocument(dialog);
      return;
    case kCommandSaveAs:
      SaveDocumentAs(dialog);
      return;
    default:
      HandleValueCommand(Handle(dialog), id, notification);
      return;
  }
}

INT_PTR OnDrawItem(HWND dialog, const DRAWITEMSTRUCT* item) {
  switch (item->CtlID) {
    case IDC_SAMPLE:
      PaintSample(dialog, item);
      return TRUE;
    case IDC_SIZE_LABEL:
      PaintSizeLabel(item);
      return TRUE;
    case IDC_FONT:
      PaintFontItem(item);
      return TRUE;
    case IDC_LOGO:
      PaintLogo(item);
      return TRUE;
  }
  // The pages' colour buttons are painted by their kind.
  return DialogPaintItem(Handle(dialog), item) ? TRUE : FALSE;
}

INT_PTR CALLBACK MainDialogProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_INITDIALOG:
      return OnInitDialog(dialog, reinterpret_cast<HostRecord*>(lParam));
    case WM_COMMAND:
      OnCommand(dialog, LOWORD(wParam), HIWORD(wParam));
      return TRUE;
    case WM_MEASUREITEM: {
      MEASUREITEMSTRUCT* item = reinterpret_cast<MEASUREITEMSTRUCT*>(lParam);
      if (item->CtlID != IDC_FONT) return FALSE;
      item->itemHeight = kFontItemHeight;
      return TRUE;
    }
    case WM_DRAWITEM:
      return OnDrawItem(dialog, reinterpret_cast<const DRAWITEMSTRUCT*>(lParam));
    case WM_TIMER:
      if (wParam == static_cast<WPARAM>(kUpdateTimerId)) {
        DialogKillTimer(Handle(dialog), kUpdateTimerId);
        InvalidateRect(GetDlgItem(dialog, IDC_SAMPLE), nullptr, FALSE);
      } else if (wParam == kLogoTimerId) {
        AdvanceLogo(dialog, IDC_LOGO);
      }
      return TRUE;
    case kMessageAfterStart:
      OnAfterStart(dialog);
      return TRUE;
    case kMessageRepaintSample:
      InvalidateRect(GetDlgItem(dialog, IDC_SAMPLE), nullptr, FALSE);
      return TRUE;
    case WM_DESTROY:
      OnEnd(dialog);
      // Posted after a failed start, while the dialog stands: only the end's work is done.
      return IsWindowVisible(dialog) ? TRUE : FALSE;
    case WM_NCDESTROY:
      RemovePropA(dialog, "GM5Ended");
      return FALSE;
  }
  return FALSE;
}

}  // namespace

int64_t RunMainDialog(WindowHandle parent, HostRecord* host) {
  HINSTANCE instance =
      ModuleInstance ? static_cast<HINSTANCE>(ModuleInstance) : GetModuleHandleA(nullptr);
  return DialogBoxParamA(instance, MAKEINTRESOURCEA(IDD_MAIN), reinterpret_cast<HWND>(parent),
                         MainDialogProc, reinterpret_cast<LPARAM>(host));
}
