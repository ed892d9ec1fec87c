#include "plugins/common/filterresponse.h"

#include <algorithm>
#include <cmath>

namespace vuk::rgw::addon {

namespace {

using Vector3 = util::Vector3<double>;
using Quat = util::Quat<double>;

// One step of the linear filter: the fraction f of the way to the wanted value.
double Towards(double memory, double wanted, double f) { return memory + (wanted - memory) * f; }
Vector3 Towards(const Vector3& memory, const Vector3& wanted, double f) { return memory + (wanted - memory) * f; }
Quat Towards(const Quat& m, const Quat& wanted, double f) {
  return {Towards(m.x, wanted.x, f), Towards(m.y, wanted.y, f), Towards(m.z, wanted.z, f), Towards(m.w, wanted.w, f)};
}

// n slices of s x 0.04 s each: n = 1 + trunc(dt / 0.04), s = (dt / 0.04) / n.
// A step of -0.04 s or less has no slice; s is then 0 so that no rule on s x k
// divides by n.
struct Slices {
  explicit Slices(double dt) : count(1 + std::trunc(dt / kResponseInterval)) {
    share = count < 1 ? 0.0 : (dt / kResponseInterval) / count;
  }
  bool Overshoots(double k) const { return share * k >= 1.0; }
  template <typename Value>
  void Run(Value& memory, const Value& wanted, double k) const {
    for (double i = 0; i < count; ++i) memory = Towards(memory, wanted, share * k);
  }
  double count;
  double share;
};

// Which factors set the memory at once instead of filtering.
enum class PassThrough { kFactorOneOrZero, kOvershootOrZero };

bool PassesThrough(PassThrough rule, const Slices& slices, double k) {
  if (k == 0.0) return true;
  return rule == PassThrough::kFactorOneOrZero ? k == 1.0 : slices.Overshoots(k);
}

Quat Positive(const Quat& q) { return q.w < 0 ? -q : q; }

// Both operands on the hemisphere of w >= 0, then the memory on the side of
// the wanted value, so the component-wise lag follows the shorter arc.
void AlignForShortestArc(Quat& memory, Quat& wanted) {
  memory = Positive(memory);
  wanted = Positive(wanted);
  const Quat difference{memory.x - wanted.x, memory.y - wanted.y, memory.z - wanted.z, memory.w - wanted.w};
  const Quat sum{memory.x + wanted.x, memory.y + wanted.y, memory.z + wanted.z, memory.w + wanted.w};
  if (difference.Dot(difference) > sum.Dot(sum)) memory = -memory;
}

void RunQuat(const Slices& slices, Quat& memory, Quat wanted, double k) {
  AlignForShortestArc(memory, wanted);
  slices.Run(memory, wanted, k);
  memory.Normalize();
}

template <typename Value>
void Filter(PassThrough rule, Value& memory, const Value& wanted, double k, double dt) {
  const Slices slices(dt);
  if (PassesThrough(rule, slices, k)) {
    memory = wanted;
  } else {
    slices.Run(memory, wanted, k);
  }
}

void FilterQuat(PassThrough rule, Quat& memory, const Quat& wanted, double k, double dt) {
  const Slices slices(dt);
  if (PassesThrough(rule, slices, k)) {
    memory = wanted;
  } else {
    RunQuat(slices, memory, wanted, k);
  }
}

// The limited forms' pass-through: only without a rate limit does the memory
// take the wanted value; with one it stays, as a jump would break the limit.
// Answers whether the step is done.
template <typename Value>
bool LimitedPassThrough(const Slices& slices, Value& memory, const Value& wanted, double k, double maxRate) {
  if (k != 0.0 && !slices.Overshoots(k)) return false;
  if (maxRate == 0.0) memory = wanted;
  return true;
}

}  // namespace

void filterResponse(double& memory, double wanted, double k, double dt) {
  Filter(PassThrough::kFactorOneOrZero, memory, wanted, k, dt);
}

void filterResponseVector(Vector3& memory, const Vector3& wanted, double k, double dt) {
  Filter(PassThrough::kFactorOneOrZero, memory, wanted, k, dt);
}

void filterResponseQuat(Quat& memory, const Quat& wanted, double k, double dt) {
  FilterQuat(PassThrough::kFactorOneOrZero, memory, wanted, k, dt);
}

void filterResponseClamped(double& memory, double wanted, double k, double dt) {
  Filter(PassThrough::kOvershootOrZero, memory, wanted, k, dt);
}

void filterResponseVectorClamped(Vector3& memory, const Vector3& wanted, double k, double dt) {
  Filter(PassThrough::kOvershootOrZero, memory, wanted, k, dt);
}

void filterResponseQuatClamped(Quat& memory, const Quat& wanted, double k, double dt) {
  FilterQuat(PassThrough::kOvershootOrZero, memory, wanted, k, dt);
}

void filterResponseLimited(double& memory, double wanted, double k, double maxRate, double dt) {
  const Slices slices(dt);
  if (LimitedPassThrough(slices, memory, wanted, k, maxRate)) return;
  if (maxRate != 0.0) {
    const double reach = std::abs(maxRate * dt);
    wanted = memory + std::clamp(wanted - memory, -reach, reach);
  }
  slices.Run(memory, wanted, k);
}

void filterResponseQuatLimited(Quat& memory, const Quat& wanted, double k, double maxRate, double dt) {
  const Slices slices(dt);
  if (LimitedPassThrough(slices, memory, wanted, k, maxRate)) return;
  Quat reachable = wanted;
  if (maxRate != 0.0) {
    const double reach = std::abs(maxRate * dt);
    const double angle = Quat::AngleBetween(memory, wanted);
    if (angle > reach) reachable = Quat::Slerp(memory, wanted, reach / angle);
  }
  RunQuat(slices, memory, reachable, k);
}

}  // namespace vuk::rgw::addon
