#pragma once
// The missile: rides on its body relocator until the fire button has been
// pressed the set number of times, then flies on its own, guided to the
// TargetMesh when asked, with a flame at its tail and a camera looking ahead
// over its back.

#include <cstdint>
#include <string>

#include "plugins/common/saveddata.h"
#include "plugins/common/settingspage.h"
#include "plugins/common/statehistory.h"
#include "plugins/common/toolnode.h"
#include "plugins/common/toolplugin.h"
#include "plugins/missile/missileflight.h"
#include "sdk/cinterface.h"

namespace vuk::rgw::addon {

class CMissileObject : public CCamera, public CInterface::Callback {
 public:
  class CMissileNode : public ToolNode {
   public:
    // A slim body along minus Z, the way it flies, with a cross of fins at the tail.
    class CMesh_missileMesh : public util::CMesh {
     public:
      CMesh_missileMesh();
    };

    explicit CMissileNode(CCamera* object) : ToolNode(object, "Missile") {}
    void Create() override;
    // Takes the lengths of the body's rows, which every pose written keeps.
    void Measure(double time);
    void Write(double time, const Pose& pose) const;

    util::Vector3<double> scale{1, 1, 1};
  };

  // What the missile hangs from until it is fired: link it to the carrier.
  class CBodyRelocatorNode : public ToolNode {
   public:
    class CMesh_RelocatorMesh : public util::CMesh {
     public:
      CMesh_RelocatorMesh();
    };

    explicit CBodyRelocatorNode(CCamera* object) : ToolNode(object, "BodyRelocator") {}
    void Create() override;
  };

  class CTargetNode : public ToolNode {
   public:
    class CMesh_HitSphereMesh : public util::CMesh {
     public:
      CMesh_HitSphereMesh();
    };

    explicit CTargetNode(CCamera* object) : ToolNode(object, "TargetMesh") {}
    void Create() override;
  };

  // The propulsion flame, below the missile at its tail.
  class CPropellerNode : public ToolNode {
   public:
    class CMesh_PropellerMesh : public util::CMesh {
     public:
      CMesh_PropellerMesh();
    };

    CPropellerNode(CCamera* object, const CMissileNode& missileNode) : ToolNode(object, "Propeller"), missile(missileNode) {}
    void Create() override;
    // Out, or lit: scaled and turned about the missile's axis by the frames flown.
    void Write(double time, bool lit, double scale, double turns) const;

   private:
    const CMissileNode& missile;
  };

  // Behind and above the missile, below it in the scene, looking where it flies.
  class CRearCamNode : public ToolNode {
   public:
    CRearCamNode(CCamera* object, const CMissileNode& missileNode) : ToolNode(object, "RearCam"), missile(missileNode) {}
    void Create() override;

   private:
    const CMissileNode& missile;
  };

  static const ToolInfo kInfo;
  // Version 100: the settings, then the flight's histories.
  static const SavedData kSavedData;
  static const PageTable<MissileSettings> kPage;

  explicit CMissileObject(const CreateParam& param);

  void Start(double time) override;
  void Stop(double time) override;
  void Step(double time) override;
  void TimeChanged(double time) override;
  std::int32_t BuildConfig() override;
  std::int32_t Create() override;
  std::int32_t Load() override;
  std::int32_t Save() override;
  void Changed(std::string label) override;

  MissileSettings settings;
  MissileState state;
  MissileFlight flight{settings, state};
  StateHistory<MissileState> history;
  CMissileNode missileNode{this};
  CBodyRelocatorNode relocatorNode{this};
  CTargetNode targetNode{this};
  CPropellerNode propellerNode{this, missileNode};
  CRearCamNode rearCamNode{this, missileNode};
  CInterface::Property* fireControl = nullptr;
  CInterface::Property* turbulenceControl = nullptr;
};

using CMissilePlugin = CToolPlugin<CMissileObject>;

}  // namespace vuk::rgw::addon
