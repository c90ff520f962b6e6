// gm5host.exe, the reference host: loads the plug-in library as the editor does, asks for its
// description, and runs PLUGIN16DoBuild with a HostRecord made from the command line, serving
// HostService from a script and logging every call. Usage:
//   gm5host [--plugin DLL] [--version N] [--capabilities N] [--null-service] [--script FILE]
//           [--log FILE] [--dump FOLDER] [--shift]
// --shift holds the Shift key down in the thread's keyboard state while the plug-in runs.
// Numbers may be decimal or 0x hexadecimal. The exit code is 0 when the library ran, 2 when it
// could not be loaded, 3 for a bad command line, 4 when the script did not finish.
#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

#include "host/dialog_driver.h"
#include "host/host_session.h"
#include "host/picture_file_win32.h"
#include "host/import_watch.h"
#include "shell/host_interface.h"

namespace {

HostSession session;

uint64_t ServeFromScript(void* object, int32_t opcode, uint64_t a, uint64_t b) {
  return ServeHostCall(&session, object, opcode, a, b);
}

struct Options {
  std::string plugin = "rfdplgm5.dll";
  uint32_t version = 0x1000;
  uint32_t capabilities = kHostIndexed | kHostTrueColourOffered;
  bool nullService = false;
  bool shift = false;
  std::string script, log, dump;
};

bool ParseOptions(int argc, char** argv, Options* options) {
  for (int i = 1; i < argc; ++i) {
    std::string name = argv[i];
    if (name == "--null-service" || name == "--shift") {
      (name == "--shift" ? options->shift : options->nullService) = true;
      continue;
    }
    if (i + 1 >= argc) return false;
    const char* value = argv[++i];
    if (name == "--plugin")
      options->plugin = value;
    else if (name == "--version")
      options->version = strtoul(value, nullptr, 0);
    else if (name == "--capabilities")
      options->capabilities = strtoul(value, nullptr, 0);
    else if (name == "--script")
      options->script = value;
    else if (name == "--log")
      options->log = value;
    else if (name == "--dump")
      options->dump = value;
    else
      return false;
  }
  return true;
}

void LogWatch(const char* when) {
  ImportWatchCounts counts = ImportWatchNow();
  HostLog(&session, std::string("watch when=") + when +
                        " gdiObjects=" + std::to_string(counts.liveGdiObjects) +
                        " gdiplusStartups=" + std::to_string(counts.gdiplusStartups) +
                        " gdiplusShutdowns=" + std::to_string(counts.gdiplusShutdowns));
}

void LogNumber(const char* event, const char* key, int64_t value) {
  HostLog(&session, std::string(event) + " " + key + "=" + std::to_string(value));
}

}  // namespace

int main(int argc, char** argv) {
  Options options;
  if (!ParseOptions(argc, argv, &options)) {
    fprintf(stderr,
            "usage: gm5host [--plugin DLL] [--version N] [--capabilities N] "
            "[--null-service] [--script FILE] [--log FILE] [--dump FOLDER] [--shift]\n");
    return 3;
  }
  FILE* log = options.log.empty() ? stdout : fopen(options.log.c_str(), "w");
  if (!log) return 3;
  session.log = log;
  session.readPicture = ReadHostPictureFile;
  session.dumpFolder = options.dump;

  std::vector<std::string> steps;
  if (!options.script.empty()) {
    std::ifstream script(options.script);
    if (!script) return 3;
    std::string line;
    while (std::getline(script, line)) {
      if (!line.empty() && line.back() == '\r') line.pop_back();
      if (!ReadHostAnswerLine(&session, line.c_str())) steps.push_back(line);
    }
  }

  HMODULE library = LoadLibraryA(options.plugin.c_str());
  LogNumber("load", "result", library != nullptr);
  if (!library) {
    LogNumber("load", "error", GetLastError());
    return 2;
  }
  auto getParams = reinterpret_cast<int (*)(PluginParams*)>(
      reinterpret_cast<void*>(GetProcAddress(library, "PLUGIN16GetPluginParams")));
  auto doBuild = reinterpret_cast<int (*)(HWND, HostRecord*)>(
      reinterpret_cast<void*>(GetProcAddress(library, "PLUGIN16DoBuild")));
  if (!getParams || !doBuild) {
    HostLog(&session, "load error=missing-export");
    return 2;
  }

  PluginParams params;
  memset(&params, 0xCC, sizeof params);
  params.size = sizeof params;
  int described = getParams(&params);
  params.name[sizeof params.name - 1] = 0;
  params.credit[sizeof params.credit - 1] = 0;
  HostLog(&session,
          "params result=" + std::to_string(described) + " size=" + std::to_string(params.size) +
              " version=" + std::to_string(params.version) + " name=" + EscapeLogText(params.name) +
              " credit=" + EscapeLogText(params.credit));

  HostRecord record{};
  record.version = options.version;
  record.capabilities = options.capabilities;
  record.service = options.nullService ? nullptr : ServeFromScript;
  HostLog(&session, "host version=" + std::to_string(record.version) +
                        " capabilities=" + std::to_string(record.capabilities) +
                        " service=" + std::to_string(record.service != nullptr));

  HWND parent = CreateWindowExA(0, "STATIC", "gm5host", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 320,
                                200, nullptr, nullptr, GetModuleHandleA(nullptr), nullptr);
  LogNumber("parent", "window", parent != nullptr);
  // The system's own count where it keeps one (Wine answers 0), and the library's own objects
  // counted through its imports.
  LogNumber("watch", "imports", WatchLibraryImports(library));
  DWORD gdiBefore = GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS);
  LogWatch("before");
  if (options.shift) {
    BYTE keys[256] = {};
    GetKeyboardState(keys);
    keys[VK_SHIFT] = keys[VK_LSHIFT] = 0x80;
    SetKeyboardState(keys);
  }
  StartDialogDriver(&session, steps);
  int result = doBuild(parent, &record);
  int unfinished = StopDialogDriver();
  DWORD gdiAfter = GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS);
  LogNumber("dobuild", "result", result);
  HostLog(&session,
          "gdi before=" + std::to_string(gdiBefore) + " after=" + std::to_string(gdiAfter));
  LogWatch("after");
  LogNumber("script", "unfinished", unfinished);

  for (const auto& file : session.files) {
    if (!file->closed && !session.dumpFolder.empty()) DumpHostFile(&session, file.get());
  }
  if (parent) DestroyWindow(parent);
  FreeLibrary(library);
  if (log != stdout) fclose(log);
  return unfinished ? 4 : 0;
}
