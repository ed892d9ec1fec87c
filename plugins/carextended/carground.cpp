#include "plugins/carextended/carground.h"

#include <new>

#include "plugins/common/scopedsnapshot.h"
#include "plugins/common/vehicle/ground/bulletground.h"

namespace vuk::rgw::addon {

namespace {

constexpr char kError[] = "Error";
constexpr char kUnsupportedTitle[] = "UNSUPPORTED SURFACE TYPE";
constexpr char kUnsupported[] =
    "Support for this kind of surface has not yet been implemented for FAST RAYCAST for this adaptor. Fast raycast "
    "is therefore cancelled.\nContact support for more information on this issue.";
constexpr char kNoWorld[] = "Physics World not created";
constexpr char kNoGroundMesh[] = "No ground mesh available";
constexpr char kNotAMesh[] = "Surface not a mesh";
constexpr char kMeshInvalid[] = "Mesh Invalid";
// The name a stored mesh goes by in the world.
constexpr char kStoredMeshName[] = "groundMeshTemp";
constexpr std::size_t kMatrixBytes = 16 * sizeof(double);

Matrix WorldOf(CInterface* iface, CNode* node, double time) {
  const TransformSnapshot snapshot(iface, node, time);
  return snapshot ? snapshot->GetWorldTransform() : Matrix();
}

}  // namespace

CarGround::CarGround(CInterface*& iface, CNode*& gravity, CNode*& body)
    : iface_(iface), gravity_(gravity), body_(body) {}

CarGround::~CarGround() { Stop(); }

// The scene's root is no surface: it is every node's parent.
CNode* CarGround::PrimarySurface() {
  CNode* parent = gravity_ ? gravity_->GetParent() : nullptr;
  if (parent && (parent->IsRootNode() || (body_ && parent->IsSameOrBelow(body_)))) {
    iface_->ReleaseNode(parent);
    return nullptr;
  }
  return parent;
}

void CarGround::GatherSurfaces() {
  ReleaseSurfaces();
  if (CNode* primary = PrimarySurface()) surfaces_.push_back(primary);
  const std::int32_t children = gravity_ ? gravity_->GetSceneChildCount() : 0;
  for (std::int32_t i = 0; i < children; ++i) {
    if (CNode* child = gravity_->GetSceneChild(i)) surfaces_.push_back(child);
  }
  animated_.clear();
  for (CNode* surface : surfaces_) animated_.push_back(surface->IsAnimated());
  hosts_.assign(surfaces_.size(), HostSurfaceCaster());
  frameMeshes_.assign(surfaces_.size(), nullptr);
}

void CarGround::ReleaseSurfaces() {
  EndFrame();
  for (CNode* surface : surfaces_) iface_->ReleaseNode(surface);
  surfaces_.clear();
}

bool CarGround::ReadSurfaces(double time, std::vector<util::CMesh>& meshes, std::vector<GroundSurface>& read) {
  meshes.reserve(surfaces_.size());
  for (std::size_t i = 0; i < surfaces_.size(); ++i) {
    const MeshSnapshot mesh(iface_, surfaces_[i], time);
    if (!mesh) return false;
    meshes.push_back(mesh->GetMesh());
  }
  for (std::size_t i = 0; i < surfaces_.size(); ++i) {
    read.push_back({surfaces_[i]->name, &meshes[i], WorldOf(iface_, surfaces_[i], time), animated_[i]});
  }
  return true;
}

void CarGround::BuildWorld(double time, double carLength, double gravity) {
  std::vector<util::CMesh> meshes;
  std::vector<GroundSurface> read;
  if (HasStoredMesh()) {
    read.push_back({kStoredMeshName, &storedMesh_, storedPose_, false});
  } else {
    ReadSurfaces(time, meshes, read);
  }
  try {
    bullet_ = std::make_unique<BulletGround>(read, gravity, carLength);
  } catch (const std::bad_alloc&) {
    bullet_.reset();
  }
  // Surfaces without a triangle leave the world empty: no ground at all.
  if (!bullet_ || bullet_->BodyCount() == 0) {
    bullet_.reset();
    iface_->MessageBox(kNoWorld, kError, box::kCritical);
  }
}

void CarGround::Start(double time, double carLength, double gravity, bool& useFastRayCast,
                      std::int32_t& rayMultiplier) {
  Stop();
  raysCast_ = 0;
  GatherSurfaces();
  if (useFastRayCast && !HasStoredMesh()) {
    // On this host a surface that is no mesh (an empty, a camera) is what
    // Bullet can't be given.
    for (CNode* surface : surfaces_) {
      if (MeshSnapshot(iface_, surface, time)) continue;
      iface_->MessageBox(kUnsupported, kUnsupportedTitle, box::kWarning);
      useFastRayCast = false;
      rayMultiplier = 1;
      break;
    }
  }
  if (useFastRayCast) {
    BuildWorld(time, carLength, gravity);
    mode_ = Mode::kBullet;
  } else if (HasStoredMesh()) {
    if (!tree_) tree_ = std::make_unique<GroundMeshTree>(storedMesh_, storedPose_);
    mode_ = Mode::kTree;
  } else if (!surfaces_.empty()) {
    mode_ = Mode::kHost;
  } else {
    plane_ = std::make_unique<GroundPlane>(carLength);
    mode_ = Mode::kPlane;
  }
}

void CarGround::Stop() {
  bullet_.reset();
  plane_.reset();
  ReleaseSurfaces();
  mode_ = Mode::kNone;
}

void CarGround::BeginFrame(double time, double subStep) {
  if (mode_ == Mode::kHost) {
    for (std::size_t i = 0; i < surfaces_.size(); ++i) {
      frameMeshes_[i] = iface_->GetMeshSnapshot(surfaces_[i], time);
      hosts_[i].Bind(frameMeshes_[i], WorldOf(iface_, surfaces_[i], time));
    }
  } else if (mode_ == Mode::kBullet && bullet_ && !HasStoredMesh()) {
    for (std::size_t i = 0; i < surfaces_.size(); ++i) {
      if (!animated_[i]) continue;
      bullet_->MoveSurface(i, WorldOf(iface_, surfaces_[i], time), WorldOf(iface_, surfaces_[i], time + subStep),
                           subStep);
    }
  }
}

void CarGround::EndFrame() {
  for (CSnapshot_Mesh*& mesh : frameMeshes_) {
    iface_->ReleaseMeshSnapshot(mesh);
    mesh = nullptr;
  }
}

std::size_t CarGround::Rounds() const {
  switch (mode_) {
    case Mode::kHost:
      return surfaces_.size();
    case Mode::kBullet:
      return bullet_ ? 1 : 0;
    case Mode::kTree:
    case Mode::kPlane:
      return 1;
    default:
      return 0;
  }
}

bool CarGround::Cast(std::size_t round, const GroundRay& ray, GroundHit& hit) {
  ++raysCast_;
  switch (mode_) {
    case Mode::kHost:
      return hosts_[round].Cast(ray, hit);
    case Mode::kBullet:
      return bullet_->Cast(ray, hit);
    case Mode::kTree:
      return tree_->Cast(ray, hit);
    case Mode::kPlane:
      return plane_->Cast(ray, hit);
    default:
      return false;
  }
}

const char* CarGround::StoreMesh(double time, bool useFastRayCast) {
  CNode* primary = PrimarySurface();
  if (!primary) return kNoGroundMesh;
  const char* failure = nullptr;
  {
    const MeshSnapshot mesh(iface_, primary, time);
    if (!mesh) {
      failure = kNotAMesh;
    } else {
      util::CMesh read = mesh->GetMesh();
      if (read.faces.size() < 3) {
        failure = kMeshInvalid;
      } else {
        SetStored(std::move(read), WorldOf(iface_, primary, time));
        if (!useFastRayCast) tree_ = std::make_unique<GroundMeshTree>(storedMesh_, storedPose_);
      }
    }
  }
  iface_->ReleaseNode(primary);
  return failure;
}

void CarGround::ClearStoredMesh() { SetStored(util::CMesh(), Matrix()); }

util::Bytes CarGround::SavedMesh() const {
  util::Bytes bytes;
  if (!HasStoredMesh()) return bytes;
  util::ByteWriter out(bytes);
  out.Put(static_cast<std::uint32_t>(storedMesh_.vertices.size()));
  out.Put(static_cast<std::uint32_t>(storedMesh_.faces.size()));
  for (const Vector3& v : storedMesh_.vertices) {
    for (double c : {v.x, v.y, v.z}) out.Put(c);
  }
  for (std::int32_t index : storedMesh_.faces) out.Put(index);
  return bytes;
}

util::Bytes CarGround::SavedPose() const {
  util::Bytes bytes;
  if (!HasStoredMesh()) return bytes;
  util::ByteWriter out(bytes);
  for (int i = 0; i < 16; ++i) out.Put(storedPose_[i]);
  return bytes;
}

bool CarGround::ReadStored(const util::Bytes& mesh, const util::Bytes& pose, util::CMesh& readMesh,
                           Matrix& readPose) {
  readMesh = util::CMesh();
  readPose = Matrix();
  if (mesh.empty() && pose.empty()) return true;
  util::ByteReader in(mesh);
  std::uint32_t vertexCount = 0, indexCount = 0;
  if (!in.Get(vertexCount) || !in.Get(indexCount) || indexCount < 3 || indexCount % 3 != 0 ||
      in.Remaining() != std::size_t{vertexCount} * 3 * sizeof(double) + std::size_t{indexCount} * sizeof(std::int32_t) ||
      pose.size() != kMatrixBytes) {
    return false;
  }
  readMesh.vertices.resize(vertexCount);
  for (Vector3& v : readMesh.vertices) {
    in.Get(v.x);
    in.Get(v.y);
    in.Get(v.z);
  }
  readMesh.faces.resize(indexCount);
  for (std::int32_t& index : readMesh.faces) {
    in.Get(index);
    if (index < 0 || static_cast<std::uint32_t>(index) >= vertexCount) return false;
  }
  util::ByteReader poseIn(pose);
  for (int i = 0; i < 16; ++i) poseIn.Get(readPose[i]);
  return true;
}

void CarGround::SetStored(util::CMesh mesh, const Matrix& pose) {
  storedMesh_ = std::move(mesh);
  storedPose_ = pose;
  tree_.reset();
}

}  // namespace vuk::rgw::addon
