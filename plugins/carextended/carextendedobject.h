#pragma once
// The 4-Wheeler: a car that a user drives live over the scene's surfaces,
// around the numerical core CCarCam. The tool measures the rig from its
// helper nodes, finds the ground under each wheel once a frame, lays the
// car's base on it, and writes the body, the wheels and the helpers as keys.
// Every piece of state a later start may resume from is kept in histories.

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "plugins/carextended/carground.h"
#include "plugins/carextended/carhistory.h"
#include "plugins/carextended/carpage.h"
#include "plugins/common/saveddata.h"
#include "plugins/common/toolgauges.h"
#include "plugins/common/toolnode.h"
#include "plugins/common/toolplugin.h"
#include "plugins/common/vehicle/carcam.h"
#include "sdk/cinterface.h"
#include "unidevice/control.h"

namespace vuk::rgw::addon {

class CCarCamObject : public CCamera, public CInterface::Callback {
 public:
  using Matrix = util::Matrix<double>;
  using Vector = util::Vector3<double>;

  // A helper node drawn with a fixed procedural mesh.
  template <typename Mesh>
  class CHelperNode : public ToolNode {
   public:
    CHelperNode(CCarCamObject& object, std::string nodeName) : ToolNode(&object, std::move(nodeName)), car(object) {}
    void Create() override { CreateHelper(Mesh()); }

   protected:
    CCarCamObject& car;
  };

  // A box with a wedge on its front: the sprung body, one car length long.
  class CMesh_CarBodyMesh : public util::CMesh {
   public:
    CMesh_CarBodyMesh();
  };
  // A wheel of radius 1 about the X axis.
  class CMesh_WheelMesh : public util::CMesh {
   public:
    CMesh_WheelMesh();
  };
  // A flat arrow pointing along minus Z, the way the car drives.
  class CMesh_ArrowMesh : public util::CMesh {
   public:
    CMesh_ArrowMesh();
  };
  // The arrow pointing down, along minus Y.
  class CMesh_GravityArrowMesh : public util::CMesh {
   public:
    CMesh_GravityArrowMesh();
  };
  // A small box: handles and points.
  class CMesh_BoxMesh : public util::CMesh {
   public:
    CMesh_BoxMesh();
  };

  class CCarBodyNode : public CHelperNode<CMesh_CarBodyMesh> {
   public:
    explicit CCarBodyNode(CCarCamObject& object) : CHelperNode(object, "CarBodyMesh") {}
    // At rest on the plane y = 0, one default car length long.
    void Create() override;
    void Update(double time) override;
  };

  class CBaseMeshNode : public CHelperNode<CMesh_ArrowMesh> {
   public:
    explicit CBaseMeshNode(CCarCamObject& object) : CHelperNode(object, "CarBodyBaseMesh") {}
    void Update(double time) override;
  };

  class CChassisRelocatorNode : public CHelperNode<CMesh_BoxMesh> {
   public:
    explicit CChassisRelocatorNode(CCarCamObject& object) : CHelperNode(object, "ChassisRelocatorMesh") {}
    void Create() override;
  };

  class CWheelRelocatorNode : public CHelperNode<CMesh_WheelMesh> {
   public:
    CWheelRelocatorNode(CCarCamObject& object, std::size_t wheel);
    void Create() override;

    std::size_t index;
  };

  // Finds where its wheel stands each frame, and writes the wheel.
  class CWheelNode : public CHelperNode<CMesh_WheelMesh> {
   public:
    CWheelNode(CCarCamObject& object, std::size_t wheel);
    void Create() override;
    // A fresh run: the wheel stands where its mount holds it.
    void Reset();
    // Keeps how far below its mount the wheel stands, in the car's frame: a
    // falling car carries its wheels down with it.
    void KeepDrop();
    // The ground detection of the frame; feeds the core's wheel record.
    void Update(double time) override;
    // The wheel's key at the time, preceded by the extra keys of a fast spin.
    void WriteTurn(double time);

    std::size_t index;
    Vector position;        // filtered wheel centre, world
    Vector formerPosition;  // last frame's
    double formerDrop = 0;  // below its mount along the car's up, last frame
    Vector hitPoint;        // where the wheel meets the ground, world
    Vector normal{0, 1, 0};
    double heightAboveGround = 0;  // of the wheel's mount less the radius; negative when compressed
    double formerYaw = 0;

