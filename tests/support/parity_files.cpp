#include "tests/support/parity_files.h"

#include <cstdio>
#include <vector>

#include "shell/packed_dib.h"

int WriteParityFile(const std::string& path, MovableHandle image) {
  ScopedLock lock(image);
  if (!lock) return 0;
  std::FILE* file = std::fopen(path.c_str(), "wb");
  if (!file) return 0;
  const size_t size = MovableSize(image);
  const bool written = std::fwrite(lock.bytes, 1, size, file) == size;
  return std::fclose(file) == 0 && written;
}

MovableHandle ReadParityFile(const std::string& path) {
  std::FILE* file = std::fopen(path.c_str(), "rb");
  if (!file) return nullptr;
  std::vector<uint8_t> bytes;
  uint8_t chunk[4096];
  size_t got;
  while ((got = std::fread(chunk, 1, sizeof chunk, file)) > 0) bytes.insert(bytes.end(), chunk, chunk + got);
  std::fclose(file);
  return bytes.size() >= kDibHeaderBytes ? CopyToMovableBlock(bytes.data(), bytes.size()) : nullptr;
}
