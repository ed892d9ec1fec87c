#pragma once
// The LookAt camera: a camera node that keeps looking at a target helper,
// keeps its own position and scale, and has its lens target distance set to
// the distance between the two on every frame. The smallest complete tool,
// and the pattern of the others.

#include <cstdint>
#include <string>

#include "plugins/common/hideswitch.h"
#include "plugins/common/toolnode.h"
#include "plugins/common/toolplugin.h"
#include "sdk/cinterface.h"

namespace vuk::rgw::addon {

class CLookAtCamObject : public CCamera, public CInterface::Callback {
 public:
  class CTargetNode : public ToolNode {
   public:
    // A small three-axis cross with a box at its heart: what a target looks like.
    class CMesh_TargetMesh : public util::CMesh {
     public:
      CMesh_TargetMesh();
    };

    explicit CTargetNode(CCamera* object) : ToolNode(object, "TargetMesh") {}
    void Create() override;
  };

  class CLookAtCamNode : public ToolNode {
   public:
    CLookAtCamNode(CCamera* object, const CTargetNode& targetNode)
        : ToolNode(object, "LookAtCam"), target(targetNode) {}
    // Stands ten metres out from the target.
    void Create() override;
    // Takes the camera's scale and sets the lens distance at that time.
    void Measure(double time);
    // Turns the camera to the target and sets the lens distance.
    void Update(double time) override;

    // The lengths of the camera's axes, kept through every turn.
    util::Vector3<double> scale;

   private:
    void WriteTargetDistance(double time, double distance) const;

    const CTargetNode& target;
  };

  static const ToolInfo kInfo;

  explicit CLookAtCamObject(const CreateParam& param) : CCamera(param) {}

  void Start(double time) override;
  void Stop(double time) override;
  void Step(double time) override;
  void TimeChanged(double time) override;
  std::int32_t BuildConfig() override;
  std::int32_t Create() override;
  std::int32_t Load() override;
  std::int32_t Save() override;
  void Changed(std::string label) override;

  CTargetNode targetNode{this};
  CLookAtCamNode cameraNode{this, targetNode};
  // The saved data: these three flags in this order.
  HelperSwitches helpers;
  bool hideCamera = false;

 private:
  // The node a visibility label switches, with its flag; null for other labels.
  const ToolNode* SwitchedNode(const std::string& label, bool*& flag);
};

using CLookAtCamPlugin = CToolPlugin<CLookAtCamObject>;

}  // namespace vuk::rgw::addon
