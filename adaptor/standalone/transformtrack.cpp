#include "adaptor/standalone/transformtrack.h"

namespace vuk::rgw::adaptor::standalone {

using util::Matrix;
using util::Quat;
using util::Vector3;

TransformKey TransformKey::FromMatrix(Tick tick, const Matrix<double>& matrix) {
  TransformKey key;
  key.tick = tick;
  key.position = matrix.GetTranslation();
  key.rotation = matrix.ToQuat();
  key.scale = {matrix.Axis(0).Length(), matrix.Axis(1).Length(), matrix.Axis(2).Length()};
  // A mirrored matrix keeps its handedness in the scale.
  if (matrix.Axis(0).Cross(matrix.Axis(1)).Dot(matrix.Axis(2)) < 0) key.scale.z = -key.scale.z;
  return key;
}

Matrix<double> TransformKey::ToMatrix() const {
  Matrix<double> matrix = Matrix<double>::FromQuat(rotation.Normalized());
  matrix.SetAxis(0, matrix.Axis(0) * scale.x);
  matrix.SetAxis(1, matrix.Axis(1) * scale.y);
  matrix.SetAxis(2, matrix.Axis(2) * scale.z);
  matrix.SetTranslation(position);
  return matrix;
}

TransformKey TransformKey::Between(const TransformKey& a, const TransformKey& b, double f) {
  TransformKey between;
  between.position = a.position + (b.position - a.position) * f;
  between.scale = a.scale + (b.scale - a.scale) * f;
  between.rotation = Quat<double>::Slerp(a.rotation, b.rotation, f);
  return between;
}

}  // namespace vuk::rgw::adaptor::standalone
