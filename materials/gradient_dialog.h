// What the Gradient dialog and the Gradient Library dialog decide without windows: which type
// button stands for which gradient type, which controls apply to a type, how values are held when
// shown and stored, and the library list the library dialog edits and writes back.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "materials/gradient.h"

// Controls of the Gradient dialog (9995).
constexpr int32_t kGradientDialogId = 9995;
constexpr int32_t kIdGradientPreview = 105;
constexpr int32_t kIdGradientEnd = 106;
constexpr int32_t kIdGradientStart = 107;
constexpr int32_t kIdGradientMidpointSlider = 108;
constexpr int32_t kIdGradientMidpoint = 110;
constexpr int32_t kIdGradientRotation = 111;
constexpr int32_t kIdGradientEdgePad = 112;
constexpr int32_t kIdGradientCentreX = 113;
constexpr int32_t kIdGradientCentreY = 114;
constexpr int32_t kIdGradientTwoColour = 118;
constexpr int32_t kIdGradientMultiColour = 119;
constexpr int32_t kIdGradientFountain = 120;
// A value control's label has the control's id plus this.
constexpr int32_t kGradientLabelOffset = 100;
// The midpoint waits this long after its last change before the preview is drawn again.
constexpr uint32_t kMidpointTimerId = 1;
constexpr uint32_t kMidpointDelay = 200;

// The Marker Position dialog (9996) and its edit, and the Gradient Library dialog (9997) with its
// list and its "&Delete" button.
constexpr int32_t kMarkerPositionDialogId = 9996;
constexpr int32_t kIdMarkerPosition = 101;
constexpr int32_t kGradientLibraryDialogId = 9997;
constexpr int32_t kIdLibraryList = 101;
constexpr int32_t kIdLibraryDelete = 102;
constexpr int32_t kLibraryStripHeight = 26;

// The type buttons' ids in the order of the types: Linear, Conical, Elliptical, Rectangular.
constexpr int32_t kGradientTypeIds[4] = {101, 104, 102, 103};
// The type a button stands for, or -1 for any other id.
int32_t GradientTypeOfButton(int32_t id);
// The button of `type`; a type out of range draws as Linear and so shows as Linear.
int32_t GradientTypeButton(int32_t type);

// Rotation applies to Linear and Conical, the centre to Conical, Elliptical and Rectangular.
int GradientRotationApplies(int32_t type);
int GradientCentreApplies(int32_t type);

// A centre is edited from -100 to 100 and stored held to -50 to 50; the midpoint is shown held to
// 1 to 99.
int32_t HoldGradientCentre(int32_t value);
int32_t HoldGradientMidpoint(int32_t value);

// The gradients of the library file as the library dialog lists them, and the selected row (-1
// for none).
struct GradientLibraryList {
  std::vector<FountainGradient> entries;
  int32_t selected = -1;
};

// Fills `list` from the library file, keeping every good entry before the first damaged one. 0
// when the file can't be opened or has no good header.
int LoadGradientLibraryList(const char* path, GradientLibraryList* list);
// Removes entry `index`; the selection stays on the same row, or the last row when that was the
// last. 0 for an index out of range.
int DeleteGradientLibraryEntry(GradientLibraryList* list, int32_t index);
// Writes the file again with the entries left in the list (the old file kept as ".bak") and, when
// a row is selected, takes that entry's colours and markers into `gradient`. 0 when the file could
// not be written; `gradient` is then untouched.
int CommitGradientLibraryList(const char* path, const GradientLibraryList* list,
                              FountainGradient* gradient, uint32_t created);
// Copies an entry's marker count, end colours and markers into `gradient`, whose name and flags
// stay.
void TakeLibraryEntry(const FountainGradient* entry, FountainGradient* gradient);
