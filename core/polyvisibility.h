#pragma once
// The scene objects behind a tool's two visibility flags in the tool tree.
// Its hi-poly models are the user's objects linked below its nodes at any
// depth (a car body below a vehicle's body helper); its low-poly models are
// its own helper nodes.

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "core/adaptorinterface.h"

namespace vuk::rgw::core {

class Instance;
class InstanceReference;

// One kind of a tool's models. Hiding keeps which objects it hid, so that
// showing them again leaves hidden what the user had hidden before.
class ModelSet {
 public:
  enum class Kind { kHighPoly, kLowPoly };

  explicit ModelSet(Kind kind) : kind_(kind) {}
  void Hide(AdaptorInterface& adaptor, InstanceHandle tool);
  void ShowBack(AdaptorInterface& adaptor, InstanceHandle tool);

 private:
  void ForEach(AdaptorInterface& adaptor, InstanceHandle tool, const std::function<void(CNode&)>& visit) const;

  Kind kind_;
  // The objects hidden here, by their host names up to the scene root: a
  // name outlives the handles, which the host may hand out anew.
  std::vector<std::string> hidden_;
};

// Every tool's hi-poly models off and low-poly on for a recording; at its
// end the flags, and so the models, are as they were.
class LowPolyTake {
 public:
  void Begin(const std::vector<Instance*>& tools);
  void End();

 private:
  std::vector<std::pair<InstanceReference*, std::array<std::int32_t, 3>>> before_;
};

}  // namespace vuk::rgw::core