   private:
    // Where the wheel would stand this frame, before the tyre's filter.
    struct Stand {
      Vector centre;
      double height;  // below the mount, as heightAboveGround
      Vector hitPoint;
      Vector normal;
      bool inTheAir;
    };
    // The centre ray against one round of the ground: the wheel's height, or
    // no hit.
    bool CastCentre(std::size_t round, const Vector& mount, const Vector& up, double radius, Stand& stand) const;
    // The nearest hit of a ray over every round of the ground.
    bool CastNearest(const GroundRay& ray, GroundHit& nearest) const;
    // Rays fanned about the axle from the wheel's centre: a ground that cuts
    // into the rim lifts the wheel onto it.
    void CastRimRays(const Vector& up, double radius, Stand& stand) const;
    // With "Enable Wheel Ground Release": the wheel hangs no lower than the
    // suspension's length, and drops no faster than its extension velocity.
    void ReleaseFromGround(const Vector& mount, const Vector& up, double radius, Stand& stand) const;
    void WritePose(double time, const Vector& at, const util::Quat<double>& rotation) const;
  };

  class CWheelCenterNode : public CHelperNode<CMesh_BoxMesh> {
   public:
    CWheelCenterNode(CCarCamObject& object, std::size_t wheel);
    void Update(double time) override;

    std::size_t index;
  };

  class CWheelCenterSuspensionNode : public CHelperNode<CMesh_BoxMesh> {
   public:
    CWheelCenterSuspensionNode(CCarCamObject& object, std::size_t wheel);
    void Update(double time) override;

    std::size_t index;
  };

  class CSteeringWheelNode : public CHelperNode<CMesh_WheelMesh> {
   public:
    explicit CSteeringWheelNode(CCarCamObject& object) : CHelperNode(object, "SteeringWheelMesh") {}
    void Create() override;
    // Keeps the pose the run starts from.
    void Measure(double time) { mInit_loc = Local(time); }
    void Update(double time) override;

    Matrix mInit_loc;
  };

  class CTargetNode : public CHelperNode<CMesh_BoxMesh> {
   public:
    explicit CTargetNode(CCarCamObject& object) : CHelperNode(object, "TargetMesh") {}
    void Create() override;
  };

  // Its down axis is the gravity direction; surfaces linked to it are the ground.
  class CGravityDirectionNode : public CHelperNode<CMesh_GravityArrowMesh> {
   public:
    explicit CGravityDirectionNode(CCarCamObject& object) : CHelperNode(object, "GravityDirectionMesh") {}
    void Create() override;
    // Gives the core the gravity direction and the attitude wanted in the air.
    void Read(double time);
    // Follows the car above its roof, keeping its own turn; stays where it
    // is while surfaces hang below it.
    void Update(double time) override;

   private:
    Matrix pose;
  };

  class CExternalForceNode : public CHelperNode<CMesh_ArrowMesh> {
   public:
    explicit CExternalForceNode(CCarCamObject& object) : CHelperNode(object, "ExternalForceMesh") {}
    void Create() override;
    // Its pose in the body's frame gives the force's direction and point.
    void Update(double time) override;
  };

  class CRelativeTurnBaseNode : public CHelperNode<CMesh_BoxMesh> {
   public:
    explicit CRelativeTurnBaseNode(CCarCamObject& object) : CHelperNode(object, "TurnBaseMesh") {}
    void Create() override;
    // On the base's centre line where the car turns about.
    void Update(double time) override;
  };

  class CDriverCamNode : public ToolNode {
   public:
    explicit CDriverCamNode(CCarCamObject& object) : ToolNode(&object, "DriverCam"), car(object) {}
    void Create() override;

   private:
    CCarCamObject& car;
  };

  // Follows the car from behind, through two filter stages of its pose.
  class CFollowCamNode : public ToolNode {
   public:
    explicit CFollowCamNode(CCarCamObject& object) : ToolNode(&object, "FollowCam"), car(object) {}
    void Create() override;
    void Update(double time) override;
    // Both stages where the camera wants to be now.
    void Settle();
    util::QTransform<double> Wanted() const;

    // anFollowCamFilterMem: the outer stage; the inner one drags it.
    util::QTransform<double> outer;
    util::QTransform<double> inner;

   private:
    static constexpr double kResponse = 0.2;

    CCarCamObject& car;
  };

