// What the text tests share: the face they draw with, installed on the test machines and found by
// Wine too. The drawing layer is started once for the whole test program (drawing_layer_test).
#pragma once

constexpr const char kTestFace[] = "DejaVu Sans";

#include <cstdint>

// Draws "O" in bold at 40 pixels in grey 200 and counts its pixels at 200 and between 200 and 0,
// failing the test when a pixel is not grey or brighter than the pen (drawing_layer_test).
void CountGlyphPixels(int32_t antialias, int* full, int* partial);
