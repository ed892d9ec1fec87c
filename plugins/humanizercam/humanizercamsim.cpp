#include "plugins/humanizercam/humanizercamsim.h"

#include <cmath>

#include "plugins/common/filterresponse.h"
#include "util/matrix.h"

namespace vuk::rgw::addon {

using util::Quat;
using util::Vector3;

Quat<double> HumanizerCamSim::ShakeRotation(const Vector3<double>& angularVelocity, double dt) {
  return Quat<double>::FromRotationVector(angularVelocity * dt).Normalized();
}

Vector3<double> HumanizerCamSim::DrawImpulse() {
  const util::Matrix<double> present = ring.CurrentMatrix();
  // Pitch turns about the camera's X, yaw about its Y, roll about its Z.
  const double weights[3] = {Value(kPitchShake), Value(kYawShake), Value(kRollShake)};
  const double threshold = Value(kShakerThreshold) / 100;
  Vector3<double> impulse;
  for (int row = 0; row < 3; ++row) {
    const double s = ((random.Next() % 10000) - 5000) / 5000.0;
    // A high power keeps most draws under the threshold: impulses come
    // seldom and unevenly, as a hand's do.
    const double m = std::pow(std::fabs(s), Value(kIrregularity));
    if (m < threshold) continue;
    const double a = (s < 0 ? -1.0 : 1.0) * shakeSum * m;
    impulse += present.Axis(row) * (a * weights[row]);
  }
  return impulse;
}

void HumanizerCamSim::Step(double dt) {
  filterResponse(channel.output, channel.raw * channel.maximum, channel.responseFactor, dt);
  shakeSum = channel.output * 0.01 + Value(kShakeMultiplier) * 0.01;
  const Vector3<double> impulse = DrawImpulse();
  filterResponseVector(stage, impulse, Value(kDampingFactor), dt);
  filterResponseVector(output, stage, Value(kDampingFactor), dt);
  PoseRecord& next = ring.Next();
  next.position = {};
  next.rotation = ShakeRotation(output, dt);
  ring.Advance();
}

void HumanizerCamSim::Resume(const Vector3<double>& stageMemory, const Vector3<double>& shakeOutput,
                             double channelOutput, std::uint32_t randomState, double dt) {
  stage = stageMemory;
  output = shakeOutput;
  channel.output = channelOutput;
  channel.raw = 0;
  random.Seed(randomState);
  ring.Fill({{}, ShakeRotation(output, dt)});
}

}  // namespace vuk::rgw::addon
