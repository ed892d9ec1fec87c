#pragma once
// The airplane: flies a body through the scene from eleven input channels,
// or after the TargetMesh in autonomous mode, around the numerical core
// CAeroCam. It writes the body, its propellers and control surfaces and two
// cameras as keys, and keeps every piece of state a later start resumes
// from in histories.

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "plugins/airplaneextended/aerocam.h"
#include "plugins/airplaneextended/aerohistory.h"
#include "plugins/airplaneextended/aeropage.h"
#include "plugins/common/toolgauges.h"
#include "plugins/common/toolnode.h"
#include "plugins/common/toolplugin.h"
#include "sdk/cinterface.h"
#include "unidevice/control.h"
#include "util/qtransform.h"

namespace vuk::rgw::addon {

class CAeroCamObject : public CCamera, public CInterface::Callback {
 public:
  using Matrix = util::Matrix<double>;
  using Vector = util::Vector3<double>;
  using Quat = util::Quat<double>;

  // The fuselage with wings and tail, nose along minus Z, two units long.
  class CMesh_PlaneBodyMesh : public util::CMesh {
   public:
    CMesh_PlaneBodyMesh();
  };
  // Three crossed bars: a handle to link scene objects to.
  class CMesh_AttachToMesh : public util::CMesh {
   public:
    explicit CMesh_AttachToMesh(double size = 1);
  };
  // Two blades across the local Z axis it spins about.
  class CMesh_PropellerMesh : public util::CMesh {
   public:
    CMesh_PropellerMesh();
  };
  // Flat plates hinged at the local origin, upright for the rudder.
  class CMesh_RudderMesh : public util::CMesh {
   public:
    CMesh_RudderMesh();
  };
  class CMesh_ElevatorMesh : public util::CMesh {
   public:
    CMesh_ElevatorMesh();
  };
  class CMesh_AileronRightMesh : public util::CMesh {
   public:
    CMesh_AileronRightMesh();
  };
  class CMesh_AileronLeftMesh : public util::CMesh {
   public:
    CMesh_AileronLeftMesh();
  };

  class CPlaneBodyNode : public ToolNode {
   public:
    explicit CPlaneBodyNode(CAeroCamObject& object) : ToolNode(&object, "PlaneBody"), plane(object) {}
    // At the origin, level, nose along minus Z.
    void Create() override;
    // The present pose, its rows scaled by the relative scale.
    void Update(double time) override;

   private:
    CAeroCamObject& plane;
  };

  // Linked below the body; the start reads the airplane's pose and scale
  // from it.
  class CBodyRelocatorNode : public ToolNode {
   public:
    explicit CBodyRelocatorNode(CAeroCamObject& object) : ToolNode(&object, "BodyRelocatorNode"), plane(object) {}
    void Create() override;
    // Its world pose at the time with the rows normalised, and the time the
    // scene answered for.
    PoseRecord Read(double time, double& answeredTime) const;

   private:
    CAeroCamObject& plane;
  };

  class CTargetNode : public ToolNode {
   public:
    explicit CTargetNode(CAeroCamObject& object) : ToolNode(&object, "TargetMesh") {}
    void Create() override;
  };

  // A part linked below the body that turns about one of its own axes, on
  // top of the turn it had when a run found it.
  class CTurningNode : public ToolNode {
   public:
    CTurningNode(CAeroCamObject& object, std::string nodeName, const Vector& place, int turnAxis)
        : ToolNode(&object, std::move(nodeName)), plane(object), offset(place), axis(turnAxis) {}
    // Keeps the base turn, the node's turn at the time less `angle` about its
    // axis, and its scale, which the run's keys then hold exactly.
    void Measure(double time, double angle);
    // Turned by `angle` from the base, at `place` in its parent.
    void Turn(double time, double angle, const Vector& place) const;
    void Turn(double time, double angle) const { Turn(time, angle, Place(time)); }
    // Where the node stands in its parent at the time.
    Vector Place(double time) const { return Local(time).GetTranslation(); }
    // Turned by `angle` from `former` within the frame of length dt that
    // ends at the time: a turn beyond `largestTurn` first gets keys inside
    // the frame, at places between the frame's two.
    void Spin(double time, double dt, double former, double angle, double largestTurn) const;

