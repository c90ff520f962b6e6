// A scratch folder for one posix test, named after it and removed with everything in it; on
// request also the configuration folder (XDG_CONFIG_HOME) while it lives. FileBytes reads a file
// whole. Header only: the Windows tests do not use it.
#pragma once

#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <gtest/gtest.h>

struct ScratchFolder {
  std::filesystem::path folder;
  std::string oldConfig;
  int config = 0, hadConfig = 0;
  explicit ScratchFolder(int asConfig = 0) : config(asConfig) {
    const testing::TestInfo* test = testing::UnitTest::GetInstance()->current_test_info();
    folder =
        std::filesystem::temp_directory_path() /
        ("gm5-" + std::to_string(getpid()) + "-" + test->test_suite_name() + "." + test->name());
    std::filesystem::remove_all(folder);
    std::filesystem::create_directories(folder / "config");
    if (!config) return;
    if (const char* old = getenv("XDG_CONFIG_HOME")) oldConfig = old, hadConfig = 1;
    setenv("XDG_CONFIG_HOME", (folder / "config").c_str(), 1);
  }
  ~ScratchFolder() {
    if (config && hadConfig) setenv("XDG_CONFIG_HOME", oldConfig.c_str(), 1);
    if (config && !hadConfig) unsetenv("XDG_CONFIG_HOME");
    std::filesystem::remove_all(folder);
  }
  std::string Path(const std::string& name) const { return (folder / name).string(); }
  // The names in the folder but the configuration folder: a failed write leaves none.
  std::vector<std::string> Names() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
      if (entry.path().filename() != "config") names.push_back(entry.path().filename().string());
    return names;
  }
};

inline std::vector<uint8_t> FileBytes(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return std::vector<uint8_t>(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}
