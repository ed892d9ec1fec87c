#pragma once
// The auto zoom camera: a dolly zoom. The lens's field of view follows the
// distance to a target helper so that the target's framed size stays what it
// was at the start, while the input drives the camera towards or away from
// the target: the contracting horror effect. With the input at rest the
// camera stays put and the zoom follows a moving target.

#include <cstdint>
#include <string>

#include "plugins/common/hideswitch.h"
#include "plugins/common/inputchannel.h"
#include "plugins/common/toolnode.h"
#include "plugins/common/toolplugin.h"
#include "plugins/lookatcam/lookatcamobject.h"
#include "sdk/cinterface.h"
#include "util/avar.h"

namespace vuk::rgw::addon {

class CHorrorCamObject : public CCamera, public CInterface::Callback {
 public:
  // The same helper the LookAt camera aims at.
  using CTargetNode = CLookAtCamObject::CTargetNode;

  class CHorrorCamNode : public ToolNode {
   public:
    CHorrorCamNode(CCamera* object, const CTargetNode& targetNode, const InputChannel& input)
        : ToolNode(object, "AutoZoomCam", {"HorrorCam"}), target(targetNode), channel(input) {}
    // Stands ten metres out from the target.
    void Create() override;
    // Takes the distance to the target and the lens as they stand at the
    // time: the framed size the run keeps.
    void Measure(double time);
    // Zooms to keep the framed size at this frame's distance, and moves the
    // camera along its view axis for the next frame by the channel's output.
    void Update(double time) override;
    // Writes the camera's pose at the time, moved along its local Z by the
    // step, one frame later; its scale isn't kept.
    void MoveAhead(double time, double step);

    double fov = 45;  // degrees
    // Half the width the lens frames at the target's distance.
    double halfWidth = 0;
    double baseTargetDistance = 10;
    double targetDistance = 10;

   private:
    double DistanceToTarget(double time) const;

    const CTargetNode& target;
    const InputChannel& channel;
  };

  // A parameter as the page would show it.
  struct ParameterRecord {
    std::string name;
    double minimum;
    double maximum;
    double value;
  };

  // What a run needs to go on from a frame it stepped, frame by frame: the
  // channel's two memories and the framing the run keeps.
  class History {
   public:
    // The state after the frame at t; a record at exactly t is replaced.
    void Record(double t, const InputChannel& channel, const CHorrorCamNode& camera);
    // Forgets the frames after t, to the undo of `tool`. True, with the
    // state put back, when there is a record at exactly t: a run of the
    // recorder's or resimulator's frames finds the frame it starts on.
    bool RewindTo(double t, InputChannel& channel, CHorrorCamNode& camera, CInterface& tool);

   private:
    util::AVar_Nearest<double> stage_, output_, halfWidth_, baseTargetDistance_;
  };

  static const ToolInfo kInfo;

  explicit CHorrorCamObject(const CreateParam& param) : CCamera(param) {}

  void Start(double time) override;
  void Stop(double time) override;
  void Step(double time) override;
  void TimeChanged(double time) override;
  std::int32_t BuildConfig() override;
  std::int32_t Create() override;
  std::int32_t Load() override;
  std::int32_t Save() override;
  void Changed(std::string label) override;

  InputChannel channel{"Forw/Backw Transl", 0.4, 1.0};
  // Kept as a stored value; the page doesn't show it and nothing reads it.
  ParameterRecord relativeScale{"Relative Scale", 1e-08, 1e16, 1};
  CTargetNode targetNode{this};
  CHorrorCamNode cameraNode{this, targetNode, channel};
  History history;
  // The first three saved bytes, in this order.
  HelperSwitches helpers;
  bool hideCamera = false;

 private:
  // The channel's two filter stages over the frame, in sub-steps of at most
  // 0.003 s.
  void FeedChannel(double dt);
};

using CHorrorCamPlugin = CToolPlugin<CHorrorCamObject>;

}  // namespace vuk::rgw::addon
