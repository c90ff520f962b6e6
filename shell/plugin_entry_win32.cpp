// The library's three exports: DllMain with the load gate, PLUGIN16GetPluginParams, and
// PLUGIN16DoBuild, which runs one whole use of the plug-in: drawing layer, shared fonts, folders,
// the main dialog, and their release in reverse order.
#include <windows.h>
#include <commctrl.h>
#include <shlobj.h>

#include "controls/animation_picker_win32.h"
#include "controls/page_setup.h"
#include "materials/fountain_button_win32.h"
#include "materials/material_button_win32.h"
#include "shell/crt_random.h"
#include "shell/host_gate.h"
#include "shell/host_interface.h"
#include "shell/library_state.h"
#include "shell/main_dialog.h"
#include "shell/messages.h"
#include "text/drawing_layer.h"

namespace {

const char kNeedNewerHost[] =
    "You need a newer version of Reel Foundry Professional or Strip Foundry to support this "
    "plugin.\n\nPlease visit the Cobalt Lanternary web page to update your software.";

void RepaintWindow(HWND window) {
  if (!window) return;
  InvalidateRect(window, nullptr, TRUE);
  UpdateWindow(window);
}

// Copies the folder part of `path`, up to and including its last backslash, into `folder`.
void KeepFolder(const char* path, char* folder, size_t capacity) {
  const char* slash = strrchr(path, '\\');
  size_t length = slash ? static_cast<size_t>(slash - path) + 1 : 0;
  if (length >= capacity) length = 0;
  memcpy(folder, path, length);
  folder[length] = 0;
}

void StorePluginFolder() {
  char path[MAX_PATH + 1] = "";
  DWORD length = GetModuleFileNameA(static_cast<HINSTANCE>(ModuleInstance), path, MAX_PATH);
  path[length < MAX_PATH ? length : MAX_PATH] = 0;
  KeepFolder(path, PluginFolder, sizeof PluginFolder);
}

void StoreDocumentsFolder() {
  LPITEMIDLIST list = nullptr;
  if (SHGetSpecialFolderLocation(nullptr, CSIDL_PERSONAL, &list) != S_OK || !list) return;
  char path[MAX_PATH + 1] = "";
  if (SHGetPathFromIDListA(list, path)) {
    size_t length = strlen(path);
    char* openPath = OpenPath();
    if (length + 1 < kOpenPathSize) {
      memcpy(openPath, path, length);
      if (length == 0 || path[length - 1] != '\\') openPath[length++] = '\\';
      openPath[length] = 0;
    }
  }
  IMalloc* shellMalloc = nullptr;
  if (SHGetMalloc(&shellMalloc) == S_OK && shellMalloc) {
    shellMalloc->Free(list);
    shellMalloc->Release();
  }
}

}  // namespace

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID reserved) {
  ModuleInstance = instance;
  if (reason != DLL_PROCESS_ATTACH) return TRUE;
  return HostGateAcceptsProcess() ? TRUE : FALSE;
}

extern "C" __declspec(dllexport) int PLUGIN16GetPluginParams(PluginParams* params) {
  return FillPluginParams(params);
}

extern "C" __declspec(dllexport) int PLUGIN16DoBuild(HWND parent, HostRecord* host) {
  if (!host || !HostVersionSupported(host->version)) {
    ShowMessage(reinterpret_cast<WindowHandle>(parent), kNeedNewerHost);
    RepaintWindow(parent);
    return 0;
  }
  // The library stays loaded between uses: each use draws from a fresh generator, as gm5 does.
  crt::srand(crt::kStartSeed);
  DrawRequest drawing{};
  drawing.operation = kDrawStartup;
  DispatchDraw(&drawing);

  DialogFonts[0] = CreateFontA(14, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, "Arial");
  DialogFonts[1] = CreateFontA(14, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, "MS Sans Serif");
  DialogFonts[2] = CreateFontA(12, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, "Arial");
  StorePluginFolder();
  if (!OpenPath()[0]) StoreDocumentsFolder();

  INITCOMMONCONTROLSEX controls = {sizeof controls, ICC_STANDARD_CLASSES | ICC_UPDOWN_CLASS};
  InitCommonControlsEx(&controls);
  InstallControlKinds();
  RunMainDialog(reinterpret_cast<WindowHandle>(parent), host);
  UnregisterMaterialButtonClass();
  UnregisterAnimationPickerClass();
  UnregisterFountainButtonClass();
  CurrentHost = nullptr;
  RepaintWindow(parent);

  for (void*& font : DialogFonts) {
    if (font) DeleteObject(static_cast<HFONT>(font));
    font = nullptr;
  }
  drawing.operation = kDrawShutdown;  // the same request carries the start-up token
  DispatchDraw(&drawing);
  return 1;
}
