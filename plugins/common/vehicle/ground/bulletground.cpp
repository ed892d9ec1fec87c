#include "plugins/common/vehicle/ground/bulletground.h"

#include <LinearMath/btTransformUtil.h>

#include <algorithm>
#include <limits>

#include "plugins/common/vehicle/ground/groundmeshtree.h"

namespace vuk::rgw::addon {
namespace {

// Bullet's usual world: the broadphase never covers less than this.
constexpr double kDefaultLimit = 1000.0;
constexpr double kFriction = 0.5;
constexpr double kRestitution = 0.5;
constexpr int kGroundGroup = 2;
constexpr int kGroundMask = 3;
constexpr int kSolverIterations = 10;
constexpr std::size_t kNoBody = std::numeric_limits<std::size_t>::max();

btVector3 ToBullet(const Vector3& v) { return {v.x, v.y, v.z}; }
Vector3 FromBullet(const btVector3& v) { return {v.x(), v.y(), v.z()}; }

// Bullet's transforms are rigid: the axes' lengths go into the vertices.
btTransform RigidPart(const Matrix& m) {
  const Vector3 x = m.Axis(0).Normalized(), y = m.Axis(1).Normalized(), z = m.Axis(2).Normalized();
  const btMatrix3x3 basis(x.x, y.x, z.x, x.y, y.y, z.y, x.z, y.z, z.z);
  return btTransform(basis, ToBullet(m.GetTranslation()));
}

Matrix ScalePart(const Matrix& m) {
  Matrix scale;
  scale[0] = m.Axis(0).Length();
  scale[5] = m.Axis(1).Length();
  scale[10] = m.Axis(2).Length();
  return scale;
}

bool HasTriangles(const GroundSurface& surface) { return surface.mesh && surface.mesh->faces.size() >= 3; }

}  // namespace

triMeshStorage::triMeshStorage(const util::CMesh& mesh, bool moving) {
  vertices_.reserve(mesh.vertices.size());
  for (const auto& v : mesh.vertices) vertices_.push_back({v.x, v.y, v.z, 0});
  const auto vertexCount = static_cast<std::int64_t>(vertices_.size());
  indices_.reserve(mesh.faces.size());
  for (std::size_t face = 0; face + 2 < mesh.faces.size(); face += 3) {
    const std::int32_t* index = &mesh.faces[face];
    if (std::all_of(index, index + 3, [&](std::int32_t i) { return i >= 0 && i < vertexCount; })) {
      indices_.insert(indices_.end(), index, index + 3);
    }
  }
  btIndexedMesh part;
  part.m_numTriangles = static_cast<int>(indices_.size() / 3);
  part.m_triangleIndexBase = reinterpret_cast<const unsigned char*>(indices_.data());
  part.m_triangleIndexStride = 3 * sizeof(int);
  part.m_numVertices = static_cast<int>(vertices_.size());
  part.m_vertexBase = reinterpret_cast<const unsigned char*>(vertices_.data());
  part.m_vertexStride = sizeof(Vertex);
  part.m_vertexType = PHY_DOUBLE;
  array_ = std::make_unique<btTriangleIndexVertexArray>();
  array_->addIndexedMesh(part, PHY_INTEGER);
  if (moving) {
    shape_ = std::make_unique<btConvexTriangleMeshShape>(array_.get());
  } else {
    shape_ = std::make_unique<btBvhTriangleMeshShape>(array_.get(), true);
  }
  btVector3 lower, upper;
  shape_->getAabb(btTransform::getIdentity(), lower, upper);
  const btVector3 size = upper - lower;
  volume_ = size.x() * size.y() * size.z();
}

BulletGround::BulletGround(const std::vector<GroundSurface>& surfaces, double gravity, double carLength) {
  // A car that drives beyond Bullet's usual limits must still find its
  // ground: the broadphase takes in every surface and half as much again.
  Vector3 lower{-kDefaultLimit, -kDefaultLimit, -kDefaultLimit}, upper{kDefaultLimit, kDefaultLimit, kDefaultLimit};
  for (const GroundSurface& surface : surfaces) {
    if (!HasTriangles(surface)) continue;
    for (const auto& vertex : surface.mesh->vertices) {
      const Vector3 p = surface.pose.TransformPoint(vertex);
      lower = {std::min(lower.x, p.x), std::min(lower.y, p.y), std::min(lower.z, p.z)};
      upper = {std::max(upper.x, p.x), std::max(upper.y, p.y), std::max(upper.z, p.z)};
    }
  }
  const Vector3 margin = (upper - lower) * 0.5;
  configuration_ = std::make_unique<btDefaultCollisionConfiguration>();
  dispatcher_ = std::make_unique<btCollisionDispatcher>(configuration_.get());
  broadphase_ = std::make_unique<btAxisSweep3>(ToBullet(lower - margin), ToBullet(upper + margin));
  solver_ = std::make_unique<btSequentialImpulseConstraintSolver>();
  world_ = std::make_unique<btDiscreteDynamicsWorld>(dispatcher_.get(), broadphase_.get(), solver_.get(),
                                                     configuration_.get());
  world_->getSolverInfo().m_numIterations = kSolverIterations;
  world_->setGravity(btVector3(0, -gravity, 0));
  raycaster_ = std::make_unique<btDefaultVehicleRaycaster>(world_.get());

  for (const GroundSurface& surface : surfaces) {
    if (!HasTriangles(surface)) {
      surfaceBodies_.push_back(kNoBody);
      continue;
    }
    surfaceBodies_.push_back(bodies_.size());
    if (surface.animated) {
      AddBody("Kinematic_" + surface.name,
              std::make_unique<triMeshStorage>(util::CMesh(*surface.mesh, ScalePart(surface.pose)), true),
              RigidPart(surface.pose), true);
    } else {
      AddBody("Dynamic_" + surface.name,
              std::make_unique<triMeshStorage>(util::CMesh(*surface.mesh, surface.pose), false),
              btTransform::getIdentity(), false);
    }
  }
  if (surfaces.empty()) {
    AddBody("DefaultGround", std::make_unique<triMeshStorage>(GroundPlaneMesh(carLength), false),
            btTransform::getIdentity(), false);
  }
}

BulletGround::~BulletGround() {
  for (GroundBody& body : bodies_) world_->removeRigidBody(body.body.get());
}

void BulletGround::AddBody(const std::string& name, std::unique_ptr<triMeshStorage> storage, const btTransform& start,
                           bool kinematic) {
  GroundBody added;
  added.name = name;
  added.motion = std::make_unique<btDefaultMotionState>(start);
  btRigidBody::btRigidBodyConstructionInfo info(0, added.motion.get(), storage->shape(), btVector3(0, 0, 0));
  info.m_friction = kFriction;
  info.m_restitution = kRestitution;
  added.body = std::make_unique<btRigidBody>(info);
  if (kinematic) {
    added.body->setCollisionFlags(added.body->getCollisionFlags() | btCollisionObject::CF_KINEMATIC_OBJECT);
    added.body->setActivationState(DISABLE_DEACTIVATION);
  }
  added.storage = std::move(storage);
  world_->addRigidBody(added.body.get(), kGroundGroup, kGroundMask);
  bodies_.push_back(std::move(added));
}

void BulletGround::MoveSurface(std::size_t surface, const Matrix& pose, const Matrix& next, double step) {
  if (surface >= surfaceBodies_.size() || surfaceBodies_[surface] == kNoBody || step <= 0) return;
  GroundBody& moved = bodies_[surfaceBodies_[surface]];
  const btTransform now = RigidPart(pose), later = RigidPart(next);
  moved.motion->setWorldTransform(now);
  moved.body->setWorldTransform(now);
  btVector3 linear, angular;
  btTransformUtil::calculateVelocity(now, later, step, linear, angular);
  moved.body->setLinearVelocity(linear);
  moved.body->setAngularVelocity(angular);
  world_->updateSingleAabb(moved.body.get());
}

bool BulletGround::Cast(const GroundRay& ray, GroundHit& hit) {
  btVehicleRaycaster::btVehicleRaycasterResult result;
  if (!raycaster_->castRay(ToBullet(ray.origin), ToBullet(ray.origin + ray.direction * ray.length), result)) {
    return false;
  }
  hit.distance = result.m_distFraction * ray.length;
  hit.normal = FromBullet(result.m_hitNormalInWorld);
  return true;
}

void BulletGround::BroadphaseBounds(Vector3& lower, Vector3& upper) const {
  btVector3 low, high;
  broadphase_->getBroadphaseAabb(low, high);
  lower = FromBullet(low);
  upper = FromBullet(high);
}

}  // namespace vuk::rgw::addon
