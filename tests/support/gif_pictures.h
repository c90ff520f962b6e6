// The pictures a GIF decoder shows, frame after frame: each image drawn at its place over what
// the previous one's disposal left, transparent pixels letting the picture below show, and the
// area of a frame disposed "to background" cleared to nothing (0). Pixels are 0xAABBGGRR.
// Header only, for the posix tests that decode what the writers made.
#pragma once

#include <gif_lib.h>

#include <cstdint>
#include <vector>

inline std::vector<std::vector<uint32_t>> ShownGifPictures(GifFileType* gif) {
  std::vector<std::vector<uint32_t>> pictures;
  std::vector<uint32_t> screen(static_cast<size_t>(gif->SWidth) * gif->SHeight, 0);
  int clearLeft = 0, clearTop = 0, clearWidth = 0, clearHeight = 0;
  for (int i = 0; i < gif->ImageCount; ++i) {
    for (int y = clearTop; y < clearTop + clearHeight && y < gif->SHeight; ++y)
      for (int x = clearLeft; x < clearLeft + clearWidth && x < gif->SWidth; ++x)
        screen[static_cast<size_t>(y) * gif->SWidth + x] = 0;
    const SavedImage& image = gif->SavedImages[i];
    GraphicsControlBlock control{};
    control.TransparentColor = NO_TRANSPARENT_COLOR;
    DGifSavedExtensionToGCB(gif, i, &control);
    const ColorMapObject* map =
        image.ImageDesc.ColorMap ? image.ImageDesc.ColorMap : gif->SColorMap;
    const GifImageDesc& d = image.ImageDesc;
    for (int y = 0; y < d.Height; ++y)
      for (int x = 0; x < d.Width; ++x) {
        const int index = image.RasterBits[static_cast<size_t>(y) * d.Width + x];
        if (index == control.TransparentColor || d.Left + x >= gif->SWidth ||
            d.Top + y >= gif->SHeight)
          continue;
        const GifColorType& c = map->Colors[index];
        screen[static_cast<size_t>(d.Top + y) * gif->SWidth + d.Left + x] =
            0xFF000000u | c.Blue << 16 | c.Green << 8 | c.Red;
      }
    pictures.push_back(screen);
    clearWidth = clearHeight = 0;
    if (control.DisposalMode == DISPOSE_BACKGROUND)
      clearLeft = d.Left, clearTop = d.Top, clearWidth = d.Width, clearHeight = d.Height;
  }
  return pictures;
}
