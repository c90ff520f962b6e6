// Drawing the pickers' arrows into strips. Each arrow is sampled at pixel centres in a frame
// turned to its direction, so an arrow and its opposite are exact mirror images.
#include "controls/picker_strips.h"

#include <cmath>

#include "controls/direction_picker.h"
#include "shell/packed_dib.h"

namespace {

// Where each cell's arrow points (x right, y down); `both` draws a head at each end.
struct CellArrow {
  int dx;
  int dy;
  int both;
};

CellArrow ArrowOf(ControlKind kind, int32_t cell) {
  // SDWDIR: up-left, up, up-right, right, left, down-left, down, down-right.
  static const CellArrow shadow[8] = {{-1, -1, 0}, {0, -1, 0}, {1, -1, 0}, {1, 0, 0},
                                      {-1, 0, 0},  {-1, 1, 0}, {0, 1, 0},  {1, 1, 0}};
  // SCRL4D runs top, right, left, bottom.
  static const CellArrow four[4] = {{0, -1, 0}, {1, 0, 0}, {-1, 0, 0}, {0, 1, 0}};
  static const CellArrow two[2] = {{-1, 0, 0}, {1, 0, 0}};
  // SCRLHV: cell 0 horizontal, cell 1 vertical.
  static const CellArrow hv[2] = {{1, 0, 1}, {0, 1, 1}};
  switch (kind) {
    case kControlShadowPicker:
      return shadow[cell & 7];
    case kControlScroll4Picker:
      return four[cell & 3];
    case kControlScroll2Picker:
      return two[cell & 1];
    default:
      return hv[cell & 1];
  }
}

// Nonzero when the point (u along the arrow, v across it), measured from the cell's centre, lies
// on an arrow whose tip is `tip` pixels out: a head 6 long and 10 wide on a shaft 2.5 wide that
// runs back almost as far, or a head at each end for a double arrow.
int OnArrow(double u, double v, double tip, int both) {
  if (both) u = std::fabs(u);
  const double headBase = tip - 6.0;
  if (u >= headBase && u <= tip - 0.5 && std::fabs(v) <= (tip - u) * 0.85) return 1;
  const double tail = both ? 0.0 : -tip + 1.0;
  return u >= tail && u <= headBase + 0.5 && std::fabs(v) <= 1.25;
}

}  // namespace

MovableHandle CreatePickerStrip(ControlKind kind, uint32_t fill) {
  const PickerShape* shape = FindPickerShape(kind);
  if (!shape) return nullptr;
  const int32_t h = kPickerStripHeight;
  MovableHandle strip = CreatePackedDib(h * shape->cellCount, h, nullptr, 24);
  ScopedLock lock(strip);
  if (!lock) {
    MovableFree(strip);
    return nullptr;
  }
  for (int32_t cell = 0; cell < shape->cellCount; ++cell) {
    const CellArrow arrow = ArrowOf(kind, cell);
    const double length = std::sqrt(static_cast<double>(arrow.dx * arrow.dx + arrow.dy * arrow.dy));
    const double ux = arrow.dx / length, uy = arrow.dy / length;
    // Diagonal arrows are shorter, so that their heads stay clear of the corners.
    const double tip = arrow.dx && arrow.dy ? 8.5 : 9.0;
    for (int32_t y = 0; y < h; ++y)
      for (int32_t x = 0; x < h; ++x) {
        const double px = x + 0.5 - h / 2.0, py = y + 0.5 - h / 2.0;
        const double u = px * ux + py * uy;
        const double v = -px * uy + py * ux;
        WriteDibPixel(lock.bytes, h * cell + x, y,
                      OnArrow(u, v, tip, arrow.both) ? 0x000000 : fill);
      }
  }
  return strip;
}
