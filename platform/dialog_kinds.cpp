// The port's hold on the behaviour installed from above: the kinds' rows and the command handler,
// and the calls that only forward to a kind's row, the same on every platform.
#include "platform/dialog.h"

namespace {

const DialogBehaviour* g_behaviour = nullptr;

}  // namespace

void DialogInstallBehaviour(const DialogBehaviour* behaviour) {
  g_behaviour = behaviour;
}

const DialogBehaviour* DialogInstalledBehaviour() {
  return g_behaviour;
}

const ControlKindProcs* DialogKindProcs(ControlKind kind) {
  if (!g_behaviour) return nullptr;
  for (int32_t i = 0; i < g_behaviour->kindCount; ++i)
    if (g_behaviour->kinds[i].kind == kind) return &g_behaviour->kinds[i];
  return nullptr;
}

int DialogCreateMaterial(WindowHandle button, uint32_t creationColour) {
  const ControlKindProcs* row = DialogKindProcs(DialogControlKind(button));
  return button && row && row->create ? row->create(button, creationColour) : 0;
}

int DialogPickerValue(WindowHandle picker, int32_t* value) {
  const ControlKindProcs* row = DialogKindProcs(DialogControlKind(picker));
  return picker && row && row->value ? row->value(picker, value) : 0;
}
