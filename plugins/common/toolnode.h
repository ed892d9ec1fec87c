#pragma once
// The base of every tool's nodes: the tool object that owns the node, the
// node's name inside its tool, and its handle, null until the node is
// created or found. A tool's node classes are nested in its object class and
// derive from this one.

#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

#include "plugins/common/scopedsnapshot.h"
#include "sdk/ccamera.h"
#include "util/matrix.h"
#include "util/mesh.h"

namespace vuk::rgw::addon {

class ToolNode {
 public:
  // Former names are those older scenes may still hold the node under.
  ToolNode(CCamera* object, std::string nodeName, std::vector<std::string> formerNodeNames = {});
  virtual ~ToolNode() = default;
  ToolNode(const ToolNode&) = delete;
  ToolNode& operator=(const ToolNode&) = delete;

  // Makes the scene node and gives it its start state.
  virtual void Create() = 0;
  // Deletes the scene node and forgets the handle.
  virtual void Destroy();
  // The node's work in one frame; most nodes have none.
  virtual void Update(double time) { (void)time; }
  virtual void SelfDestroy() {}

  // Takes up the node of a loaded scene by its name, else by a former one;
  // false when the scene holds none.
  bool Find();
  // Tells the host that its cached helper object is not to be trusted any
  // more: after a helper node is made or found.
  void RefreshHelper();

  TransformSnapshot Transform(double time) const { return {owner->iface, handle, time}; }
  HelperSnapshot Helper(double time) const { return {owner->iface, handle, time}; }
  LensSnapshot Lens(double time) const { return {owner->iface, handle, time}; }
  // The poses at the time; the identity when there is nothing to read.
  util::Matrix<double> World(double time) const;
  util::Matrix<double> Local(double time) const;

  CCamera* owner;
  std::string name;
  CNode* handle = nullptr;
  std::vector<std::string> formerNames;

 protected:
  // The two kinds of scene node a tool makes, linked below `parent` when
  // one is given. A helper mesh node is refreshed at once, as the host
  // caches it.
  void CreateCamera(CNode* parent = nullptr);
  void CreateHelper(const util::CMesh& mesh, CNode* parent = nullptr);
};

// A tool's create: makes the nodes in order, as a node's create may read
// those before it, selects the last one and fills the page.
void CreateNodes(CInterface* iface, std::initializer_list<ToolNode*> nodes);
// A tool's load: takes up every node of the loaded scene by its names; false
// when any is missing.
bool FindNodes(std::initializer_list<ToolNode*> nodes);
// The instance's saved bytes when there are exactly `size` of them, else null.
const std::uint8_t* SavedBytes(CInterface* iface, std::int32_t size);

}  // namespace vuk::rgw::addon
