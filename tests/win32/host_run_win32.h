// Running gm5host under a script from a Windows test, and reading its log back; and the plug-in's
// configuration file, which the runs share (the tests start it fresh or read what a close wrote).
#pragma once

#include <windows.h>
#include <shlobj.h>

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "tests/win32/win32_test_support.h"

struct HostRun {
  DWORD exitCode = 0xFFFFFFFF;
  std::vector<std::string> lines;

  // The first line starting with `prefix`, or "" when none does.
  std::string Line(const std::string& prefix) const {
    for (const std::string& line : lines)
      if (line.compare(0, prefix.size(), prefix) == 0) return line;
    return "";
  }
  int Count(const std::string& prefix) const {
    int count = 0;
    for (const std::string& line : lines) count += line.compare(0, prefix.size(), prefix) == 0;
    return count;
  }
  // The value of `key` in the first line starting with `prefix`, or "" when there is none.
  std::string Value(const std::string& prefix, const std::string& key) const {
    std::istringstream words(Line(prefix));
    for (std::string word; words >> word;)
      if (word.compare(0, key.size() + 1, key + "=") == 0) return word.substr(key.size() + 1);
    return "";
  }
};

inline std::string TempFolder() {
  char folder[MAX_PATH];
  GetTempPathA(MAX_PATH, folder);
  return folder;
}

// Runs gm5host with `arguments` and a script of `script`, and reads its log.
inline HostRun RunHost(const std::string& arguments, const std::string& script) {
  std::string stem = TempFolder() + "gm5host_test_" + std::to_string(GetCurrentProcessId());
  std::string scriptPath = stem + ".script", logPath = stem + ".log";
  std::ofstream(scriptPath) << script;
  DeleteFileA(logPath.c_str());

  std::string command = std::string("\"") + BuildPath(GM5_HOST_PATH) + "\" --plugin \"" +
                        BuildPath(GM5_PLUGIN_PATH) + "\" --script \"" + scriptPath + "\" --log \"" +
                        logPath + "\" " + arguments;
  HostRun run;
  STARTUPINFOA startup{};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION process{};
  if (!CreateProcessA(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                      &startup, &process))
    return run;
  if (WaitForSingleObject(process.hProcess, 120000) != WAIT_OBJECT_0)
    TerminateProcess(process.hProcess, 99);
  GetExitCodeProcess(process.hProcess, &run.exitCode);
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
  std::ifstream log(logPath);
  for (std::string line; std::getline(log, line);) run.lines.push_back(line);
  DeleteFileA(scriptPath.c_str());
  DeleteFileA(logPath.c_str());
  return run;
}

// The plug-in's configuration file, in its folder of the application data.
inline std::string ConfigurationPath() {
  char base[MAX_PATH] = "";
  SHGetFolderPathA(nullptr, CSIDL_APPDATA, nullptr, 0, base);
  std::string folder = std::string(base) + "\\Cobalt Lanternary";
  CreateDirectoryA(folder.c_str(), nullptr);
  return folder + "\\rfdplgm5.ini";
}

// Removes the configuration, so that the next run starts on the defaults as a first use.
inline void ForgetConfiguration() {
  DeleteFileA(ConfigurationPath().c_str());
  DeleteFileA((ConfigurationPath() + ".bak").c_str());
}

inline std::string ReadConfiguration() {
  std::ifstream file(ConfigurationPath());
  std::stringstream text;
  text << file.rdbuf();
  return text.str();
}
