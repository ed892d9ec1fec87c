#include "plugins/common/hideswitch.h"

#include "sdk/cundo.h"

namespace vuk::rgw::addon {

ConfigChange::ConfigChange(std::string given)
    : undo(HasUndoMarker(given, kRealUndoMarker)), redo(HasUndoMarker(given, kRealRedoMarker)) {
  label = IsReplay() ? given.substr(kUndoMarkerLength) : std::move(given);
}

void SetHidden(CNode* node, bool hidden) {
  if (!node) return;
  if (hidden) {
    node->Hide();
  } else {
    node->Show();
  }
}

void HelperSwitches::AddTo(CInterface* iface, CInterface::Callback* tool) {
  iface->AddCheckBox(kHide, kHide, &hide, tool);
  iface->AddCheckBox(kHideDuringRecording, kHideDuringRecording, &hideDuringRecording, nullptr);
}

void HelperSwitches::Start(CNode* helper) const {
  if (hideDuringRecording || hide) SetHidden(helper, true);
}

void HelperSwitches::Stop(CNode* helper) const {
  if (hideDuringRecording && !hide) SetHidden(helper, false);
}

void ApplyHideSwitch(CInterface* iface, CInterface::Callback* tool, const ConfigChange& change, CNode* node,
                     bool hidden) {
  if (!change.IsReplay()) {
    iface->PushUndo(new CREEventUndo(tool, kRealUndoMarker + change.label, kRealRedoMarker + change.label));
  }
  SetHidden(node, change.undo ? !hidden : hidden);
  iface->Redraw();
}

}  // namespace vuk::rgw::addon