   protected:
    void CreatePart(const util::CMesh& mesh);

   private:
    Quat AxisTurn(double angle) const;

    CAeroCamObject& plane;
    Vector offset;
    int axis;
    Quat base;
    Vector scale{1, 1, 1};
  };

  template <typename Mesh>
  class CPartNode : public CTurningNode {
   public:
    using CTurningNode::CTurningNode;
    void Create() override { CreatePart(Mesh()); }
  };

  class CPropellerNode : public CPartNode<CMesh_PropellerMesh> {
   public:
    explicit CPropellerNode(CAeroCamObject& object) : CPartNode(object, "Propeller", {-1.4, 0, -0.9}, 2) {}
  };
  class CPropellerNode2 : public CPartNode<CMesh_PropellerMesh> {
   public:
    explicit CPropellerNode2(CAeroCamObject& object) : CPartNode(object, "Propeller2", {1.4, 0, -0.9}, 2) {}
  };
  class CRudderNode : public CPartNode<CMesh_RudderMesh> {
   public:
    explicit CRudderNode(CAeroCamObject& object) : CPartNode(object, "Rudder", {-0.3, 0.3, 1.8}, 1) {}
  };
  class CRudderNode2 : public CPartNode<CMesh_RudderMesh> {
   public:
    explicit CRudderNode2(CAeroCamObject& object) : CPartNode(object, "Rudder2", {0.3, 0.3, 1.8}, 1) {}
  };
  class CElevatorNode : public CPartNode<CMesh_ElevatorMesh> {
   public:
    explicit CElevatorNode(CAeroCamObject& object) : CPartNode(object, "Elevator", {-0.4, 0, 1.9}, 0) {}
  };
  class CElevatorNode2 : public CPartNode<CMesh_ElevatorMesh> {
   public:
    explicit CElevatorNode2(CAeroCamObject& object) : CPartNode(object, "Elevator2", {0.4, 0, 1.9}, 0) {}
  };
  class CAileronRightNode : public CPartNode<CMesh_AileronRightMesh> {
   public:
    explicit CAileronRightNode(CAeroCamObject& object) : CPartNode(object, "AileronRight", {1.6, 0, 0.2}, 0) {}
  };
  class CAileronRightNode2 : public CPartNode<CMesh_AileronRightMesh> {
   public:
    explicit CAileronRightNode2(CAeroCamObject& object) : CPartNode(object, "AileronRight2", {2.6, 0, 0.2}, 0) {}
  };
  class CAileronLeftNode : public CPartNode<CMesh_AileronLeftMesh> {
   public:
    explicit CAileronLeftNode(CAeroCamObject& object) : CPartNode(object, "AileronLeft", {-1.6, 0, 0.2}, 0) {}
  };
  class CAileronLeftNode2 : public CPartNode<CMesh_AileronLeftMesh> {
   public:
    explicit CAileronLeftNode2(CAeroCamObject& object) : CPartNode(object, "AileronLeft2", {-2.6, 0, 0.2}, 0) {}
  };

  class CCockpitCamNode : public ToolNode {
   public:
    explicit CCockpitCamNode(CAeroCamObject& object) : ToolNode(&object, "CockpitCam", {"AeroCam"}), plane(object) {}
    // Rides in the body, looking ahead.
    void Create() override;

   private:
    CAeroCamObject& plane;
  };

  // Chases the body through two filter stages of its pose: from behind and
  // above with the world's up, or on the body's own axes.
  class CFollowCamNode : public ToolNode {
   public:
    explicit CFollowCamNode(CAeroCamObject& object) : ToolNode(&object, "FollowCam"), plane(object) {}
    void Create() override;
    void Update(double time) override;
    // Both stages where the camera stands at the time.
    void Settle(double time);

