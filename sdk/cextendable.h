#pragma once
// Root of every SDK class: an open-ended side channel, so that a new request
// between core and tool never changes a class layout.

#include <algorithm>
#include <cstdint>
#include <vector>

namespace vuk::rgw {

class CExtendable {
 public:
  // Answers 0 for an id this object doesn't handle.
  virtual std::intptr_t Extension(std::int32_t id, void* data) {
    (void)id;
    (void)data;
    return 0;
  }
  // The ids this object handles.
  virtual std::vector<std::int32_t> ExtensionIds() { return {}; }
  // Answers from ExtensionIds; a class says yes by listing the id there.
  virtual bool HasExtension(std::int32_t id) {
    const std::vector<std::int32_t> ids = ExtensionIds();
    return std::find(ids.begin(), ids.end(), id) != ids.end();
  }

 protected:
  CExtendable() = default;
  CExtendable(const CExtendable&) = default;
  CExtendable& operator=(const CExtendable&) = default;
  // Objects are freed through their own Release, never through this base.
  ~CExtendable() = default;
};

// The extension ids in use; one number space for all classes.
namespace extension {
constexpr std::int32_t kAliases = 16;             // plugin: old type names, appended to a string vector
constexpr std::int32_t kNodeBeginSelection = 10;  // node: open a selection batch
constexpr std::int32_t kNodeEndSelection = 11;    // node: close it
constexpr std::int32_t kNodeRefresh = 17;         // node: host cache no longer trusted
constexpr std::int32_t kNodeToHandler = 31;       // node: hand the node to a handler
constexpr std::int32_t kNodeRename = 32;          // node: rename under an undo group
constexpr std::int32_t kNodeClone = 37;           // node: clone the scene object
constexpr std::int32_t kGetShapeSnapshot = 38;    // instance: shape snapshot of a node at a time
constexpr std::int32_t kReleaseShapeSnapshot = 39;
constexpr std::int32_t kWriteGauge = 40;          // tool: write one gauge's value
constexpr std::int32_t kMakeGauge = 41;           // instance: make a gauge control
constexpr std::int32_t kConnectTools = 42;        // tool: all tools of a load exist
constexpr std::int32_t kDeleteSelf = 43;          // instance: delete with nodes
constexpr std::int32_t kSaveCustomData = 44;      // tool: add an element of extra save data
constexpr std::int32_t kLoadCustomData = 45;      // tool: read it back
constexpr std::int32_t kHiddenPlugin = 51;        // plugin: not offered in menus
constexpr std::int32_t kOwnerName = 55;           // instance: name of the owning tool
constexpr std::int32_t kMasterNode = 56;          // instance: append the "masternode" element
constexpr std::int32_t kNodeRefreshHelper = 57;   // node: refresh the helper object
constexpr std::int32_t kRefreshDevices = 58;      // instance: device refresh
constexpr std::int32_t kAddLabel = 60;            // instance: label on the configuration page
constexpr std::int32_t kNoProfiles = 61;          // tool: has no profiles of its own
}  // namespace extension

}  // namespace vuk::rgw
