#include "plugins/airplaneextended/aerocam.h"

#include <algorithm>
#include <cmath>

#include "plugins/common/filterresponse.h"
#include "plugins/common/toolrandom.h"

namespace vuk::rgw::addon {

namespace {

constexpr double kTwoPi = 6.283185307179586;
constexpr char kSpeedHelp[] = "Maximum times the scale will be the maximum speed.";
constexpr char kRotationHelp[] = "Maximum times the scale will be the maximum rotation speed.";
constexpr char kMultiplyHelp[] =
    "Maximum and response factor decides how much and how fast, respectively, the velocity will be multiplied.";

// The autonomous memory a channel's value takes, or kAutoMemoryCount for none.
std::size_t AutonomousMemoryOf(std::size_t channel) {
  switch (channel) {
    case kRudder:
      return kAutoRudder;
    case kElevator:
      return kAutoElevator;
    case kAileron:
      return kAutoAileron;
    case kForward:
      return kAutoForward;
    default:
      return kAutoMemoryCount;
  }
}

// Uniform in [-0.5, 0.5), from the tool's own generator whose state is given.
double CenteredNoise(std::uint32_t& state) {
  ToolRandom random(state);
  const double value = random.Next() / (ToolRandom::kMax + 1.0) - 0.5;
  state = random.State();
  return value;
}

// An amplitude follows its channel while the channel is fed, and fades out
// after it is let go.
void FadeOrFollow(InputChannel& channel, double& amplitude, double fadeOut, double h) {
  if (channel.raw == 0) {
    channel.output = 0;
    filterResponse(amplitude, 0, fadeOut, h);
  } else {
    amplitude = channel.output;
  }
}

}  // namespace

const std::array<AeroChannelText, kAeroChannelCount> kAeroChannelTexts = {{
    {"Forw/Backw Speed", kSpeedHelp},
    {"Right/Left Speed", ""},
    {"Up/Down Speed", kSpeedHelp},
    {"Rudder (Yaw Right/Left)", kRotationHelp},
    {"Elevator (Pitch Up/Down)", kMultiplyHelp},
    {"Aileron (Roll Right/Left)", kRotationHelp},
    {"Horizontal Regulator",
     "The horizontal regulator returns the craft into a horizontal orientation when activated without rotational "
     "inputs."},
    {"Turbulence Amplitude",
     "Turbulence is an up-and-down shaking used mainly when a craft is subjected to very high speeds and starts to "
     "tremble, eg during a dive."},
    {"Shaker Amplitude", "Shakes the craft randomly to give a more realistic look. May also be used for explosions."},
    {"Brake All", "Brake the airplane in mid air."},
    {"AfterBurner", kMultiplyHelp},
}};

CAeroCam::CAeroCam()
    : channels{{{kAeroChannelTexts[kForward].name, 0.03, 25},
                {kAeroChannelTexts[kSideways].name, 0.03, 4},
                {kAeroChannelTexts[kUpDown].name, 0.03, 4},
                {kAeroChannelTexts[kRudder].name, 0.1, 1},
                {kAeroChannelTexts[kElevator].name, 0.1, 1.5},
                {kAeroChannelTexts[kAileron].name, 0.1, 2},
                {kAeroChannelTexts[kRegulator].name, 0.06, 1},
                {kAeroChannelTexts[kTurbulence].name, 0.05, 3},
                {kAeroChannelTexts[kShaker].name, 1, 15},
                {kAeroChannelTexts[kBrakeAll].name, 0.02, 1},
                {kAeroChannelTexts[kAfterBurner].name, 0.02, 3}}} {}

void CAeroCam::Reset(const PoseRecord& now, const PoseRecord& before, const PoseRecord& earlier, double speed) {
  ring.Fill(earlier);
  ring.Next() = before;
  ring.Advance();
  ring.Next() = now;
  ring.Advance();
  qPreviousRotation = before.rotation;
  vVelocity = {};
  vAngularVelocity = {};
  bFirstFrame = true;
  if (speed != 0) channels[kForward].output = channels[kForward].stage = speed;
}

void CAeroCam::Fly(double dt) {
  InputStage(dt);
  const double rounds = std::max(1.0, std::trunc(dt / kSubStep));
  const double h = dt / rounds;
  for (double i = 0; i < rounds; ++i) SubStep(h);
}

void CAeroCam::InputStage(double dt) {
  for (std::size_t i = 0; i < kAeroChannelCount; ++i) {
    InputChannel& c = channels[i];
    const std::size_t memory = AutonomousMemoryOf(i);
    if (memory != kAutoMemoryCount) {
      // Steering has set the value; the pilot's input corrects it.
      double& correction = autonomousMem[memory];
      if (params.bAutonomousMode) {
        filterResponse(correction, c.raw * c.maximum, c.responseFactor, dt);
        c.output += correction;
        c.raw = c.maximum != 0 ? c.output / c.maximum : 0.0;
      } else {
        correction = 0;
      }
    }
    if (i == kShaker) c.raw += params.dShakeOffset;
    if (i == kTurbulence) c.raw += params.dTurbulenceOffset;
    if (i == kSideways || i == kUpDown) c.raw += CenteredNoise(iWindRandom) * params.dWindStrength;
    filterResponse(c.stage, c.raw * c.maximum, c.responseFactor, dt);
    filterResponse(c.output, c.stage, c.responseFactor, dt);
  }
}

CAeroCam::Vector CAeroCam::FromLocal(const Vector& local) const {
  return Row(0) * local.x + Row(1) * local.y + Row(2) * local.z;
}

void CAeroCam::SubStep(double h) {
  vPosition = ring.Current().position;
  qRotation = ring.Current().rotation;
  mFrame = Matrix::FromQuat(qRotation);
  mFrame.SetTranslation(vPosition);
  vVelocity = {};
  vAngularVelocity = {};
  auto value = [this](std::size_t i) { return channels[i].output; };
  vLocalVelocityCommand = {value(kSideways), value(kUpDown), -value(kForward)};
  vLocalRotationCommand = {value(kElevator), -value(kRudder), -value(kAileron)};
  Forces(h);
  Regulate(h);
  Shake(h);
  InputChannel& brake = channels[kBrakeAll];
  if (brake.raw != 0) {
    // Again at every sub-step: the commands die away within a frame.
    for (std::size_t i : {kSideways, kForward, kUpDown}) channels[i].output /= brake.output + 1;
  } else {
    brake.output = 0;
  }
  const InputChannel& burner = channels[kAfterBurner];
  bAfterBurnerOn = burner.raw != 0;
  if (bAfterBurnerOn) {
    InputChannel& forward = channels[kForward];
    filterResponse(forward.output, burner.maximum * forward.maximum, burner.responseFactor, h);
  }
  qPreviousRotation = qRotation;
  qRotation = (qRotation * Quat::FromRotationVector(vAngularVelocity * h)).Normalize();
  vPosition += vVelocity * (h * params.dRelativeScale);
  ring.Next() = {vPosition, qRotation};
  ring.Advance();
  bFirstFrame = false;
}

void CAeroCam::Forces(double h) {
  vVelocity = FromLocal(vLocalVelocityCommand);
  const double g = GravityStep();
  if (channels[kBrakeAll].raw == 0) vMomentum.y -= g;
  const double speed = vVelocity.Length();
  const double maximum = channels[kForward].maximum;
  Vector thrust;
  Vector lift;
  if (params.bRelativeVelocityMode) {
    // The airplane stands still along the first frame's forward: thrust
    // only holds it level in that frame.
    Vector inFirst = mRelativeFrame.Inverse().TransformVector(Row(2) * (-1.1 * g));
    inFirst.y = 0;
    thrust = mRelativeFrame.TransformVector(inFirst);
    lift = Row(1) * g;
  } else {
    thrust = Row(2) * (speed / maximum * g * -1.1);
    lift = Row(1) * (speed / maximum * g);
  }
  vMomentum += thrust;
  if (lift.Length() > g) lift = lift.Normalized() * g;
  vMomentum += lift;
  const Vector local{vMomentum.Dot(Row(0)) * (1 - 0.3 * h), vMomentum.Dot(Row(1)) * (1 - h),
                     vMomentum.Dot(Row(2)) * (1 - 0.3 * h)};
  vMomentum = FromLocal(local);
  vVelocity += vMomentum;
  // Up to the commanded speed, never down to it.
  const double command = vLocalVelocityCommand.z;
  const double v = vVelocity.Length() * (command < 0 ? -1 : 1);
  if (v > command) {
    double reached = v;
    filterResponse(reached, command, 0.6, h);
    if (v != 0) vVelocity = vVelocity * (reached / v);
  }
  vAngularVelocity = FromLocal(vLocalRotationCommand);
}

void CAeroCam::Regulate(double h) {
  const InputChannel& regulator = channels[kRegulator];
  // Realistic control works the channel the other way round: it regulates
  // while the channel is held.
  const bool held = regulator.raw != 0;
  if (held != params.bRealisticControl || bFirstFrame) {
    if (bRegulatorActive) {
      // The pilot takes over turning as fast as the regulator left it.
      const Vector rate = (qPreviousRotation.Conjugate() * qRotation).ToRotationVector() / h;
      const Vector local{rate.Dot(Row(0)), rate.Dot(Row(1)), rate.Dot(Row(2))};
      const std::pair<std::size_t, double> seeds[] = {{kElevator, local.x}, {kRudder, -local.y}, {kAileron, -local.z}};
      for (const auto& [i, seed] : seeds) channels[i].output = channels[i].stage = seed;
    }
    bRegulatorActive = false;
    if (!bFirstFrame) qRegulatorMem = qRotation;
    return;
  }
  bRegulatorActive = true;
  const double norm = std::sqrt(qRotation.y * qRotation.y + qRotation.w * qRotation.w);
  const Quat yawOnly = norm < 1e-12 ? Quat() : Quat(0, qRotation.y / norm, 0, qRotation.w / norm);
  filterResponseQuatLimited(qRegulatorMem, yawOnly, regulator.responseFactor, regulator.maximum, h);
  filterResponseQuatClamped(qRotation, qRegulatorMem, regulator.responseFactor, h);
}

void CAeroCam::Shake(double h) {
  ++iTurbulenceCounter;
  FadeOrFollow(channels[kTurbulence], dTurbulenceMem, params.dTurbulenceFadeOut, h);
  vAngularVelocity +=
      Row(0) * (std::sin(params.dTurbulenceFrequency * kTwoPi * iTurbulenceCounter * h) * dTurbulenceMem);
  FadeOrFollow(channels[kShaker], dShakeMem, params.dShakerFadeOut, h);
  const double first = CenteredNoise(iShakeRandom);
  const double second = CenteredNoise(iShakeRandom);
  const double third = CenteredNoise(iShakeRandom);
  filterResponseVectorClamped(vShakeFiltered, {third, second, first}, params.dShakerRoughness, h);
  vAngularVelocity += FromLocal(vShakeFiltered * dShakeMem);
}

void CAeroCam::Steer(const Matrix& body, const Matrix& target, double dt) {
  const double scale = params.dRelativeScale;
  const Vector x = body.Axis(0), y = body.Axis(1), z = body.Axis(2);
  // In the body's frame, from a point two lengths ahead of the nose.
  const Vector aim = target.GetTranslation() - (body.GetTranslation() + z * (-2 * scale));
  const Vector seen{aim.Dot(x), aim.Dot(y), aim.Dot(z)};
  const Vector flat{seen.x, 0, seen.z};
  const Vector u = flat.Normalized();
  const double radius = params.dIgnoreSphereRadius * scale;
  double distance = flat.Length();
  if (distance < radius) distance = 0;

  InputChannel& forward = channels[kForward];
  const double follow = std::min(std::max(0.0, (distance * params.dFollowStrength - radius) / scale), forward.maximum);
  filterResponse(dFollowMem, follow, params.dFollowResponse, dt);
  forward.output = dFollowMem;

  InputChannel& rudder = channels[kRudder];
  double yaw = rudder.maximum * u.x;
  // A target behind turns the airplane round as hard as it may.
  if (u.z > 0) yaw = u.x < 0 ? -rudder.maximum : rudder.maximum;
  filterResponse(dYawMem, yaw, params.dSteeringResponse, dt);
  if (!params.bRealisticControl) rudder.output = params.dYawStrength * dYawMem;

  InputChannel& aileron = channels[kAileron];
  if (params.bRollWithTarget) {
    const Vector up = target.Axis(1);
    const Vector local = Vector{up.Dot(x), up.Dot(y), up.Dot(z)}.Normalized();
    const double bank = std::acos(std::min(1.0, std::max(-1.0, local.y))) * (local.x < 0 ? -1 : 1);
    filterResponse(dRollMem, bank * aileron.maximum, params.dSteeringResponse, dt);
    aileron.output = params.dRollStrength * dRollMem;
  } else {
    aileron.output = params.dRollStrength * dYawMem;
  }

  InputChannel& elevator = channels[kElevator];
  filterResponse(dPitchMem, seen.Normalized().y * elevator.maximum, params.dSteeringResponse, dt);
  elevator.output = params.dPitchStrength * dPitchMem;
}

AeroSteering CAeroCam::Steering() const {
  const double rollMem = params.bRollWithTarget ? dRollMem : dYawMem;
  return {dFollowMem, dYawMem, dPitchMem, rollMem};
}

}  // namespace vuk::rgw::addon
