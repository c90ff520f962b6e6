// The installed font families as fontconfig knows them, for a font box without a window system
// and for listing, and the family a missing one is drawn in.
#pragma once

#include <cstddef>

// Calls `visit` with each family name of the installed scalable fonts, sorted and each once.
// Returns the number of families.
int ListFontFamilies(void (*visit)(const char* family, void* context), void* context);
// Writes into `face` the family that text asking for `family` is drawn in: `family` itself when it
// is installed, else the face used instead. Returns 0 when there is no font at all.
int DrawnFontFamily(const char* family, char* face, size_t size);