  class CTopViewCamNode : public ToolNode {
   public:
    explicit CTopViewCamNode(CCarCamObject& object) : ToolNode(&object, "TopViewCam"), car(object) {}
    void Create() override;
    void Update(double time) override;

   private:
    CCarCamObject& car;
  };

  static const ToolInfo kInfo;
  // Version 100: the settings, the histories, then the ground entries.
  static const SavedData kSavedData;
  static constexpr std::size_t kWheels = 4;
  // The tyre's width, in wheel radii, as the wheel mesh draws it.
  static constexpr double kWheelWidthRel = 0.8;
  static constexpr std::array<const char*, kWheels> kWheelSuffixes = {"_FL", "_FR", "_BL", "_BR"};
  // The output channels, in the order they are made.
  enum Gauge : std::size_t { kVelocity, kVelocityPercent, kSteeringAngle, kFirstWheelInTheAir };
  static constexpr std::size_t kGaugeCount = kFirstWheelInTheAir + kWheels;

  explicit CCarCamObject(const CreateParam& param) : CCamera(param) {}

  // A world or local matrix of a pose with a uniform scale.
  static Matrix Posed(const Vector& at, const util::Quat<double>& rotation, double scale);

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

  // Measures the rig at the time from the body and the relocators: the
  // car's length, the wheels and the ride height; places the base under the
  // body. Warns about a body that isn't scaled uniformly and about wheels
  // moved away from their relocators.
  void MeasureRig(double time);
  // The value of a gauge now.
  double GaugeValue(std::size_t gauge) const;

  CCarCam cCarCam;
  CarToolSettings settings;
  CarHistory history;
  double dStartTime = 1e300;
  bool bRecording = false;
  bool bFreshRun = false;

  CCarBodyNode body{*this};
  CBaseMeshNode base{*this};
  CChassisRelocatorNode chassisRelocator{*this};
  std::array<CWheelRelocatorNode, kWheels> wheelRelocators{{{*this, 0}, {*this, 1}, {*this, 2}, {*this, 3}}};
  std::array<CWheelNode, kWheels> wheels{{{*this, 0}, {*this, 1}, {*this, 2}, {*this, 3}}};
  std::array<CWheelCenterNode, kWheels> wheelCenters{{{*this, 0}, {*this, 1}, {*this, 2}, {*this, 3}}};
  std::array<CWheelCenterSuspensionNode, kWheels> wheelSuspensions{
      {{*this, 0}, {*this, 1}, {*this, 2}, {*this, 3}}};
  CSteeringWheelNode steeringWheel{*this};
  CTargetNode target{*this};
  CGravityDirectionNode gravity{*this};
  CExternalForceNode externalForce{*this};
  CRelativeTurnBaseNode turnBase{*this};
  CDriverCamNode driverCam{*this};
  CFollowCamNode followCam{*this};
  CTopViewCamNode topViewCam{*this};
  // The surfaces linked through the gravity node, and their caster.
  CarGround ground{iface, gravity.handle, body.handle};

 private:
  // Every node in creation order: the body first, each wheel's relocator,
  // wheel and centres together, the cameras last.
  std::vector<ToolNode*> NodesInOrder();
  // The nodes "Hide Helpers" hides: all but the body, the wheels and the cameras.
  std::vector<ToolNode*> Helpers();
  void ApplyHideStates();
  // The node a visibility label switches, with its flag; null for other labels.
  std::vector<ToolNode*> SwitchedNodes(const std::string& label, bool*& flag);
  void StartFresh(double time);
  // The car's speed along its front when the run starts, in L per second.
  double StartVelocity(double time);
  // The core at rest, keeping its rig, settings and channels' factors.
  void ResetCore();
  void LayBaseOnGround();
  void UpdateGauges();
  // With the car's speed in L per second.
  void UpdateGauges(double velocity);
  void ReadInputs();
  // "Use Fast Ray Cast" or "Store Ground Mesh Data" changed.
  void ChangeGroundOption(const std::string& label);

  std::array<CInterface::Property*, kCarInputCount> inputControls{};
  ToolGauges<kGaugeCount> gauges;
  // The channels' response factors as the run found them.
  std::array<double, kCarInputCount> responseFactors{};
};

using CCarCamPlugin = CToolPlugin<CCarCamObject>;

}  // namespace vuk::rgw::addon
