#pragma once
// Three pose records in a ring: a step reads the current record, writes the
// next and moves on, so the two before stay for estimating velocities.

#include <array>
#include <cstddef>

#include "util/matrix.h"
#include "util/quat.h"
#include "util/vector3.h"

namespace vuk::rgw::addon {

struct PoseRecord {
  util::Vector3<double> position;
  util::Quat<double> rotation;
};

class PoseRing {
 public:
  const PoseRecord& Current() const { return records_[current_]; }
  PoseRecord& Next() { return records_[(current_ + 1) % records_.size()]; }
  void Advance() { current_ = (current_ + 1) % records_.size(); }
  // Every record set to the pose: a start with no motion before it.
  void Fill(const PoseRecord& pose) { records_.fill(pose); }
  util::Matrix<double> CurrentMatrix() const {
    return util::Matrix<double>::FromPose({Current().position, Current().rotation});
  }

 private:
  std::array<PoseRecord, 3> records_{};
  std::size_t current_ = 0;
};

}  // namespace vuk::rgw::addon
