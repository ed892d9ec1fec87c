#pragma once
// The helicopter: a body under a regulator that tilts it to reach the
// pilot's references, so that tilt follows speed and the hover is what it
// does at rest. The tool writes the body, its two spinning rotors and a
// chasing camera as keys, and keeps what a later start resumes from in
// histories.

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "plugins/common/hideswitch.h"
#include "plugins/common/saveddata.h"
#include "plugins/common/toolgauges.h"
#include "plugins/common/toolnode.h"
#include "plugins/common/toolplugin.h"
#include "plugins/common/vehicle/helicopterplant.h"
#include "plugins/helicopter/helicopterhistory.h"
#include "sdk/cinterface.h"
#include "unidevice/control.h"

namespace vuk::rgw::addon {

class CHeliCamObject : public CCamera, public CInterface::Callback {
 public:
  using Matrix = util::Matrix<double>;
  using Vector = util::Vector3<double>;
  using Rotation = util::Quat<double>;

  // A fuselage with a cabin, a tail boom and a fin; the nose along minus Z.
  class CMesh_HelicopterBodyMesh : public util::CMesh {
   public:
    CMesh_HelicopterBodyMesh();
  };
  // Two crossed blades in the XZ plane, turning about Y.
  class CMesh_MainRotorMesh : public util::CMesh {
   public:
    CMesh_MainRotorMesh();
  };
  // Two crossed blades in the YZ plane, turning about X.
  class CMesh_TailRotorMesh : public util::CMesh {
   public:
    CMesh_TailRotorMesh();
  };

  class CHelicopterBodyNode : public ToolNode {
   public:
    explicit CHelicopterBodyNode(CHeliCamObject& object) : ToolNode(&object, "CHelicopterBody"), heli(object) {}
    void Create() override;
    // The plant's pose, scaled by "Relative Scale".
    void Update(double time) override;
    // The body's pose at a time, without its scale.
    PoseRecord Read(double time) const;

   private:
    CHeliCamObject& heli;
  };

  // A rotor below the body turns about its own axis by its speed each frame,
  // with extra keys inside a frame that turns too far for one key.
  class CRotorNode : public ToolNode {
   public:
    struct Rig {
      const char* name;
      Vector axis;    // of the turn, in its own frame
      Vector offset;  // from the body's origin, in the body's units
    };
    CRotorNode(CHeliCamObject& object, const Rig& rig, const double& degreesPerFrame)
        : ToolNode(&object, rig.name), heli(object), axis(rig.axis), offset(rig.offset), speed(degreesPerFrame) {}
    void Update(double time) override;

   protected:
    void Place(const util::CMesh& mesh);

    CHeliCamObject& heli;
    Vector axis;
    Vector offset;
    const double& speed;
  };

  class CHelicopterMainRotorNode : public CRotorNode {
   public:
    explicit CHelicopterMainRotorNode(CHeliCamObject& object)
        : CRotorNode(object, {"CHelicopterMainRotor", {0, 1, 0}, {0, 0.62, 0.05}}, object.dMainRotorSpeed) {}
    void Create() override { Place(CMesh_MainRotorMesh()); }
  };

  class CHelicopterTailRotorNode : public CRotorNode {
   public:
    explicit CHelicopterTailRotorNode(CHeliCamObject& object)
        : CRotorNode(object, {"CHelicopterTailRotor", {1, 0, 0}, {0.1, 0.38, 1.42}}, object.dTailRotorSpeed) {}
    void Create() override { Place(CMesh_TailRotorMesh()); }
  };

  // The pilot's view, carried by the body.
  class CCockpitCamNode : public ToolNode {
   public:
    explicit CCockpitCamNode(CHeliCamObject& object) : ToolNode(&object, "CockpitCam"), heli(object) {}
    void Create() override;

   private:
    CHeliCamObject& heli;
  };

  // Chases the body through two filter stages: behind and above it, or
  // turning with it in every direction.
  class CFollowCamNode : public ToolNode {
   public:
    explicit CFollowCamNode(CHeliCamObject& object) : ToolNode(&object, "FollowCam", {"HeliCam"}), heli(object) {}
    void Create() override;
    // The camera's present pose at t - dt; the first stage from its history
    // there, or on a fresh run the present pose.
    void Prepare(double time, bool fresh);
    void Update(double time) override;

    util::QTransform<double> firstStage;
    util::QTransform<double> present;

   private:
    // The camera's pose at t - dt, turned to the body's side of the double cover.
    void ReadPresent(double time);
    util::QTransform<double> Wanted() const;

    CHeliCamObject& heli;
  };

  static const ToolInfo kInfo;
  // Version 100: the settings, the rotor and wind values, the histories.
  static const SavedData kSavedData;
  enum Gauge : std::size_t { kVelocity, kVelocityPercent, kHeight, kGaugeCount };
  static constexpr double kFollowDistance = 15;

  explicit CHeliCamObject(const CreateParam& param) : CCamera(param) {}

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

  HelicopterPlant plant;
  HelicopterHistory history;
  HelperSwitches helpers;
  bool bHideCockpitCam = false;
  bool bHideFollowCam = false;
  bool bFollowAllDirections = false;
  bool bFirstTime = true;
  double dRelativeScale = 1;
  double dTurbulenceOffset = 0;
  double dTurbulenceIrregularity = 1;
  double dMainRotorSpeed = 90;
  double dTailRotorSpeed = 150;

  CHelicopterBodyNode body{*this};
  CHelicopterMainRotorNode mainRotor{*this};
  CHelicopterTailRotorNode tailRotor{*this};
  CCockpitCamNode cockpitCam{*this};
  CFollowCamNode followCam{*this};

 private:
  std::array<ToolNode*, 5> NodesInOrder() { return {&body, &mainRotor, &tailRotor, &cockpitCam, &followCam}; }
  // What "Hide Helpers" hides: the body and its rotors, which stand in for
  // the model linked below them.
  std::vector<ToolNode*> Helpers() { return {&body, &mainRotor, &tailRotor}; }
  // The nodes a visibility label switches, with its flag; none for other labels.
  std::vector<ToolNode*> SwitchedNodes(const std::string& label, bool*& flag);
  void ApplyHideStates();
  void SetHelpersHidden(bool hidden);
  void ReadInputs();

  std::array<CInterface::Property*, HelicopterPlant::kChannelCount> inputControls{};
  ToolGauges<kGaugeCount> gauges;
};

using CHeliCamPlugin = CToolPlugin<CHeliCamObject>;

}  // namespace vuk::rgw::addon
