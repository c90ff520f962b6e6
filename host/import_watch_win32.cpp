// Import-table redirection: each watched import of the library is replaced by a wrapper that calls
// the real function and keeps a set of the live handles it returned. Deleting a handle the library
// did not create leaves the count alone.
#include <windows.h>
#include <objidl.h>
#include <gdiplus.h>

#include <cctype>
#include <cstring>
#include <set>

#include "host/import_watch.h"

namespace {

std::set<HGDIOBJ> liveObjects;
int64_t startups = 0, shutdowns = 0;

HGDIOBJ Track(HGDIOBJ object) {
  if (object) liveObjects.insert(object);
  return object;
}

BOOL Untrack(HGDIOBJ object, BOOL deleted) {
  if (deleted) liveObjects.erase(object);
  return deleted;
}

HFONT WINAPI WatchCreateFontA(int h, int w, int e, int o, int wt, DWORD i, DWORD u, DWORD s,
                              DWORD c, DWORD op, DWORD cp, DWORD q, DWORD pf, LPCSTR face) {
  return static_cast<HFONT>(Track(CreateFontA(h, w, e, o, wt, i, u, s, c, op, cp, q, pf, face)));
}
HFONT WINAPI WatchCreateFontIndirectA(const LOGFONTA* font) {
  return static_cast<HFONT>(Track(CreateFontIndirectA(font)));
}
HBRUSH WINAPI WatchCreateSolidBrush(COLORREF colour) {
  return static_cast<HBRUSH>(Track(CreateSolidBrush(colour)));
}
HBRUSH WINAPI WatchCreateBrushIndirect(const LOGBRUSH* brush) {
  return static_cast<HBRUSH>(Track(CreateBrushIndirect(brush)));
}
HPEN WINAPI WatchCreatePen(int style, int width, COLORREF colour) {
  return static_cast<HPEN>(Track(CreatePen(style, width, colour)));
}
HBITMAP WINAPI WatchCreateCompatibleBitmap(HDC dc, int width, int height) {
  return static_cast<HBITMAP>(Track(CreateCompatibleBitmap(dc, width, height)));
}
HBITMAP WINAPI WatchCreateDIBSection(HDC dc, const BITMAPINFO* info, UINT usage, void** bits,
                                     HANDLE section, DWORD offset) {
  return static_cast<HBITMAP>(Track(CreateDIBSection(dc, info, usage, bits, section, offset)));
}
HDC WINAPI WatchCreateCompatibleDC(HDC dc) {
  return static_cast<HDC>(Track(CreateCompatibleDC(dc)));
}
HRGN WINAPI WatchCreateRectRgn(int left, int top, int right, int bottom) {
  return static_cast<HRGN>(Track(CreateRectRgn(left, top, right, bottom)));
}
BOOL WINAPI WatchDeleteObject(HGDIOBJ object) {
  return Untrack(object, DeleteObject(object));
}
BOOL WINAPI WatchDeleteDC(HDC dc) {
  return Untrack(dc, DeleteDC(dc));
}

Gdiplus::Status WINAPI WatchGdiplusStartup(ULONG_PTR* token,
                                           const Gdiplus::GdiplusStartupInput* input,
                                           Gdiplus::GdiplusStartupOutput* output) {
  Gdiplus::Status status = Gdiplus::GdiplusStartup(token, input, output);
  if (status == Gdiplus::Ok) ++startups;
  return status;
}
void WINAPI WatchGdiplusShutdown(ULONG_PTR token) {
  ++shutdowns;
  Gdiplus::GdiplusShutdown(token);
}

struct Redirect {
  const char* name;
  void* wrapper;
};
const Redirect kRedirects[] = {
    {"CreateFontA", reinterpret_cast<void*>(WatchCreateFontA)},
    {"CreateFontIndirectA", reinterpret_cast<void*>(WatchCreateFontIndirectA)},
    {"CreateSolidBrush", reinterpret_cast<void*>(WatchCreateSolidBrush)},
    {"CreateBrushIndirect", reinterpret_cast<void*>(WatchCreateBrushIndirect)},
    {"CreatePen", reinterpret_cast<void*>(WatchCreatePen)},
    {"CreateCompatibleBitmap", reinterpret_cast<void*>(WatchCreateCompatibleBitmap)},
    {"CreateDIBSection", reinterpret_cast<void*>(WatchCreateDIBSection)},
    {"CreateCompatibleDC", reinterpret_cast<void*>(WatchCreateCompatibleDC)},
    {"CreateRectRgn", reinterpret_cast<void*>(WatchCreateRectRgn)},
    {"DeleteObject", reinterpret_cast<void*>(WatchDeleteObject)},
    {"DeleteDC", reinterpret_cast<void*>(WatchDeleteDC)},
    {"GdiplusStartup", reinterpret_cast<void*>(WatchGdiplusStartup)},
    {"GdiplusShutdown", reinterpret_cast<void*>(WatchGdiplusShutdown)},
};

bool SameLibrary(const char* a, const char* b) {
  return _stricmp(a, b) == 0;
}

}  // namespace

int WatchLibraryImports(void* module) {
  uint8_t* base = static_cast<uint8_t*>(module);
  auto dos = reinterpret_cast<IMAGE_DOS_HEADER*>(base);
  auto nt = reinterpret_cast<IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
  const IMAGE_DATA_DIRECTORY& directory =
      nt->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
  if (!directory.VirtualAddress) return 0;
  int redirected = 0;
  for (auto entry = reinterpret_cast<IMAGE_IMPORT_DESCRIPTOR*>(base + directory.VirtualAddress);
       entry->Name; ++entry) {
    const char* library = reinterpret_cast<const char*>(base + entry->Name);
    if (!SameLibrary(library, "gdi32.dll") && !SameLibrary(library, "gdiplus.dll")) continue;
    auto names = reinterpret_cast<IMAGE_THUNK_DATA*>(base + entry->OriginalFirstThunk);
    auto slots = reinterpret_cast<IMAGE_THUNK_DATA*>(base + entry->FirstThunk);
    for (; names->u1.AddressOfData; ++names, ++slots) {
      if (IMAGE_SNAP_BY_ORDINAL(names->u1.Ordinal)) continue;
      auto byName = reinterpret_cast<IMAGE_IMPORT_BY_NAME*>(base + names->u1.AddressOfData);
      for (const Redirect& redirect : kRedirects) {
        if (strcmp(reinterpret_cast<const char*>(byName->Name), redirect.name)) continue;
        DWORD old = 0;
        if (!VirtualProtect(&slots->u1.Function, sizeof slots->u1.Function, PAGE_READWRITE, &old))
          continue;
        slots->u1.Function = reinterpret_cast<ULONGLONG>(redirect.wrapper);
        VirtualProtect(&slots->u1.Function, sizeof slots->u1.Function, old, &old);
        ++redirected;
      }
    }
  }
  return redirected;
}

ImportWatchCounts ImportWatchNow() {
  return {static_cast<int64_t>(liveObjects.size()), startups, shutdowns};
}
