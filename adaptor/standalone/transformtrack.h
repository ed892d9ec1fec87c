#pragma once
// A node's transform as a function of time: keys of position, rotation and
// scale at ticks, linear between keys for position and scale, spherical for
// rotation, held before the first and after the last. Without keys the
// static pose holds at all times. Beside the keys stands the live pose: the
// last one set or evaluated, with its tick. A pose set outside a recording
// moves the node there without a key; past the last key it stays until the
// track is evaluated before that key again.

#include <optional>
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
  // The live pose at its own tick, and past the last key while it lies past
  // it too; otherwise the keys' pose, which becomes the live one.
  util::Matrix<double> Evaluate(Tick tick) const;
  // Sets the key at that tick, replacing one there, and makes it the live
  // pose. Appending after the last key is the per-frame case and costs
  // amortised constant time.
  void SetKey(const TransformKey& key);
  // Without keys: the static pose. With keys: the live pose at that tick;
  // no key is written.
  void SetPose(Tick tick, const util::Matrix<double>& matrix);
  // Removes every key at or after the tick.
  void RemoveFrom(Tick tick);
  // Removes the key at exactly that tick, if any.
  void RemoveKey(Tick tick);
  // Null when there is no key at exactly that tick.
  const TransformKey* FindKey(Tick tick) const;

  const std::vector<TransformKey>& Keys() const { return keys_; }
  void SetKeys(std::vector<TransformKey> keys) {
    keys_ = std::move(keys);
    live_.reset();
  }
  const TransformKey& StaticPose() const { return static_; }
  void SetStaticPose(const TransformKey& pose) { static_ = pose; }
  void Reserve(std::size_t keys) { keys_.reserve(keys); }

 private:
  std::vector<TransformKey>::const_iterator LowerBound(Tick tick) const;
  // The keys' pose at the tick.
  TransformKey Interpolate(Tick tick) const;

  std::vector<TransformKey> keys_;
  TransformKey static_;
  // An evaluation cache as much as a state: none after the keys changed.
  mutable std::optional<TransformKey> live_;
};

}  // namespace vuk::rgw::adaptor::standalone
