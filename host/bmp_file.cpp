// BMP reading and writing on the Packed DIB form of shell/packed_dib.h.
#include "host/bmp_file.h"

#include <cstdio>
#include <cstring>

#include "shell/packed_dib.h"

namespace {

void PutU32(uint8_t* at, uint32_t value) {
  memcpy(at, &value, 4);
}

}  // namespace

size_t PackedDibBytes(const uint8_t* header, size_t available) {
  if (!header || available < kDibHeaderBytes) return 0;
  BitmapInfoHeader h;
  memcpy(&h, header, sizeof h);
  int depthOk = h.biBitCount == 1 || h.biBitCount == 4 || h.biBitCount == 8 || h.biBitCount == 24 ||
                h.biBitCount == 32;
  if (h.biSize != kDibHeaderBytes || !depthOk || h.biCompression != 0) return 0;
  if (h.biWidth <= 0 || h.biHeight <= 0 || h.biWidth > 65535 || h.biHeight > 65535) return 0;
  return kDibHeaderBytes + DibTableBytes(h.biBitCount) +
         static_cast<size_t>(DibStride(h.biWidth, h.biBitCount)) * static_cast<size_t>(h.biHeight);
}

std::vector<uint8_t> PackedDibToBmp(const uint8_t* dib, size_t size) {
  size_t needed = PackedDibBytes(dib, size);
  if (!needed || needed > size) return {};
  std::vector<uint8_t> file(14 + needed);
  BitmapInfoHeader h;
  memcpy(&h, dib, sizeof h);
  file[0] = 'B';
  file[1] = 'M';
  PutU32(&file[2], static_cast<uint32_t>(file.size()));
  PutU32(&file[10], 14 + kDibHeaderBytes + DibTableBytes(h.biBitCount));
  memcpy(&file[14], dib, needed);
  return file;
}

MovableHandle BmpToPackedDib(const uint8_t* file, size_t size) {
  if (!file || size < 14 + kDibHeaderBytes || file[0] != 'B' || file[1] != 'M') return nullptr;
  uint32_t bitsOffset;
  memcpy(&bitsOffset, file + 10, 4);
  const uint8_t* header = file + 14;
  size_t dibBytes = PackedDibBytes(header, size - 14);
  if (!dibBytes) return nullptr;
  BitmapInfoHeader h;
  memcpy(&h, header, sizeof h);
  uint32_t tableBytes = DibTableBytes(h.biBitCount);
  uint32_t tableEntries = h.biClrUsed ? h.biClrUsed : tableBytes / 4;
  size_t fileTableBytes = static_cast<size_t>(tableEntries) * 4;
  size_t bitsBytes = dibBytes - kDibHeaderBytes - tableBytes;
  if (fileTableBytes > tableBytes || 14 + kDibHeaderBytes + fileTableBytes > size) return nullptr;
  if (bitsOffset > size || size - bitsOffset < bitsBytes) return nullptr;

  MovableHandle dib = MovableAlloc(dibBytes);
  ScopedLock bytes(dib);
  if (!bytes) {
    MovableFree(dib);
    return nullptr;
  }
  memcpy(bytes.bytes, header, kDibHeaderBytes);
  memcpy(bytes.bytes + kDibHeaderBytes, header + kDibHeaderBytes, fileTableBytes);
  memcpy(bytes.bytes + kDibHeaderBytes + tableBytes, file + bitsOffset, bitsBytes);
  BitmapInfoHeader* out = reinterpret_cast<BitmapInfoHeader*>(bytes.bytes);
  out->biClrUsed = 0;
  out->biSizeImage = static_cast<uint32_t>(bitsBytes);
  return dib;
}

int WriteWholeFile(const char* path, const std::vector<uint8_t>& bytes) {
  FILE* file = fopen(path, "wb");
  if (!file) return 0;
  size_t written = fwrite(bytes.data(), 1, bytes.size(), file);
  return (fclose(file) == 0) & (written == bytes.size());
}

std::vector<uint8_t> ReadWholeFile(const char* path) {
  std::vector<uint8_t> bytes;
  FILE* file = fopen(path, "rb");
  if (!file) return bytes;
  uint8_t chunk[65536];
  size_t got;
  while ((got = fread(chunk, 1, sizeof chunk, file)) > 0)
    bytes.insert(bytes.end(), chunk, chunk + got);
  fclose(file);
  return bytes;
}
