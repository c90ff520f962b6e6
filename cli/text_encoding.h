// Text between the UTF-8 of a Linux terminal or file and the engine's 8-bit code page,
// Windows-1252 (the plug-in's).
#pragma once

#include <string>

// Converts UTF-8 `text` to Windows-1252. Returns 0 with a one-line `error` naming the first
// character the code page cannot hold (as U+XXXX and itself), or the first byte that is not UTF-8.
// With `singleLine`, control characters (a line break, a tab, ...) are refused as well.
int Utf8ToWindows1252(const std::string& text, int singleLine, std::string* out,
                      std::string* error);
// Converts Windows-1252 `text` to UTF-8. The five bytes the code page leaves undefined are kept
// as the C1 controls of the same number.
std::string Windows1252ToUtf8(const std::string& text);
// Nonzero when `text` is well-formed UTF-8.
int IsUtf8(const std::string& text);
