// Without windows the rows are the core's as they stand.
#include "controls/control_kinds.h"

void AddKindWindowParts(ControlKindProcs*) {}

int RegisterKindWindowClasses() {
  return 1;
}
