#pragma once
// The motion filter camera: the FollowCam hangs on the AttachedCam by a
// damped spring, in position and in rotation, so that it can follow
// smoothly or bounce and overshoot at a stop.

#include <cstdint>
#include <string>

#include "plugins/common/followcam.h"
#include "plugins/common/toolplugin.h"

namespace vuk::rgw::addon {

class CMotionFilterCamObject : public FollowCamObject {
 public:
  class CMotionFilterCamNode : public FollowerNode {
   public:
    explicit CMotionFilterCamNode(CMotionFilterCamObject* object) : FollowerNode(object, "MotionFilterCam") {}
    // The velocities the memory holds at the time; on a first run the
    // follower starts at rest in position, and its angular velocity stays
    // whatever it was.
    void Reset(double time, bool firstTime) override;

    // A fixated part takes the attached camera's at once, unfiltered.
    bool fixateTranslations = false, fixateRotations = false;
    util::Vector3<double> velocity;
    util::Vector3<double> angularVelocity;
    // Completes the memory's record of seven doubles.
    double spare = 0;
    // Spring constants, damping constants and velocity limits (0: none).
    double translationResponseFactor = 30, rotationResponseFactor = 30;
    double translationSmoothingFactor = 5, rotationSmoothingFactor = 5;
    double translationMaxVelocity = 0, rotationMaxVelocity = 0;

   protected:
    util::QTransform<double> State() const override {
      return {velocity, {angularVelocity.x, angularVelocity.y, angularVelocity.z, spare}};
    }
    void Follow(util::QTransform<double>& pose, const util::QTransform<double>& target, double dt) override;
  };

  static const ToolInfo kInfo;
  static const BuildChunk kSavedData;

  explicit CMotionFilterCamObject(const CreateParam& param) : FollowCamObject(param) {}

  std::int32_t BuildConfig() override;
  std::int32_t Load() override;
  std::int32_t Save() override;
  FollowerNode& Follower() override { return followNode; }

  CMotionFilterCamNode followNode{this};

 private:
  // The entries a chunk of that build holds, in their saved order.
  ChunkFields Fields(std::int32_t build);
};

using CMotionFilterCamPlugin = CToolPlugin<CMotionFilterCamObject>;

}  // namespace vuk::rgw::addon
