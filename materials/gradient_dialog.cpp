// The Gradient dialog's rules and the Gradient Library dialog's list.
#include "materials/gradient_dialog.h"

#include <cstring>

#include "materials/fountain_library.h"

int32_t GradientTypeOfButton(int32_t id) {
  for (int32_t type = 0; type < 4; ++type)
    if (kGradientTypeIds[type] == id) return type;
  return -1;
}

int32_t GradientTypeButton(int32_t type) {
  return kGradientTypeIds[type >= 0 && type < 4 ? type : kGradientLinear];
}

int GradientRotationApplies(int32_t type) {
  // Every type but these two draws as Linear or Conical.
  return type != kGradientElliptical && type != kGradientRectangular;
}

int GradientCentreApplies(int32_t type) {
  return type == kGradientConical || type == kGradientElliptical || type == kGradientRectangular;
}

int32_t HoldGradientCentre(int32_t value) {
  return value < -50 ? -50 : (value > 50 ? 50 : value);
}

int32_t HoldGradientMidpoint(int32_t value) {
  return value < 1 ? 1 : (value > 99 ? 99 : value);
}

namespace {

int AppendEntry(void* context, const FountainGradient* gradient) {
  static_cast<GradientLibraryList*>(context)->entries.push_back(*gradient);
  return 1;
}

}  // namespace

int LoadGradientLibraryList(const char* path, GradientLibraryList* list) {
  list->entries.clear();
  list->selected = -1;
  if (!ReadLibraryFile(path, AppendEntry, list)) return 0;
  if (!list->entries.empty()) list->selected = 0;
  return 1;
}

int DeleteGradientLibraryEntry(GradientLibraryList* list, int32_t index) {
  if (index < 0 || static_cast<size_t>(index) >= list->entries.size()) return 0;
  list->entries.erase(list->entries.begin() + index);
  const int32_t count = static_cast<int32_t>(list->entries.size());
  if (list->selected >= count) list->selected = count - 1;
  return 1;
}

int CommitGradientLibraryList(const char* path, const GradientLibraryList* list,
                              FountainGradient* gradient, uint32_t created) {
  if (!RewriteLibraryFile(path, list->entries.data(), list->entries.size(), created)) return 0;
  if (gradient && list->selected >= 0 &&
      static_cast<size_t>(list->selected) < list->entries.size())
    TakeLibraryEntry(&list->entries[static_cast<size_t>(list->selected)], gradient);
  return 1;
}

void TakeLibraryEntry(const FountainGradient* entry, FountainGradient* gradient) {
  gradient->markerCount = entry->markerCount;
  gradient->leftColour = entry->leftColour;
  gradient->rightColour = entry->rightColour;
  std::memcpy(gradient->markers, entry->markers, sizeof gradient->markers);
}
