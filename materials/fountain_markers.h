// Editing a fountain gradient's marker list: the free-position search, the sort that keeps
// position 0 at the back, adding, deleting and dropping a dragged marker, and the strip geometry
// the fountain button hit-tests against. Pure record work, shared by the button on every platform.
#pragma once

#include <cstdint>

#include "materials/gradient.h"

constexpr uint32_t kDefaultMarkerColour = 0x808080;

// A free position for a new marker near `wanted`, or -1 when the list is full. Positions below 63
// alternate one down and back; when both neighbours there are taken the search carries on outward
// from `wanted` instead of circling, so it always ends.
int32_t FindFreeMarkerPosition(const FountainGradient* gradient, int32_t wanted);

// Sorts the first `count` markers by position, ascending, with position 0 after every other.
void SortFountainMarkers(FountainMarker* markers, uint32_t count);

// Adds a marker of `colour` at the free position nearest `wanted`. 0 when there is no space.
int AddFountainMarker(FountainGradient* gradient, int32_t wanted, uint32_t colour);

// Deletes marker `index`. 0 with `message` set to the text to show when it cannot.
int DeleteFountainMarker(FountainGradient* gradient, int32_t index, const char** message);

// Where a marker dragged from `startX` by `moved` pixels lands: 1 to 255 along the strip.
int32_t DragEndPosition(int32_t startX, int32_t moved, int32_t stripLeft, int32_t stripWidth);

// Drops marker `index` at `position`: deleted and added again with its colour at the nearest free
// place. 0 when the marker is lost for want of space or the index is bad.
int DropFountainMarker(FountainGradient* gradient, int32_t index, int32_t position);

// Ghost centre of a drag at pointer `x`, held within the strip and at least 1 from its left edge.
int32_t HoldDragX(int32_t x, int32_t stripLeft, int32_t stripWidth);

// The marker position a double click at `x` on the empty bar adds.
int32_t ClickMarkerPosition(int32_t x, int32_t stripLeft, int32_t stripWidth);

// The strip inside a button's client area: 8 pixels off the left and right, 16 off the top (where
// the markers stand) and 4 off the bottom.
constexpr int32_t kStripInsetX = 8;
constexpr int32_t kStripInsetTop = 16;
constexpr int32_t kStripInsetBottom = 4;

// Where marker `index` stands, in pixels from the strip's left edge.
int32_t MarkerOffset(const FountainGradient* gradient, int32_t index, int32_t stripWidth);

// What a point of a button `clientWidth` wide is on: a marker index, the left or right end, the
// empty bar, or nothing. Ends come first, then markers from the last, then the bar.
constexpr int32_t kFountainLeftEnd = -1;
constexpr int32_t kFountainRightEnd = -2;
constexpr int32_t kFountainEmptyBar = -3;
constexpr int32_t kFountainNowhere = -4;
int32_t FountainHitTest(const FountainGradient* gradient, int32_t clientWidth, int32_t x,
                        int32_t y);
