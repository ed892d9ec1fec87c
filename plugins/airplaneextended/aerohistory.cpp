#include "plugins/airplaneextended/aerohistory.h"

#include <cmath>
#include <limits>
#include <type_traits>

#include "plugins/airplaneextended/airplaneextendedobject.h"
#include "sdk/cvariablemodundo.h"

namespace vuk::rgw::addon {

namespace {

// In the order of the autonomous memories.
constexpr const char* kAutonomousKeys[kAutoMemoryCount] = {"andYawInputFilterMem", "andPitchInputFilterMem",
                                                         "andRollInputFilterMem", "andForwBackwInputFilterMem"};

template <typename History>
util::Bytes Block(const History& history) {
  util::Bytes block(history.GetSaveSize());
  history.Save(block.data(), static_cast<std::uint32_t>(block.size()));
  return block;
}

template <typename History>
bool LoadBlock(const util::DataChunk* entry, History& history) {
  return entry && history.Load(entry->data.data(), entry->data.size());
}

}  // namespace

template <typename Self, typename Visit, typename VisitChannels>
void AeroHistory::ForEach(Self& self, Visit visit, VisitChannels visitChannels) {
  using namespace aeroversion;
  visitChannels("inpStore", kChannelMemories, self.values_);
  visitChannels("inpFilterMemStore", kChannelMemories, self.stages_);
  visit("ancAeroCamfnGetAccelerationMem", kNewerKeys, self.momentum_);
  visit("ancAeroCampcInput_AFTERBURNER", kNewerKeys, self.afterBurner_);
  visit("ancAileronLeftNodegetAngle", kNewerKeys, self.aileronLeft_);
  visit("ancAileronRightNodegetAngle", kNewerKeys, self.aileronRight_);
  visit("ancElevatorNodegetAngle", kNewerKeys, self.elevator_);
  visit("ancRudderNodegetAngle", kNewerKeys, self.rudder_);
  visit("ancPropellerNodegetAngle", kNewerKeys, self.propeller_);
  visit("ancFollowCamNodeqTransFilterMem", kNewerKeys, self.followStage_);
  visit("anqTransCamAbsFilterMem", kNewerKeys, self.pose_);
  visit("s_HORIZONTAL_REGULATOR", kNewerKeys, self.regulator_);
  visit("cAeroCam_vRandFiltered_avar", kNewerKeys, self.shake_);
  visit("andAutoSteeringValueMem", kFollow, self.yawSteering_);
  visit("andElevatorVectMem", kFollow, self.pitchSteering_);
  visit("andFollowAccMem", kFollow, self.followValue_);
  visit("andRollDiffMem", kFollow, self.rollSteering_);
  for (std::size_t i = 0; i < kAutoMemoryCount; ++i) visit(kAutonomousKeys[i], kFollow, self.autonomous_[i]);
  visit("previousRotation", kSessionOnly, self.previousRotation_);
  visit("regulatorActive", kSessionOnly, self.regulatorActive_);
  visit("turbulenceCounter", kSessionOnly, self.turbulenceCounter_);
  visit("windRandom", kSessionOnly, self.windRandom_);
  visit("shakeRandom", kSessionOnly, self.shakeRandom_);
  visit("turbulenceMemory", kSessionOnly, self.turbulenceMemory_);
  visit("shakeMemory", kSessionOnly, self.shakeMemory_);
  visit("propellerSpin", kSessionOnly, self.propellerSpin_);
}

void AeroHistory::Record(double t, const CAeroCamObject& plane) {
  const CAeroCam& core = plane.cAeroCam;
  for (std::size_t i = 0; i < kAeroChannelCount; ++i) {
    values_[i].Set(t, core.channels[i].output);
    stages_[i].Set(t, core.channels[i].stage);
  }
  rudder_.Set(t, plane.surfaces[0].angle);
  elevator_.Set(t, plane.surfaces[1].angle);
  aileronLeft_.Set(t, plane.surfaces[2].angle);
  aileronRight_.Set(t, plane.surfaces[3].angle);
  propeller_.Set(t, plane.dPropellerAngle);
  pose_.Set(t, {core.Pose().position, core.Pose().rotation});
  momentum_.Set(t, core.vMomentum);
  afterBurner_.Set(t, core.bAfterBurnerOn);
  regulator_.Set(t, core.qRegulatorMem);
  shake_.Set(t, core.vShakeFiltered);
  followStage_.Set(t, plane.followCam.stage);
  previousRotation_.Set(t, core.PreviousRotation());
  regulatorActive_.Set(t, core.bRegulatorActive);
  turbulenceCounter_.Set(t, static_cast<int>(core.iTurbulenceCounter));
  windRandom_.Set(t, static_cast<int>(core.iWindRandom));
  shakeRandom_.Set(t, static_cast<int>(core.iShakeRandom));
  turbulenceMemory_.Set(t, core.dTurbulenceMem);
  shakeMemory_.Set(t, core.dShakeMem);
  propellerSpin_.Set(t, plane.dPropellerSpin);
  if (!core.params.bAutonomousMode) return;
  for (std::size_t i = 0; i < kAutoMemoryCount; ++i) autonomous_[i].Set(t, core.autonomousMem[i]);
  yawSteering_.Set(t, core.dYawMem);
  pitchSteering_.Set(t, core.dPitchMem);
  rollSteering_.Set(t, core.dRollMem);
  followValue_.Set(t, core.dFollowMem);
}

void AeroHistory::Restore(double t, CAeroCamObject& plane) const {
  CAeroCam& core = plane.cAeroCam;
  for (std::size_t i = 0; i < kAeroChannelCount; ++i) {
    core.channels[i].output = values_[i].Get(t);
    core.channels[i].stage = stages_[i].Get(t);
  }
  plane.surfaces[0].angle = rudder_.Get(t);
  plane.surfaces[1].angle = elevator_.Get(t);
  plane.surfaces[2].angle = aileronLeft_.Get(t);
  plane.surfaces[3].angle = aileronRight_.Get(t);
  plane.dPropellerAngle = propeller_.Get(t);
  core.vMomentum = momentum_.Get(t);
  core.bAfterBurnerOn = afterBurner_.Get(t);
  core.qRegulatorMem = regulator_.Get(t);
  core.vShakeFiltered = shake_.Get(t);
  plane.followCam.stage = followStage_.Get(t);
  for (std::size_t i = 0; i < kAutoMemoryCount; ++i) core.autonomousMem[i] = autonomous_[i].Get(t);
  core.dYawMem = yawSteering_.Get(t);
  core.dPitchMem = pitchSteering_.Get(t);
  core.dRollMem = rollSteering_.Get(t);
  core.dFollowMem = followValue_.Get(t);
  // After a reload these are gone: the run starts them as a new one would.
  if (previousRotation_.records.empty()) return;
  core.ResumeAfter(previousRotation_.Get(t));
  core.bRegulatorActive = regulatorActive_.Get(t);
  core.iTurbulenceCounter = static_cast<std::uint32_t>(turbulenceCounter_.Get(t));
  core.iWindRandom = static_cast<std::uint32_t>(windRandom_.Get(t));
  core.iShakeRandom = static_cast<std::uint32_t>(shakeRandom_.Get(t));
  core.dTurbulenceMem = turbulenceMemory_.Get(t);
  core.dShakeMem = shakeMemory_.Get(t);
  plane.dPropellerSpin = propellerSpin_.Get(t);
}

PoseRecord AeroHistory::PoseAt(double t) const {
  const util::QTransform<double> pose = pose_.Get(t);
  return {pose.translation, pose.rotation};
}

void AeroHistory::CutAfter(double t, CInterface& undo) {
  const double after = std::nextafter(t, std::numeric_limits<double>::infinity());
  const auto cut = [after, &undo](auto& history) {
    undo.PushUndo(new CVariableModUndo<std::decay_t<decltype(history)>>(&history));
    history.RemoveFrom(after);
  };
  ForEach(
      *this, [&cut](const char*, std::int32_t, auto& history) { cut(history); },
      [&cut](const char*, std::int32_t, Channels& channels) {
        for (auto& history : channels) cut(history);
      });
}

void AeroHistory::SaveTo(util::DataChunk& chunk) const {
  ForEach(
      *this,
      [&chunk](const char* key, std::int32_t since, const auto& history) {
        if (since != aeroversion::kSessionOnly) chunk.AddChild(key, Block(history));
      },
      [&chunk](const char* key, std::int32_t, const Channels& channels) {
        util::DataChunk& group = chunk.AddChild(key);
        for (std::size_t i = 0; i < kAeroChannelCount; ++i) {
          group.AddChild(kAeroChannelTexts[i].name, Block(channels[i]));
        }
      });
}

bool AeroHistory::LoadFrom(const util::DataChunk& chunk, std::int32_t version) {
  AeroHistory loaded;
  bool complete = true;
  ForEach(
      loaded,
      [&](const char* key, std::int32_t since, auto& history) {
        if (version >= since) complete = LoadBlock(chunk.FindChild(key), history) && complete;
      },
      [&](const char* key, std::int32_t since, Channels& channels) {
        if (version < since) return;
        const util::DataChunk* group = chunk.FindChild(key);
        for (std::size_t i = 0; i < kAeroChannelCount; ++i) {
          complete = group && LoadBlock(group->FindChild(kAeroChannelTexts[i].name), channels[i]) && complete;
        }
      });
  if (!complete) return false;
  *this = std::move(loaded);
  return true;
}

}  // namespace vuk::rgw::addon
