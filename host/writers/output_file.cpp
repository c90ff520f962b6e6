// Temporary outputs renamed into place, and their removal on failure or on a signal.
#include "host/writers/output_file.h"

#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <system_error>

namespace {

// What a signal handler may remove: fixed buffers, published with an atomic count.
constexpr int kPartialSlots = 4096;
constexpr int kPartialPathBytes = 1024;
char partialPaths[kPartialSlots][kPartialPathBytes];
char partialFolder[kPartialPathBytes];
std::atomic<int> partialCount{0};
std::atomic<int> partialFolderSet{0};

void PublishPath(char* slot, const std::string& path) {
  size_t n = path.size() < kPartialPathBytes - 1 ? path.size() : kPartialPathBytes - 1;
  memcpy(slot, path.data(), n);
  slot[n] = 0;
}

void ForgetPartial() {
  partialCount.store(0);
  partialFolderSet.store(0);
}

}  // namespace

void NotePartialOutputFile(const std::string& path) {
  int n = partialCount.load();
  if (n >= kPartialSlots) return;
  PublishPath(partialPaths[n], path);
  partialCount.store(n + 1);
}

void RemovePartialOutputFromSignal() {
  int n = partialCount.load();
  for (int i = 0; i < n; ++i) unlink(partialPaths[i]);
  if (partialFolderSet.load()) rmdir(partialFolder);
}

int BeginOutput(OutputTarget* target, const std::string& path, int folder, std::string* error) {
  namespace fs = std::filesystem;
  ForgetPartial();
  target->path = path;
  target->folder = folder;
  fs::path destination(path);
  if (destination.filename().empty()) destination = destination.parent_path();
  fs::path parent = destination.parent_path();
  std::error_code code;
  if (!parent.empty() && !fs::is_directory(parent, code)) {
    *error = "cannot write " + path + ": no folder " + parent.string();
    return 0;
  }
  std::string name(".");
  name += destination.filename().string();
  name += ".part";
  name += std::to_string(static_cast<long>(getpid()));
  target->temporary = (parent / name).string();
  if (folder) {
    fs::remove_all(target->temporary, code);
    if (!fs::create_directory(target->temporary, code)) {
      *error = "cannot write " + path + ": " + code.message();
      return 0;
    }
    PublishPath(partialFolder, target->temporary);
    partialFolderSet.store(1);
  } else {
    NotePartialOutputFile(target->temporary);
  }
  return 1;
}

int CommitOutput(OutputTarget* target, std::string* error) {
  namespace fs = std::filesystem;
  std::error_code code;
  fs::path destination(target->path);
  if (destination.filename().empty()) destination = destination.parent_path();
  // A folder of frames replaces an earlier one; a file is replaced by the rename itself.
  if (target->folder && fs::is_directory(destination, code)) fs::remove_all(destination, code);
  fs::rename(target->temporary, destination, code);
  if (code) {
    *error = "cannot write " + target->path + ": " + code.message();
    AbandonOutput(target);
    return 0;
  }
  ForgetPartial();
  target->temporary.clear();
  return 1;
}

void AbandonOutput(OutputTarget* target) {
  ForgetPartial();
  if (target->temporary.empty()) return;
  std::error_code code;
  std::filesystem::remove_all(target->temporary, code);
  target->temporary.clear();
}
