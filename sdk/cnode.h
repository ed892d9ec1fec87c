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

  // The order of these operations is part of the SDK layout: later ones
  // come after the destructor, so that tools built before them still work.

  // The scene children, in the host's order. Each one asked for is a new
  // wrapper (null outside the range); give it back with ReleaseNode.
  virtual std::int32_t GetSceneChildCount() = 0;
  virtual CNode* GetSceneChild(std::int32_t index) = 0;
  // True when the other handle stands for this scene object or for one of
  // its scene ancestors; null gives false.
  virtual bool IsSameOrBelow(CNode* other) = 0;
  // True when the world pose changes over time: this object or a scene
  // ancestor has keys that move it.
  virtual bool IsAnimated() = 0;

  // The node's name inside its tool; FindNode compares this, not the host name.
  std::string name;
};

}  // namespace vuk::rgw
