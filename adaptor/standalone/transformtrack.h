#pragma once
// A node's transform as a function of time: keys of position, rotation and
// scale at ticks, linear between keys for position and scale, spherical for
// rotation, with the static and live pose of a key track (see KeyTrack).

#include "adaptor/standalone/keytrack.h"
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
  static TransformKey Between(const TransformKey& a, const TransformKey& b, double f);
  bool operator==(const TransformKey& o) const {
    return tick == o.tick && position == o.position && rotation == o.rotation && scale == o.scale;
  }
};

class TransformTrack : public KeyTrack<TransformKey> {
 public:
  util::Matrix<double> Evaluate(Tick tick) const { return At(tick).ToMatrix(); }
  // Without keys: the static pose. With keys: the live pose at that tick;
  // no key is written.
  void SetPose(Tick tick, const util::Matrix<double>& matrix) { SetLive(TransformKey::FromMatrix(tick, matrix)); }
  const TransformKey& StaticPose() const { return StaticKey(); }
  void SetStaticPose(const TransformKey& pose) { SetStaticKey(pose); }
};

}  // namespace vuk::rgw::adaptor::standalone
