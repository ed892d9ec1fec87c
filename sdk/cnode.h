#pragma once
// A tool's handle on a scene object. Tools never touch host objects: they read
// and write the scene through snapshots the node hands out for one time.

#include <cstdint>
#include <string>

#include "sdk/cextendable.h"

namespace vuk::rgw {

class CNode : public CExtendable {
 public:
  // Receives a node handed over with the node message 31.
  class Handler {
   public:
    virtual std::intptr_t HandleNode(CNode* node) = 0;

   protected:
    ~Handler() = default;
  };

  virtual void Show() = 0;
  virtual void Hide() = 0;
  virtual bool IsVisible() = 0;
  virtual void Select() = 0;
  virtual bool IsExternal() = 0;
  // Host names from this node up to the scene root, for messages.
  virtual std::string GetDescription() = 0;
  virtual std::int32_t IsRootNode() = 0;
  // A new wrapper of the scene parent, or null; give it back with ReleaseNode.
  virtual CNode* GetParent() = 0;
  virtual void ReleaseWrapper(CNode* wrapper) = 0;
  virtual ~CNode() = default;

  // The node's name inside its tool; FindNode compares this, not the host name.
  std::string name;
};

}  // namespace vuk::rgw
