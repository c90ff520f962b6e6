// Marker list editing for the fountain button. The list is kept sorted by position with the
// entries at position 0 at the back, so a deleted (zeroed) entry falls off the end.
#include "materials/fountain_markers.h"

#include <cmath>
#include <cstdlib>
#include <cstring>

namespace {

constexpr int32_t kHighEnd = 63;  // from here up the search walks down one at a time

uint32_t PositionOf(FountainMarker marker) { return marker >> 24; }

int PositionTaken(const FountainGradient* gradient, int32_t position) {
  const uint32_t count = gradient->markerCount < kFountainMarkers ? gradient->markerCount
                                                                  : kFountainMarkers;
  for (uint32_t i = 0; i < count; ++i)
    if (static_cast<int32_t>(PositionOf(gradient->markers[i])) == position) return 1;
  return 0;
}

// The markers sit unaligned inside the packed record, so they are read byte-wise.
FountainMarker LoadMarker(const void* at) {
  FountainMarker marker;
  std::memcpy(&marker, at, sizeof(marker));
  return marker;
}

int CompareMarkers(const void* a, const void* b) {
  const uint32_t first = PositionOf(LoadMarker(a));
  const uint32_t second = PositionOf(LoadMarker(b));
  if (first == 0) return second == 0 ? 0 : 1;
  if (second == 0) return -1;
  return first < second ? -1 : (first > second ? 1 : 0);
}

// Nearest free position to `wanted` within 1 to 255, the lower one first on a tie.
int32_t OutwardFreePosition(const FountainGradient* gradient, int32_t wanted) {
  if (wanted < 1) wanted = 1;
  if (wanted > 255) wanted = 255;
  for (int32_t distance = 0; distance < 255; ++distance) {
    if (wanted - distance >= 1 && !PositionTaken(gradient, wanted - distance))
      return wanted - distance;
    if (wanted + distance <= 255 && !PositionTaken(gradient, wanted + distance))
      return wanted + distance;
  }
  return -1;
}

}  // namespace

int32_t FindFreeMarkerPosition(const FountainGradient* gradient, int32_t wanted) {
  if (gradient->markerCount >= kFountainMarkers) return -1;
  int32_t p = wanted < 0 ? 0 : (wanted > 255 ? 255 : wanted);
  int32_t step = -1;
  int lowReached = 0;
  int highReached = 0;
  // Each (position, step) pair is met at most once; meeting one again means the alternation
  // below 63 is circling between two taken neighbours.
  bool seen[256][2] = {};
  for (;;) {
    if (lowReached && highReached) return -1;
    // Position 0 is never given: the sort keeps it for the cleared entries at the back.
    if (p != 0 && !PositionTaken(gradient, p)) return p;
    if (p == 0) {
      p = 1;
      lowReached = 1;
      step = -1;
      continue;
    }
    if (p >= kHighEnd) {
      highReached = 1;
      step = -1;
    }
    bool& state = seen[p][step > 0];
    if (state) return OutwardFreePosition(gradient, wanted);
    state = true;
    p += step;
    step = -step;
    if (p > 255) p = 255;
  }
}

void SortFountainMarkers(FountainMarker* markers, uint32_t count) {
  if (count > kFountainMarkers) count = kFountainMarkers;
  std::qsort(markers, count, sizeof(FountainMarker), CompareMarkers);
}

int AddFountainMarker(FountainGradient* gradient, int32_t wanted, uint32_t colour) {
  const int32_t position = FindFreeMarkerPosition(gradient, wanted);
  if (position < 0) return 0;
  gradient->markers[gradient->markerCount] =
      (colour & 0xFFFFFF) | (static_cast<uint32_t>(position) << 24);
  ++gradient->markerCount;
  SortFountainMarkers(gradient->markers, gradient->markerCount);
  return 1;
}

int DeleteFountainMarker(FountainGradient* gradient, int32_t index, const char** message) {
  if (gradient->markerCount == 0) {
    if (message) *message = "That marker cannot be deleted";
    return 0;
  }
  if (index < 0 || static_cast<uint32_t>(index) >= gradient->markerCount ||
      index >= kFountainMarkers) {
    if (message) *message = "Internal error";
    return 0;
  }
  gradient->markers[index] = 0;
  SortFountainMarkers(gradient->markers, gradient->markerCount);
  --gradient->markerCount;
  return 1;
}

int32_t DragEndPosition(int32_t startX, int32_t moved, int32_t stripLeft, int32_t stripWidth) {
  if (stripWidth <= 0) return 1;
  const double p = std::trunc(static_cast<double>(startX - stripLeft + moved) / stripWidth * 255.0);
  if (p < 1.0) return 1;
  if (p > 255.0) return 255;
  return static_cast<int32_t>(p);
}

int DropFountainMarker(FountainGradient* gradient, int32_t index, int32_t position) {
  if (index < 0 || static_cast<uint32_t>(index) >= gradient->markerCount ||
      index >= kFountainMarkers)
    return 0;
  const uint32_t colour = gradient->markers[index] & 0xFFFFFF;
  if (!DeleteFountainMarker(gradient, index, nullptr)) return 0;
  return AddFountainMarker(gradient, position, colour);
}

int32_t HoldDragX(int32_t x, int32_t stripLeft, int32_t stripWidth) {
  if (x < stripLeft + 1) return stripLeft + 1;
  if (x > stripLeft + stripWidth) return stripLeft + stripWidth;
  return x;
}

int32_t ClickMarkerPosition(int32_t x, int32_t stripLeft, int32_t stripWidth) {
  if (stripWidth <= 0) return 0;
  return static_cast<int32_t>(
      std::trunc(static_cast<double>(x - stripLeft) / stripWidth * 255.0));
}

int32_t MarkerOffset(const FountainGradient* gradient, int32_t index, int32_t stripWidth) {
  const uint32_t position = PositionOf(LoadMarker(&gradient->markers[index]));
  return static_cast<int32_t>(std::trunc(position / 255.0 * stripWidth));
}

int32_t FountainHitTest(const FountainGradient* gradient, int32_t clientWidth, int32_t x,
                        int32_t y) {
  const int32_t stripLeft = kStripInsetX;
  const int32_t stripRight = clientWidth - kStripInsetX;
  const int markerRow = y >= 4 && y < 10;
  if (markerRow && x >= stripLeft - 5 && x < stripLeft + 5) return kFountainLeftEnd;
  if (markerRow && x >= stripRight - 5 && x < stripRight + 5) return kFountainRightEnd;
  const int32_t count = gradient->markerCount < static_cast<uint32_t>(kFountainMarkers)
                            ? static_cast<int32_t>(gradient->markerCount)
                            : kFountainMarkers;
  for (int32_t i = count - 1; markerRow && i >= 0; --i) {
    const int32_t left = MarkerOffset(gradient, i, stripRight - stripLeft) + 3;
    if (x >= left && x < left + 10) return i;
  }
  if (y >= 3 && y < 11 && x >= stripLeft && x < stripRight) return kFountainEmptyBar;
  return kFountainNowhere;
}
