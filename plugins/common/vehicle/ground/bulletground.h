#pragma once
// The vehicle tools' fast ground: the surfaces as bodies of a Bullet world,
// asked through the vehicle ray caster. Static surfaces keep their triangles
// in the world; an animated one is a kinematic body that the tool moves each
// step. With no surface the world holds the built-in plane.

#include <btBulletDynamicsCommon.h>

#include <memory>
#include <string>
#include <vector>

#include "plugins/common/vehicle/ground/groundcaster.h"
#include "util/mesh.h"

namespace vuk::rgw::addon {

// One surface for Bullet: copies of its vertices (32 bytes apart) and
// triangle indices (12 bytes apart), the array over them and the shape.
class triMeshStorage {
 public:
  // `moving` builds a shape that a kinematic body may carry.
  triMeshStorage(const util::CMesh& mesh, bool moving);
  triMeshStorage(const triMeshStorage&) = delete;
  triMeshStorage& operator=(const triMeshStorage&) = delete;
  virtual ~triMeshStorage() = default;

  btCollisionShape* shape() const { return shape_.get(); }
  // Of the shape's box, the product of its three sides.
  double volume() const { return volume_; }

 private:
  struct Vertex {
    btScalar x, y, z, unused;
  };
  static_assert(sizeof(Vertex) == 32, "Bullet reads the vertices 32 bytes apart");

  std::vector<Vertex> vertices_;
  std::vector<int> indices_;
  std::unique_ptr<btTriangleIndexVertexArray> array_;
  std::unique_ptr<btCollisionShape> shape_;
  double volume_ = 0;
};

struct GroundSurface {
  std::string name;
  const util::CMesh* mesh = nullptr;  // in the surface's own space
  Matrix pose;                        // the surface's world matrix
  bool animated = false;
};

class BulletGround : public GroundCaster {
 public:
  // The broadphase covers the surfaces as they stand now, with room around
  // them; carLength scales the plane that stands in for no surface.
  BulletGround(const std::vector<GroundSurface>& surfaces, double gravity, double carLength);
  BulletGround(const BulletGround&) = delete;
  BulletGround& operator=(const BulletGround&) = delete;
  ~BulletGround() override;

  bool Cast(const GroundRay& ray, GroundHit& hit) override;

  // An animated surface's world matrix now and one step later: the body
  // stands at the first, and its velocities carry it to the second.
  void MoveSurface(std::size_t surface, const Matrix& pose, const Matrix& next, double step);

  std::size_t BodyCount() const { return bodies_.size(); }
  const btRigidBody& Body(std::size_t index) const { return *bodies_[index].body; }
  const std::string& BodyName(std::size_t index) const { return bodies_[index].name; }
  const btDiscreteDynamicsWorld& World() const { return *world_; }
  void BroadphaseBounds(Vector3& lower, Vector3& upper) const;

 private:
  struct GroundBody {
    std::string name;
    std::unique_ptr<triMeshStorage> storage;
    std::unique_ptr<btDefaultMotionState> motion;
    std::unique_ptr<btRigidBody> body;
  };

  void AddBody(const std::string& name, std::unique_ptr<triMeshStorage> storage, const btTransform& start,
               bool kinematic);

  std::unique_ptr<btDefaultCollisionConfiguration> configuration_;
  std::unique_ptr<btCollisionDispatcher> dispatcher_;
  std::unique_ptr<btAxisSweep3> broadphase_;
  std::unique_ptr<btSequentialImpulseConstraintSolver> solver_;
  std::unique_ptr<btDiscreteDynamicsWorld> world_;
  std::unique_ptr<btDefaultVehicleRaycaster> raycaster_;
  std::vector<GroundBody> bodies_;
  // Body index of each surface given to the constructor.
  std::vector<std::size_t> surfaceBodies_;
};

}  // namespace vuk::rgw::addon
