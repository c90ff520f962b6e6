// The shared gradient library "FountainLibrary.fll": an 80-byte header ("COBLFLHH", creation
// time, entry count) followed by 340-byte entries ("COBLFLHE", marker count, the two end colours,
// 64 markers), little-endian, every byte not named zero. An entry keeps no name and no flags, so
// a looped gradient comes back not looped.
#pragma once

#include <cstddef>
#include <cstdint>

#include "materials/gradient.h"

constexpr size_t kLibraryHeaderSize = 80;
constexpr size_t kLibraryEntrySize = 340;

void FountainToLibraryEntry(const FountainGradient* gradient, uint8_t* entry);
// A fresh record from an entry. 0 when the magic is wrong or the marker count is above 64.
int FountainFromLibraryEntry(const uint8_t* entry, FountainGradient* gradient);

// Called for every good entry in file order; returning 0 stops the reading.
typedef int (*LibraryEntryProc)(void* context, const FountainGradient* gradient);

// Reads library bytes entry by entry, stopping at the first short or damaged entry. 0 only when
// the header is missing or its magic is wrong.
int ReadLibraryBytes(const uint8_t* bytes, size_t size, LibraryEntryProc proc, void* context);
// The same from a file. 0 when it can't be opened or has no good header.
int ReadLibraryFile(const char* path, LibraryEntryProc proc, void* context);

// Appends one entry, creating the file with an empty header stamped `created` when it is missing.
// A failed creation deletes the file. 1 or 0.
int AddToLibraryFile(const char* path, const FountainGradient* gradient, uint32_t created);

// Rewrites the library with `count` entries: the old file is kept as "<path>.bak" first, then
// the entries are added again one by one. 1 or 0.
int RewriteLibraryFile(const char* path, const FountainGradient* gradients, size_t count,
                       uint32_t created);

// The library in the data folder.
int LibraryFilePath(char* path, size_t size);
int AddToLibrary(const FountainGradient* gradient);
