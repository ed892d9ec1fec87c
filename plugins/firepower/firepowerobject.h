#pragma once
// Firepower: a gun that fires rounds of bullets shaped like its template
// bullet, with spread, spin, gravity, air resistance, bounces off the
// surfaces the template bullet is linked to, and a barrel that recoils.
// Each bullet is a node of the tool's own, saved with it.

#include <cstdint>
#include <string>
#include <vector>

#include "plugins/common/saveddata.h"
#include "plugins/common/settingspage.h"
#include "plugins/common/statehistory.h"
#include "plugins/common/toolnode.h"
#include "plugins/common/toolplugin.h"
#include "plugins/common/vehicle/ground/hostsurfacecaster.h"
#include "plugins/firepower/firepowergun.h"
#include "sdk/cinterface.h"

namespace vuk::rgw::addon {

class Firepower : public CCamera, public CInterface::Callback {
 public:
  class CGunNode : public ToolNode {
   public:
    class CMesh_Gun : public util::CMesh {
     public:
      CMesh_Gun();
    };

    explicit CGunNode(CCamera* object) : ToolNode(object, "gunBody") {}
    void Create() override;
  };

  // Below the gun at its muzzle end; recoil moves it along the gun's Z.
  class CBarrelNode : public ToolNode {
   public:
    class CMesh_Barrel : public util::CMesh {
     public:
      CMesh_Barrel();
    };

    CBarrelNode(CCamera* object, const CGunNode& gunNode) : ToolNode(object, "barrel"), gun(gunNode) {}
    void Create() override;

   private:
    const CGunNode& gun;
  };

  // What every bullet looks like; the surfaces bullets hit are its scene
  // parent and its scene children.
  class CTemplateBulletNode : public ToolNode {
   public:
    class CMesh_Bullet : public util::CMesh {
     public:
      CMesh_Bullet();
    };

    explicit CTemplateBulletNode(CCamera* object) : ToolNode(object, "templateBullet") {}
    void Create() override;
  };

  class CCrosshairCamNode : public ToolNode {
   public:
    CCrosshairCamNode(CCamera* object, const CGunNode& gunNode) : ToolNode(object, "crosshairCam"), gun(gunNode) {}
    void Create() override;

   private:
    const CGunNode& gun;
  };

  static const ToolInfo kInfo;
  // Version 100: the settings, the gun's histories, then the bullets.
  static const SavedData kSavedData;
  static const PageTable<FirepowerSettings> kPage;

  explicit Firepower(const CreateParam& param);
  ~Firepower() override;

  // Reconnects the bullets of a load to their nodes once all of it exists.
  std::intptr_t Extension(std::int32_t id, void* data) override;
  std::vector<std::int32_t> ExtensionIds() override { return {extension::kConnectTools}; }

  void Start(double time) override;
  void Stop(double time) override;
  void Step(double time) override;
  void TimeChanged(double time) override;
  std::int32_t BuildConfig() override;
  std::int32_t Create() override;
  std::int32_t Load() override;
  std::int32_t Save() override;
  void Changed(std::string label) override;

  FirepowerSettings settings;
  GunState state;
  StateHistory<GunState> history;
  std::vector<Bullet> bullets;
  CGunNode gunNode{this};
  CBarrelNode barrelNode{this, gunNode};
  CTemplateBulletNode templateNode{this};
  CCrosshairCamNode cameraNode{this, gunNode};
  CInterface::Property* fireControl = nullptr;

 private:
  struct Surface {
    CNode* node;
    HostSurfaceCaster caster;
    CSnapshot_Mesh* mesh = nullptr;
  };

  // The press, the delay, the count and the rate: how many discharges now.
  bool Triggered(double time, double dt);
  void Discharge(double time, double dt, const util::Matrix<double>& gun, const Vector3& gunVelocity);
  void StepBullet(Bullet& bullet, double time, double dt);
  void WriteBullet(const Bullet& bullet, double time) const;
  void MoveBarrel(double time, double dt);
  // Drops the bullets born after t and cuts the others' paths there.
  void RewindBullets(double time);
  void GatherSurfaces();
  void ReleaseSurfaces();
  void BeginSurfaces(double time);
  void EndSurfaces();

  std::vector<Surface> surfaces_;
  Vector3 barrelRest_;
  util::CMesh bulletMesh_;
};

using CFirepowerObject = Firepower;
using FirepowerPlugin = CToolPlugin<Firepower>;

}  // namespace vuk::rgw::addon
