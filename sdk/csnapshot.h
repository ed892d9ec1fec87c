#pragma once
// One node at one explicit time. A snapshot is valid from its get to its
// release; nodes pool and reuse them, so a tool keeps none beyond one step.

#include <cstdint>

#include "sdk/cextendable.h"
#include "util/matrix.h"
#include "util/mesh.h"
#include "util/vector3.h"

namespace vuk::rgw {

using Matrix = util::Matrix<double>;
using Vector3 = util::Vector3<double>;

class CSnapshot : public CExtendable {
 public:
  // Pose relative to the scene parent.
  virtual void SetLocalTransform(const Matrix& matrix) = 0;
  virtual Matrix GetLocalTransform() = 0;
  virtual Matrix GetWorldTransform() = 0;
  virtual void SetWorldTransform(const Matrix& matrix) = 0;
  virtual double GetTime() = 0;
  virtual ~CSnapshot() = default;
};

// The display of a helper object.
class CSnapshot_Helper : public CExtendable {
 public:
  virtual void SetMesh(const util::CMesh& mesh) = 0;
  virtual util::CMesh GetMesh() = 0;
  virtual void SetWireframe(bool wireframe) = 0;
  virtual void SetBackfaceCull(bool cull) = 0;
  virtual ~CSnapshot_Helper() = default;
};

// The geometry of an object, in the object's own space.
class CSnapshot_Mesh : public CExtendable {
 public:
  virtual void SetMesh(const util::CMesh& mesh) = 0;
  virtual util::CMesh GetMesh() = 0;
  // True on a hit; either out pointer may be null.
  virtual bool IntersectRay(const Vector3& origin, const Vector3& direction, double* distance, Vector3* normal) = 0;
  virtual ~CSnapshot_Mesh() = default;
};

class CSnapshot_Lens : public CExtendable {
 public:
  enum FovType : std::int32_t { kHorizontal = 0, kVertical = 1, kDiagonal = 2 };

  virtual void SetFOV(double degrees) = 0;
  virtual double GetFOV() = 0;
  virtual std::int32_t GetFOVType() = 0;
  virtual void SetFOVType(std::int32_t type) = 0;
  // In host units.
  virtual void SetTargetDistance(double distance) = 0;
  virtual double GetTargetDistance() = 0;
  virtual double GetTime() = 0;
  // Always the identity; no tool relies on anything else.
  virtual Matrix GetProjection() = 0;
  virtual ~CSnapshot_Lens() = default;
};

// A spline object.
class CSnapshot_Shape : public CExtendable {
 public:
  virtual std::int32_t GetSplineCount() = 0;
  virtual std::int32_t GetCurrentSpline() = 0;
  // Clamps to the last index, then to 0, and answers the index in use.
  virtual std::int32_t SetCurrentSpline(std::int32_t index) = 0;
  virtual double GetLength() = 0;
  // u from 0 to 1, in the shape's own space.
  virtual Vector3 GetPoint(double u) = 0;
  virtual Vector3 GetTangent(double u) = 0;
  virtual ~CSnapshot_Shape() = default;
};

}  // namespace vuk::rgw
