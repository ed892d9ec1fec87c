#include "plugins/firepower/firepowerobject.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>

#include "plugins/common/buttonpress.h"
#include "plugins/common/meshparts.h"
#include "plugins/common/toolrandom.h"
#include "plugins/common/filterresponse.h"
#include "sdk/cvariablemodundo.h"

namespace vuk::rgw::addon {

const ToolInfo Firepower::kInfo = {
    "Firepower",
    "utility/firepower",
    "Quoll Firepower",
    "Accessory;Weapon",
    "Quoll Firepower is used for simulating all sorts of artillery such as cannon, minigun, handgun, spacecraft "
    "lasers cannons.",
    "Firepower: a gun and its bullets.",
    {},
};

const SavedData Firepower::kSavedData{"FirepowerDataChunk", 100};

namespace {

using Entry = PageEntry<FirepowerSettings>;
using S = FirepowerSettings;
using GunMatrix = util::Matrix<double>;

constexpr char kSettingsKey[] = "sDataChunkSaveStruct";
constexpr char kBulletsKey[] = "bullets";
constexpr char kHideCamera[] = "Hide Camera";
constexpr char kHideCameraDuringRecording[] = "Hide Camera During Recording";
constexpr char kSelectAll[] = "Select all bullets";
// The barrel's travel at full depth, in lengths of its Z row.
constexpr double kRecoilOffsetScale = 0.25;
constexpr double kPi = 3.141592653589793;

Quat RotationOf(GunMatrix matrix) {
  for (int axis = 0; axis < 3; ++axis) matrix.SetAxis(axis, matrix.Axis(axis).Normalized());
  return matrix.ToQuat();
}

double Draw(ToolRandom& random) { return random.Next() / static_cast<double>(ToolRandom::kMax); }

Vector3 Reflect(const Vector3& v, const Vector3& normal) { return v - normal * (2 * v.Dot(normal)); }

}  // namespace

const PageTable<FirepowerSettings> Firepower::kPage = {
    Entry::Group("General Modes"),
    Entry::Helpers(&S::helpers),
    Entry::Check(kHideCamera, kHideCamera, &S::bHideCamera),
    Entry::Check(kHideCameraDuringRecording, kHideCameraDuringRecording, &S::bHideCameraDuringRecording),
    Entry::EndGroup(),
    Entry::Group("Bullet Properties"),
    Entry::Number("Muzzle Velocity (m/s)", "Set the muzzle velocity of the bullets.", &S::dMuzzleVelocity, 0, 100000, 1),
    Entry::Number("Spread Angle (degrees)", "Set the spread angle of the bullets (Degrees).", &S::dSpreadAngle, 0, 180,
                  0.1),
    Entry::Number("Gravity", "Set gravity affecting the bullets in flight", &S::dGravity, -1000, 1000, 0.1),
    Entry::Number("Rotation (revolutions/s)", "Set the rotation.", &S::dRotation, -1000, 1000, 0.1),
    Entry::Number("Lifetime (seconds)", "Set lifetime of the bullets, will only stop when dead", &S::dLifetime, 0,
                  10000, 0.1),
    Entry::Whole("Rate of fire (rounds/s)", "Set the rate of fire (bullets/second)", &S::iRateOfFire, 0, 1000),
    Entry::Whole("Bullets/discharge", "Set how many bullets to fire at each discharge", &S::iBulletsPerDischarge, 1,
                 1000),
    Entry::Whole("Fire First Bullet On Nth Time", "Fire First Bullet On Nth Time", &S::iFireFirstOnNth, 1, 1000),
    Entry::Whole("Fire Nth Time",
                 "Set this parameter to zero if you want to be able to fire while holding the fire-button pressed "
                 "down.",
                 &S::iFireNth, 0, 1000),
    Entry::Check("Pitch Bullet", "Pitches the bullet in velocity direction", &S::bPitchBullet),
    Entry::Number("Randomize Rotation Speed", "Randomize Rotation Speed", &S::dRandomizeRotationSpeed, 0, 1000, 0.1),
    Entry::Number("Randomize Rotation Axis", "Randomize Rotation Axis", &S::dRandomizeRotationAxis, 0, 1, 0.01),
    Entry::Check("Time Delay", "Time Delay", &S::bTimeDelay),
    Entry::Whole("Time Delay in Frames", "Time Delay in Frames", &S::iTimeDelayFrames, 0, 100000),
    Entry::EndGroup(),
    Entry::Group("Collision parameters"),
    Entry::Number("elasticity (%)", "Set how much the bullet bounce of the collision object", &S::dElasticity, 0, 100,
                  0.1),
    Entry::Number("collision correction value", "collision correction value", &S::dCorrection, 0, 100, 0.01),
    Entry::EndGroup(),
    Entry::Group("Air Resistance"),
    Entry::Number("Air Resistance Force", "A value for the air resistance affecting the bullets in flight.",
                  &S::dAirResistance, 0, 100, 0.0001),
    Entry::EndGroup(),
    Entry::Group("Select"),
    Entry::Button(kSelectAll, "Selects all bullets in the scene."),
    Entry::ReadOut("nrBullets", &S::dBullets, 0, 1e9, 1),
    Entry::EndGroup(),
    Entry::Group("Recoil properties"),
    Entry::Number("Response Factor", "A value for smooth recoil", &S::dRecoilResponse, 0, 1, 0.001),
    Entry::Whole("Backward (frames)", "Backward (frames)", &S::iRecoilBackward, 1, 1000),
    Entry::Whole("Forward (frames)", "Forward (frames)", &S::iRecoilForward, 1, 1000),
    Entry::Number("Depth (%)", "Set how deep the barrel should go into the gun", &S::dDepth, 0, 100, 0.1),
    Entry::EndGroup(),
};

Firepower::Firepower(const CreateParam& param) : CCamera(param) {
  history.Add("adSinceLastRound", &GunState::dSinceLastRound)
      .Add("abLatched", &GunState::bLatched)
      .Add("abTriggered", &GunState::bTriggered)
      .Add("aiCountdown", &GunState::iCountdown)
      .Add("adPendingPress", &GunState::dPendingPress)
      .Add("aiNextBullet", &GunState::iNextBullet)
      .Add("aiRandomState", &GunState::iRandomState)
      .Add("aiRecoilFrame", &GunState::iRecoilFrame)
      .Add("adRecoil", &GunState::dRecoil);
}

Firepower::~Firepower() { ReleaseSurfaces(); }

Firepower::CGunNode::CMesh_Gun::CMesh_Gun() {
  AppendPart(*this, util::CMesh_Box(0.2, 0.25, 0.8), Placed({0, 0, 0}));
  AppendPart(*this, util::CMesh_Box(0.08, 0.3, 0.12), Placed({0, -0.25, 0.2}));
}

Firepower::CBarrelNode::CMesh_Barrel::CMesh_Barrel() {
  // The cylinder stands on Y; the barrel lies along minus Z.
  GunMatrix along = GunMatrix::FromQuat(Quat::FromAxisAngle({1, 0, 0}, kPi / 2));
  AppendPart(*this, util::CMesh_Cylinder(8, 0.04, 0.8), along);
}

Firepower::CTemplateBulletNode::CMesh_Bullet::CMesh_Bullet() {
  AppendPart(*this, CMesh_Diamond(0.02), Placed({0, 0, 0}, {1, 1, 3}));
}

void Firepower::CGunNode::Create() { CreateHelper(CMesh_Gun()); }

void Firepower::CBarrelNode::Create() {
  CreateHelper(CMesh_Barrel(), gun.handle);
  if (const TransformSnapshot snapshot = Transform(owner->iface->GetTime())) {
    snapshot->SetLocalTransform(Placed({0, 0.05, -0.8}));
  }
}

void Firepower::CTemplateBulletNode::Create() {
  CreateHelper(CMesh_Bullet());
  if (const TransformSnapshot snapshot = Transform(owner->iface->GetTime())) {
    snapshot->SetLocalTransform(Placed({0, 0, 2}));
  }
}

void Firepower::CCrosshairCamNode::Create() {
  CreateCamera(gun.handle);
  if (const TransformSnapshot snapshot = Transform(owner->iface->GetTime())) {
    snapshot->SetLocalTransform(Placed({0, 0.3, 0.6}));
  }
}

std::intptr_t Firepower::Extension(std::int32_t id, void*) {
  if (id != extension::kConnectTools) return 0;
  for (Bullet& bullet : bullets) bullet.node = iface->FindNode(bullet.name);
  return 1;
}

void Firepower::GatherSurfaces() {
  ReleaseSurfaces();
  CNode* primary = templateNode.handle ? templateNode.handle->GetParent() : nullptr;
  // The scene's root is every node's parent, and the gun is no target.
  if (primary && (primary->IsRootNode() || (gunNode.handle && primary->IsSameOrBelow(gunNode.handle)))) {
    iface->ReleaseNode(primary);
    primary = nullptr;
  }
  if (primary) surfaces_.push_back({primary, {}});
  const std::int32_t children = templateNode.handle ? templateNode.handle->GetSceneChildCount() : 0;
  for (std::int32_t i = 0; i < children; ++i) {
    if (CNode* child = templateNode.handle->GetSceneChild(i)) surfaces_.push_back({child, {}});
  }
}

void Firepower::ReleaseSurfaces() {
  EndSurfaces();
  for (Surface& surface : surfaces_) iface->ReleaseNode(surface.node);
  surfaces_.clear();
}

void Firepower::BeginSurfaces(double time) {
  for (Surface& surface : surfaces_) {
    surface.mesh = iface->GetMeshSnapshot(surface.node, time);
    const TransformSnapshot pose(iface, surface.node, time);
    surface.caster.Bind(surface.mesh, pose ? pose->GetWorldTransform() : GunMatrix());
  }
}

void Firepower::EndSurfaces() {
  for (Surface& surface : surfaces_) {
    iface->ReleaseMeshSnapshot(surface.mesh);
    surface.mesh = nullptr;
  }
}

void Firepower::RewindBullets(double time) {
  iface->PushUndo(new CVariableModUndo<std::vector<Bullet>>(&bullets));
  const double after = std::nextafter(time, std::numeric_limits<double>::infinity());
  for (std::size_t i = bullets.size(); i-- > 0;) {
    Bullet& bullet = bullets[i];
    if (bullet.birth > time) {
      iface->DeleteNode(bullet.node);
      bullets.erase(bullets.begin() + static_cast<std::ptrdiff_t>(i));
      continue;
    }
    bullet.positions.RemoveFrom(after);
    bullet.velocities.RemoveFrom(after);
  }
}

void Firepower::Start(double time) {
  state = GunState();
  state.iCountdown = settings.iFireFirstOnNth;
  history.RewindTo(time, state, *iface);
  RewindBullets(time);
  const double offset = kRecoilOffsetScale * barrelNode.World(time).Axis(2).Length();
  barrelRest_ = barrelNode.Local(time).GetTranslation() - Vector3(0, 0, state.dRecoil / 100 * offset);
  const MeshSnapshot shape(iface, templateNode.handle, time);
  bulletMesh_ = shape ? shape->GetMesh() : CTemplateBulletNode::CMesh_Bullet();
  GatherSurfaces();
  settings.helpers.Start(templateNode.handle);
  if (settings.bHideCamera || settings.bHideCameraDuringRecording) SetHidden(cameraNode.handle, true);
}

void Firepower::Stop(double) {
  ReleaseSurfaces();
  settings.helpers.Stop(templateNode.handle);
  if (settings.bHideCameraDuringRecording && !settings.bHideCamera) SetHidden(cameraNode.handle, false);
}

bool Firepower::Triggered(double time, double dt) {
  const double value = ButtonValue(fireControl);
  if (NewPress(value, state.bLatched)) state.dPendingPress = time;
  const double delay = settings.bTimeDelay ? settings.iTimeDelayFrames * dt : 0;
  // A press counts once its delay is over: a half frame of slack for the frame grid.
  bool pressFires = false;
  if (state.dPendingPress >= 0 && time - state.dPendingPress >= delay - 0.5 * dt) {
    state.dPendingPress = -1;
    if (--state.iCountdown <= 0) {
      state.iCountdown = settings.iFireNth;
      state.bTriggered = pressFires = true;
    }
  }
  const bool held = value > 0;
  bool fire = pressFires;
  if (settings.iRateOfFire != 0) {
    const double interval = 1.0 / settings.iRateOfFire;
    if (pressFires) state.dSinceLastRound = std::max(state.dSinceLastRound, interval);
    fire = (pressFires || (state.bTriggered && held)) && state.dSinceLastRound >= interval;
  }
  if (!held) state.bTriggered = false;
  return fire;
}

void Firepower::Discharge(double time, double dt, const GunMatrix& gun, const Vector3& gunVelocity) {
  ToolRandom random(static_cast<std::uint32_t>(state.iRandomState));
  const Quat aim = RotationOf(gun);
  const Vector3 muzzle = barrelNode.World(time).GetTranslation();
  const double halfAngle = settings.dSpreadAngle * kPi / 180;
  const double axisTurn = std::clamp(settings.dRandomizeRotationAxis, 0.0, 1.0);
  for (std::int32_t round = 0; round < settings.iBulletsPerDischarge; ++round) {
    Bullet bullet;
    char name[32];
    std::snprintf(name, sizeof name, "Bullet_%04d", static_cast<int>(state.iNextBullet++));
    bullet.name = name;
    bullet.birth = time;
    bullet.rotation = aim;
    const double u = Draw(random), v = Draw(random);
    bullet.velocities.Set(time, aim.Rotate(SpreadDirection(halfAngle, u, v)) * settings.dMuzzleVelocity + gunVelocity);
    bullet.positions.Set(time, muzzle);
    const double au = Draw(random), av = Draw(random);
    bullet.spinAxis = (Vector3(0, 0, 1) * (1 - axisTurn) + SpreadDirection(kPi, au, av) * axisTurn).Normalized();
    bullet.spin = settings.dRotation + settings.dRandomizeRotationSpeed * Draw(random);
    bullet.node = iface->CreateMeshNode(bullet.name, nullptr, bulletMesh_, nullptr);
    if (bullet.node) bullet.node->Extension(extension::kNodeRefresh, nullptr);
    bullets.push_back(std::move(bullet));
    WriteBullet(bullets.back(), time);
  }
  // The next round falls anywhere within a frame, off the frame grid.
  state.dSinceLastRound = dt * random.Next() * 3.0517578125e-05;
  state.iRandomState = static_cast<std::int32_t>(random.State());
  state.iRecoilFrame = 0;
}

void Firepower::StepBullet(Bullet& bullet, double time, double dt) {
  Vector3 position = bullet.positions.records.back().value;
  Vector3 velocity = bullet.velocities.records.back().value;
  const Vector3 start = position;
  FlyFreely(position, velocity, dt, settings.dGravity, settings.dAirResistance);
  const Vector3 move = position - start;
  const double length = move.Length();
  GroundHit nearest{length, {}};
  bool hit = false;
  for (Surface& surface : surfaces_) {
    GroundHit found;
    if (length > 0 && surface.caster.Cast({start, move / length, nearest.distance}, found)) {
      nearest = found;
      hit = true;
    }
  }
  if (hit) {
    // The rest of the step bounces off, with what the elasticity keeps, and
    // the bullet is set off the surface so that the next ray starts above it.
    const double keep = std::max(settings.dElasticity / 100, 0.001);
    const Vector3 rest = move * (1 - nearest.distance / length);
    position = start + move * (nearest.distance / length) + Reflect(rest, nearest.normal) * keep +
               nearest.normal * (settings.dCorrection * 0.01);
    velocity = Reflect(velocity, nearest.normal) * keep;
    bullet.collided = true;
  }
  bullet.positions.Set(time, position);
  bullet.velocities.Set(time, velocity);
  WriteBullet(bullet, time);
}

void Firepower::WriteBullet(const Bullet& bullet, double time) const {
  const Vector3 velocity = bullet.velocities.records.back().value;
  Quat rotation = Quat::FromAxisAngle(bullet.spinAxis, bullet.spin * 2 * kPi * (time - bullet.birth)) * bullet.rotation;
  if (settings.bPitchBullet && velocity.Length() > 0) rotation = Quat::FromTo({0, 0, -1}, velocity);
  const TransformSnapshot snapshot(iface, bullet.node, time);
  if (snapshot) snapshot->SetWorldTransform(GunMatrix::FromPose({bullet.positions.records.back().value, rotation}));
}

void Firepower::MoveBarrel(double time, double dt) {
  const std::int32_t back = std::max(1, settings.iRecoilBackward), forward = std::max(1, settings.iRecoilForward);
  const std::int32_t frame = state.iRecoilFrame;
  const double wanted = frame < back ? settings.dDepth * (frame + 1) / back
                                     : settings.dDepth * std::max(0.0, 1 - double(frame - back + 1) / forward);
  filterResponse(state.dRecoil, wanted, settings.dRecoilResponse, dt);
  state.iRecoilFrame = std::min(frame + 1, GunState().iRecoilFrame);
  const double offset = kRecoilOffsetScale * barrelNode.World(time).Axis(2).Length();
  GunMatrix local = barrelNode.Local(time);
  local.SetTranslation(barrelRest_ + Vector3(0, 0, state.dRecoil / 100 * offset));
  if (const TransformSnapshot snapshot = barrelNode.Transform(time)) snapshot->SetLocalTransform(local);
}

void Firepower::Step(double time) {
  const double dt = iface->GetFrameDuration();
  state.dSinceLastRound += dt;
  BeginSurfaces(time);
  for (Bullet& bullet : bullets) {
    if (bullet.node && time - bullet.birth <= settings.dLifetime) StepBullet(bullet, time, dt);
  }
  EndSurfaces();
  const GunMatrix gun = gunNode.World(time);
  const Vector3 gunVelocity = (gun.GetTranslation() - gunNode.World(time - dt).GetTranslation()) / dt;
  // The barrel first: rounds leave from where this frame puts it.
  MoveBarrel(time, dt);
  if (Triggered(time, dt)) Discharge(time, dt, gun, gunVelocity);
  settings.dBullets = static_cast<double>(bullets.size());
  history.Record(time, state);
}

void Firepower::TimeChanged(double) { iface->UpdateConfig(); }

std::int32_t Firepower::BuildConfig() {
  fireControl = iface->AddInput("Fire", input::kSwitch);
  BuildPage(iface, this, settings, kPage, false);
  return 0;
}

std::int32_t Firepower::Create() {
  gunNode.Create();
  barrelNode.Create();
  templateNode.Create();
  cameraNode.Create();
  if (!gunNode.handle || !barrelNode.handle || !templateNode.handle || !cameraNode.handle) {
    iface->MessageBox("Error in onCreate", "Error", box::kCritical);
    return 1;
  }
  gunNode.handle->Select();
  iface->UpdateConfig();
  return 0;
}

std::int32_t Firepower::Load() {
  for (ToolNode* node : std::initializer_list<ToolNode*>{&gunNode, &barrelNode, &templateNode, &cameraNode}) {
    if (!node->Find()) return 1;
    node->RefreshHelper();
  }
  util::DataChunk chunk;
  if (!kSavedData.Read(iface, chunk)) return 1;
  const util::DataChunk* saved = chunk.FindChild(kSettingsKey);
  const util::DataChunk* savedBullets = chunk.FindChild(kBulletsKey);
  FirepowerSettings read = settings;
  if (!saved || !savedBullets || !ReadSettings(kPage, saved->data, read)) return 1;
  std::vector<Bullet> loaded(savedBullets->children.size());
  for (std::size_t i = 0; i < loaded.size(); ++i) {
    if (!loaded[i].Load(savedBullets->children[i])) return 1;
  }
  if (!history.LoadFrom(chunk)) return 1;
  settings = read;
  bullets = std::move(loaded);
  return 0;
}

std::int32_t Firepower::Save() {
  util::DataChunk chunk = kSavedData.Begin();
  chunk.AddChild(kSettingsKey, SaveSettings(kPage, settings));
  history.SaveTo(chunk);
  util::DataChunk& saved = chunk.AddChild(kBulletsKey);
  for (const Bullet& bullet : bullets) saved.children.push_back(bullet.Save());
  SavedData::Store(iface, chunk);
  return 0;
}

void Firepower::Changed(std::string label) {
  const ConfigChange change(std::move(label));
  if (change.label == HelperSwitches::kHide) {
    ApplyHideSwitch(iface, this, change, templateNode.handle, settings.helpers.hide);
  } else if (change.label == kHideCamera) {
    ApplyHideSwitch(iface, this, change, cameraNode.handle, settings.bHideCamera);
  } else if (change.label == kSelectAll && !change.IsReplay()) {
    for (const Bullet& bullet : bullets) {
      if (bullet.node) bullet.node->Select();
    }
  }
}

}  // namespace vuk::rgw::addon
