#pragma once
// The soft motion camera: the FollowCam trails the AttachedCam through a
// cascade of two first-order lags, for position and rotation alike. A step
// of the attached camera starts the follower with zero velocity, so it
// smooths spline-driven and shaky motion.

#include <cstdint>
#include <string>

#include "plugins/common/followcam.h"
#include "plugins/common/toolplugin.h"

namespace vuk::rgw::addon {

class CSteadyCamObject : public FollowCamObject {
 public:
  class CSteadyCamNode : public FollowerNode {
   public:
    explicit CSteadyCamNode(CSteadyCamObject* object) : FollowerNode(object, "SteadyCam") {}
    // The first stage's memory at the time; on a first run, the follower's
    // own pose.
    void Reset(double time, bool firstTime) override;

    // The first stage of the cascade; the follower's pose is the second.
    util::Vector3<double> filteredPosition;
    util::Quat<double> filteredRotation;
    double translationResponseFactor = 0.1;
    double rotationResponseFactor = 0.4;

   protected:
    util::QTransform<double> State() const override { return {filteredPosition, filteredRotation}; }
    void Follow(util::QTransform<double>& pose, const util::QTransform<double>& target, double dt) override;
  };

  static const ToolInfo kInfo;
  static const BuildChunk kSavedData;

  explicit CSteadyCamObject(const CreateParam& param) : FollowCamObject(param) {}

  std::int32_t BuildConfig() override;
  std::int32_t Load() override;
  std::int32_t Save() override;
  void Changed(std::string label) override;
  FollowerNode& Follower() override { return followNode; }

  CSteadyCamNode followNode{this};
  bool hideAttached = false;
  bool hideFollow = false;

 private:
  // The entries besides the save structure, in their saved order.
  ChunkFields Fields();
};

using CSteadyCamPlugin = CToolPlugin<CSteadyCamObject>;

}  // namespace vuk::rgw::addon