    double dFieldOfView = 90;  // degrees, given to the lens when the camera is made
    util::QTransform<double> present;
    util::QTransform<double> stage;  // the first stage
    double dAllDirectionsRotation = 0.2, dAllDirectionsTranslation = 0.3;
    double dPlainRotation = 0.3, dPlainTranslation = 0.2;
    double dDistance = 15;

   private:
    // Where the camera wants to be.
    util::QTransform<double> Wanted() const;

    CAeroCamObject& plane;
  };

  // A control surface: which channel deflects it, how far, and its filtered angle.
  struct Surface {
    AeroChannel channel;
    double sign;  // pi for the rudder and the left aileron, -pi for the others
    double* multiplier;
    double angle;
  };

  static const ToolInfo kInfo;
  static constexpr char kChunkName[] = "AeroCamDataChunk";
  static constexpr std::int32_t kVersion = 8105;
  // The output channels, in the order they are made.
  enum Gauge : std::size_t { kVelocity, kVelocityPercent, kGaugeCount };

  explicit CAeroCamObject(const CreateParam& param);

  void Start(double time) override;
  void Stop(double time) override;
  void Step(double time) override;
  void TimeChanged(double time) override;
  std::int32_t BuildConfig() override;
  std::int32_t Create() override;
  std::int32_t Load() override;
  std::int32_t Save() override;
  void Changed(std::string label) override;
  std::intptr_t Extension(std::int32_t id, void* data) override;
  std::vector<std::int32_t> ExtensionIds() override;

  double GaugeValue(std::size_t gauge) const;

  CAeroCam cAeroCam;
  AeroSettings settings;
  AeroHistory history;
  // Forw/backw speed given at the start, and whether it was not zero.
  double dInitialVelocity = 0;
  bool bStartWithNonzeroInitialVelocity = false;
  double dStartTime = 1e300;
  bool bFirstTime = true;

  std::array<Surface, 4> surfaces;  // rudder, elevator, left aileron, right aileron
  double dPropellerSpin = 0;        // per frame, filtered
  double dPropellerAngle = 0;       // turned so far, before the first propeller's reversal

  CPlaneBodyNode body{*this};
  CBodyRelocatorNode relocator{*this};
  CTargetNode target{*this};
  CPropellerNode propeller{*this};
  CPropellerNode2 propeller2{*this};
  CRudderNode rudder{*this};
  CRudderNode2 rudder2{*this};
  CElevatorNode elevator{*this};
  CElevatorNode2 elevator2{*this};
  CAileronRightNode aileronRight{*this};
  CAileronRightNode2 aileronRight2{*this};
  CAileronLeftNode aileronLeft{*this};
  CAileronLeftNode2 aileronLeft2{*this};
  CCockpitCamNode cockpitCam{*this};
  CFollowCamNode followCam{*this};

 private:
  std::vector<ToolNode*> NodesInOrder();
  std::vector<ToolNode*> Helpers();
  // The nodes a visibility label switches, with its flag; none for other labels.
  std::vector<ToolNode*> SwitchedNodes(const std::string& label, bool*& flag);
  void ApplyHideStates();
  void ReadControls();
  // The forward speed the run starts with, from the start's poses and inputs.
  double StartSpeed(const PoseRecord& now, const PoseRecord& before, double dt) const;
  void UpdateSurfaces(double time, double dt);
  void UpdatePropellers(double time, double dt);
  // Each part's base turn, less the angle it has at the time.
  void MeasureParts(double time);
  // Each surface's node with the surface it shows, in update order: the
  // first copies, then the second.
  std::array<std::pair<CTurningNode*, const Surface*>, 8> SurfaceNodes();
  void UpdateGauges();

  ToolGauges<kGaugeCount> gauges;
};

using CAeroCamPlugin = CToolPlugin<CAeroCamObject>;

}  // namespace vuk::rgw::addon
