#pragma once
// The LookAt camera: a camera node that keeps looking at a target helper,
// keeps its own position and scale, and has its lens target distance set to
// the distance between the two on every frame.

#include <cstdint>
#include <string>

#include "sdk/ccamera.h"
#include "sdk/cinterface.h"
#include "util/matrix.h"
#include "util/mesh.h"

namespace vuk::rgw::addon {

class CLookAtCamObject : public CCamera, public CInterface::Callback {
 public:
  // What every node of this tool shares: its object, its name, its handle.
  class SceneNode {
   public:
    SceneNode(CLookAtCamObject* object, std::string nodeName) : owner(object), name(std::move(nodeName)) {}
    virtual ~SceneNode() = default;
    virtual void Create() = 0;
    virtual void Destroy();
    virtual void Update(double time) { (void)time; }
    virtual void SelfDestroy() {}

    CLookAtCamObject* owner;
    std::string name;
    CNode* handle = nullptr;
  };

  class CTargetNode : public SceneNode {
   public:
    // A small three-axis cross with a box at its heart: what a target looks like.
    class CMesh_TargetMesh : public util::CMesh {
     public:
      CMesh_TargetMesh();
    };

    explicit CTargetNode(CLookAtCamObject* object) : SceneNode(object, "TargetMesh") {}
    void Create() override;
  };

  class CLookAtCamNode : public SceneNode {
   public:
    explicit CLookAtCamNode(CLookAtCamObject* object) : SceneNode(object, "LookAtCam") {}
    void Create() override;
    // Takes the camera's scale and the distance to the target at that time.
    void Measure(double time);
    // Turns the camera to the target and sets the lens distance.
    void Update(double time) override;

    double fieldOfView = 45;
    double baseFieldOfView = 45;
    double halfWidthAtTarget = 0;
    double baseTargetDistance = 10;
    double targetDistance = 10;
    double previousTargetDistance = 0;
    util::Vector3<double> scale;

   private:
    void WriteTargetDistance(double time);
  };

  explicit CLookAtCamObject(const CreateParam& param);

  void Start(double time) override;
  void Stop(double time) override;
  void Step(double time) override;
  void TimeChanged(double time) override;
  std::int32_t BuildConfig() override;
  std::int32_t Create() override;
  std::int32_t Load() override;
  std::int32_t Save() override;
  void Changed(std::string label) override;

  CTargetNode targetNode;
  CLookAtCamNode cameraNode;
  CLookAtCamObject* targetOwner;
  CLookAtCamObject* cameraOwner;
  bool hideHelpersDuringRecording = false;
  bool hideHelpers = false;
  bool hideCamera = false;
  std::uint8_t saveBuffer[3] = {0, 0, 0};

 private:
  // The node a visibility label switches, with its flag; null for other labels.
  const SceneNode* SwitchedNode(const std::string& label, bool*& flag);
};

}  // namespace vuk::rgw::addon
