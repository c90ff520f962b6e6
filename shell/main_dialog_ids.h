// Ids of the main dialog's value controls that the build and the command line read or set.
#pragma once

#include <cstdint>

constexpr int32_t kIdTrueColour = 10;
constexpr int32_t kIdPalette = 13;
constexpr int32_t kIdCustomPalette = 14;
constexpr int32_t kIdDither = 15;
constexpr int32_t kIdSupercompress = 19;
constexpr int32_t kIdMaskBackground = 21;
constexpr int32_t kIdTransparent = 35;
constexpr int32_t kIdFontName = 53;
constexpr int32_t kIdBold = 54;
constexpr int32_t kIdItalic = 55;
constexpr int32_t kIdFontSize = 57;
constexpr int32_t kIdEffect = 58;
constexpr int32_t kIdAlphaTransparency = 62;
