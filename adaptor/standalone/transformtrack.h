#pragma once
// A node's transform as a function of time: keys of position, rotation and
// scale at ticks, linear between keys for position and scale, spherical for
// rotation, held before the first and after the last. Without keys the
// static pose holds at all times.

#include <vector>

#include "adaptor/standalone/ticks.h"
#include "util/matrix.h"

namespace vuk::rgw::adaptor::standalone {

struct TransformKey {
  Tick tick = 0;
  util::Vector3<double> position;
  util::Quat<double> rotation;
  util::Vector3<double> scale{1, 1, 1};

  // Shear, if any, is lost: a pose is position, rotation and scale.
  static TransformKey FromMatrix(Tick tick, const util::Matrix<double>& matrix);
  util::Matrix<double> ToMatrix() const;
  bool operator==(const TransformKey& o) const {
    return tick == o.tick && position == o.position && rotation == o.rotation && scale == o.scale;
  }
};

class TransformTrack {
 public:
  util::Matrix<double> Evaluate(Tick tick) const;
  // Sets the key at that tick, replacing one there. Appending after the last
  // key is the per-frame case and costs amortised constant time.
  void SetKey(const TransformKey& key);
  // Without keys: the static pose. With keys: the key at that tick, made
  // when missing, so that a write always lands where it was asked.
  void SetPose(Tick tick, const util::Matrix<double>& matrix);
  // Removes every key at or after the tick.
  void RemoveFrom(Tick tick);
  // Removes the key at exactly that tick, if any.
  void RemoveKey(Tick tick);
  // Null when there is no key at exactly that tick.
  const TransformKey* FindKey(Tick tick) const;

  const std::vector<TransformKey>& Keys() const { return keys_; }
  void SetKeys(std::vector<TransformKey> keys) { keys_ = std::move(keys); }
  const TransformKey& StaticPose() const { return static_; }
  void SetStaticPose(const TransformKey& pose) { static_ = pose; }
  void Reserve(std::size_t keys) { keys_.reserve(keys); }

 private:
  std::vector<TransformKey>::const_iterator LowerBound(Tick tick) const;

  std::vector<TransformKey> keys_;
  TransformKey static_;
};

}  // namespace vuk::rgw::adaptor::standalone
