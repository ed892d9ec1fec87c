#pragma once
// The visibility switches of the small tools ("Hide Helpers", "Hide
// Camera"): a change is undoable through the host, and its undo record
// comes back through the tool's Changed with a marker in front of the label.

#include <string>

#include "sdk/cinterface.h"

namespace vuk::rgw::addon {

// A label as it reaches Changed, with the marker of a replay taken off.
struct ConfigChange {
  explicit ConfigChange(std::string given);
  bool IsReplay() const { return undo || redo; }

  std::string label;
  bool undo = false;
  bool redo = false;
};

// Shows the node when `hidden` is false and hides it when true; null is left.
void SetHidden(CNode* node, bool hidden);

// The two helper switches of every tool with helper nodes.
struct HelperSwitches {
  static constexpr char kHide[] = "Hide Helpers";
  static constexpr char kHideDuringRecording[] = "Hide Helpers During Recording";

  // The two check boxes, in this order; the second one has no callback, as
  // it changes nothing at once.
  void AddTo(CInterface* iface, CInterface::Callback* tool);
  // A run hides the helper when either switch asks, and shows it after
  // unless the user hid it for good.
  void Start(CNode* helper) const;
  void Stop(CNode* helper) const;

  bool hideDuringRecording = false;
  bool hide = false;
};

// Shows or hides the node by the switch's flag, and pushes the record that
// replays the change. A replay writes no record: undo turns the node against
// the flag, redo with it.
void ApplyHideSwitch(CInterface* iface, CInterface::Callback* tool, const ConfigChange& change, CNode* node,
                     bool hidden);
// The same for a switch over several tool nodes (each with a `handle`): one
// record, which replays onto all of them.
template <typename Nodes>
void ApplyHideSwitchToAll(CInterface* iface, CInterface::Callback* tool, const ConfigChange& change,
                          const Nodes& nodes, bool hidden) {
  ApplyHideSwitch(iface, tool, change, nodes.front()->handle, hidden);
  for (std::size_t i = 1; i < nodes.size(); ++i) SetHidden(nodes[i]->handle, change.undo ? !hidden : hidden);
}

}  // namespace vuk::rgw::addon
