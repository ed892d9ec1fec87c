#include "adaptor/standalone/transformtrack.h"

#include <algorithm>

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

std::vector<TransformKey>::const_iterator TransformTrack::LowerBound(Tick tick) const {
  return std::lower_bound(keys_.begin(), keys_.end(), tick,
                          [](const TransformKey& key, Tick t) { return key.tick < t; });
}

TransformKey TransformTrack::Interpolate(Tick tick) const {
  const auto after = LowerBound(tick);
  if (after == keys_.end()) return keys_.back();
  if (after->tick == tick || after == keys_.begin()) return *after;
  const TransformKey& a = *std::prev(after);
  const TransformKey& b = *after;
  const double f = static_cast<double>(tick - a.tick) / static_cast<double>(b.tick - a.tick);
  TransformKey between;
  between.position = a.position + (b.position - a.position) * f;
  between.scale = a.scale + (b.scale - a.scale) * f;
  between.rotation = Quat<double>::Slerp(a.rotation, b.rotation, f);
  return between;
}

Matrix<double> TransformTrack::Evaluate(Tick tick) const {
  if (keys_.empty()) return static_.ToMatrix();
  const Tick last = keys_.back().tick;
  const bool liveStands = live_ && (live_->tick == tick || (tick > last && live_->tick > last));
  if (!liveStands) {
    live_ = Interpolate(tick);
    live_->tick = tick;
  }
  return live_->ToMatrix();
}

void TransformTrack::SetKey(const TransformKey& key) {
  live_ = key;
  if (keys_.empty() || key.tick > keys_.back().tick) {
    keys_.push_back(key);
    return;
  }
  const auto at = keys_.begin() + (LowerBound(key.tick) - keys_.cbegin());
  if (at != keys_.end() && at->tick == key.tick) {
    *at = key;
  } else {
    keys_.insert(at, key);
  }
}

void TransformTrack::SetPose(Tick tick, const Matrix<double>& matrix) {
  if (keys_.empty()) {
    static_ = TransformKey::FromMatrix(0, matrix);
  } else {
    live_ = TransformKey::FromMatrix(tick, matrix);
  }
}

void TransformTrack::RemoveFrom(Tick tick) {
  keys_.erase(keys_.begin() + (LowerBound(tick) - keys_.cbegin()), keys_.end());
  live_.reset();
}

void TransformTrack::RemoveKey(Tick tick) {
  const auto at = LowerBound(tick);
  if (at != keys_.end() && at->tick == tick) keys_.erase(keys_.begin() + (at - keys_.cbegin()));
  live_.reset();
}

const TransformKey* TransformTrack::FindKey(Tick tick) const {
  const auto at = LowerBound(tick);
  return at != keys_.end() && at->tick == tick ? &*at : nullptr;
}

}  // namespace vuk::rgw::adaptor::standalone
