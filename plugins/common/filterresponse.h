#pragma once
// The response filter every tool uses for a "Response Factor": a first-order
// lag that moves the fraction k of the remaining error per 0.04 s, run in as
// many 0.04 s slices as the frame holds, so that the result hardly depends on
// the frame rate. The memory lives in the owner, where histories can keep it.
//
// Every form takes the memory, the wanted value, the factor k and, last, the
// frame length dt in seconds. A step of -0.04 s or less has no slice and
// leaves the memory where it is, unless a pass-through rule applies.

#include "util/quat.h"
#include "util/vector3.h"

namespace vuk::rgw::addon {

// The reference interval of the whole system (25 Hz).
constexpr double kResponseInterval = 0.04;

// Moves the memory towards the wanted value. A factor of exactly 1 or 0 sets
// it at once: 0 means unfiltered, not frozen, and profiles rely on that.
void filterResponse(double& memory, double wanted, double k, double dt);
void filterResponseVector(util::Vector3<double>& memory, const util::Vector3<double>& wanted, double k, double dt);
// Quaternions are filtered along the shorter arc, component by component, and
// the memory is normalised after the step; q and -q mean the same rotation.
void filterResponseQuat(util::Quat<double>& memory, const util::Quat<double>& wanted, double k, double dt);

// As above, but a slice that would overshoot (s x k >= 1) sets the value at
// once instead of ringing about it. A factor of 0 sets it as well.
void filterResponseClamped(double& memory, double wanted, double k, double dt);
void filterResponseVectorClamped(util::Vector3<double>& memory, const util::Vector3<double>& wanted, double k,
                                 double dt);
void filterResponseQuatClamped(util::Quat<double>& memory, const util::Quat<double>& wanted, double k, double dt);

// Rate-limited forms: the wanted value is first brought to within
// maxRate x dt of the memory (for a quaternion, by the angle between the two),
// so the memory never moves faster than maxRate per second. A rate of 0 means
// no limit. When the factor is 0 or a slice would overshoot, the memory takes
// the wanted value if there is no limit and keeps its own otherwise.
void filterResponseLimited(double& memory, double wanted, double k, double maxRate, double dt);
void filterResponseQuatLimited(util::Quat<double>& memory, const util::Quat<double>& wanted, double k,
                               double maxRate, double dt);

}  // namespace vuk::rgw::addon
