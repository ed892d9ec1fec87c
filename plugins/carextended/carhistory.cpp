#include "plugins/carextended/carhistory.h"

#include <cmath>
#include <limits>
#include <type_traits>

#include "plugins/carextended/carextendedobject.h"
#include "sdk/cvariablemodundo.h"

namespace vuk::rgw::addon {

namespace {

using util::QTransform;
using util::Vector3;

// A translation and a rotation kept apart in the car, saved as one pose.
template <typename Translation, typename Rotation>
struct PoseRef {
  Translation& translation;
  Rotation& rotation;
};
template <typename Translation, typename Rotation>
PoseRef<Translation, Rotation> Pose(Translation& translation, Rotation& rotation) {
  return {translation, rotation};
}

// Three numbers of the car saved as one vector.
template <typename Number>
struct TripleRef {
  Number& x;
  Number& y;
  Number& z;
};
template <typename Number>
TripleRef<Number> Triple(Number& x, Number& y, Number& z) {
  return {x, y, z};
}

template <typename Value, typename Live>
Value ToValue(const Live& live) {
  return static_cast<Value>(live);
}
template <typename Value, typename T, typename R>
Value ToValue(const PoseRef<T, R>& live) {
  return {live.translation, live.rotation};
}
template <typename Value, typename N>
Value ToValue(const TripleRef<N>& live) {
  return {live.x, live.y, live.z};
}

template <typename Live, typename Value>
void Assign(Live& live, const Value& value) {
  live = static_cast<Live>(value);
}
template <typename T, typename R, typename Value>
void Assign(PoseRef<T, R>&& live, const Value& value) {
  live.translation = value.translation;
  live.rotation = value.rotation;
}
template <typename N, typename Value>
void Assign(TripleRef<N>&& live, const Value& value) {
  live.x = value.x;
  live.y = value.y;
  live.z = value.z;
}

template <typename History>
using ValueOf = typename std::decay_t<History>::Value;

}  // namespace

// The order is the saved order: the keys older scenes hold first, the
// wheels' where the fifth wheel key stood, then the rest.
template <typename Self, typename Visit>
void CarHistory::ForEachHistory(Self& self, Visit& visit) {
  visit("ancCarCamcCarBodyfRelYPos", self.relYPos_, [](auto& c) -> auto& { return c.cCarCam.cCarBody.fRelYPos; });
  visit("ancCarCamcCarBodyfRelXAng", self.relXAng_, [](auto& c) -> auto& { return c.cCarCam.cCarBody.fRelXAng; });
  visit("ancCarCamcCarBodyfRelZAng", self.relZAng_, [](auto& c) -> auto& { return c.cCarCam.cCarBody.fRelZAng; });
  visit("ancCarCamcCarBodyfRelYVel", self.relYVel_, [](auto& c) -> auto& { return c.cCarCam.cCarBody.fRelYVel; });
  visit("ancCarCamcCarBodyfRelXAngVel", self.relXAngVel_,
        [](auto& c) -> auto& { return c.cCarCam.cCarBody.fRelXAngVel; });
  visit("ancCarCamcCarBodyfRelZAngVel", self.relZAngVel_,
        [](auto& c) -> auto& { return c.cCarCam.cCarBody.fRelZAngVel; });
  visit("anFollowCamFilterMem", self.followCam_, [](auto& c) -> auto& { return c.followCam.outer; });
  visit("ancCarCampcInput_STEERING_WHEEL", self.steering_,
        [](auto& c) -> auto& { return c.cCarCam.inputs[pcInput_STEERING_WHEEL].value; });
  visit("ancCarCampcInput_GAS_PEDAL", self.gas_,
        [](auto& c) -> auto& { return c.cCarCam.inputs[pcInput_GAS_PEDAL].value; });
  for (std::size_t i = 0; i < kWheels; ++i) visit.Wheel(i, self.wheels_[i]);
  visit("ancCarCamqTransCarAbsIncr", self.transIncr_,
        [](auto& c) { return Pose(c.cCarCam.vTransCarAbsIncr, c.cCarCam.qRotCarAbsIncr); });
  visit("ancCarCampcInput_SKID_BRAKE", self.skidBrake_,
        [](auto& c) -> auto& { return c.cCarCam.inputs[pcInput_SKID_BRAKE].value; });
  visit("ancCarCambSkidBreakingOn", self.skidBreakingOn_, [](auto& c) -> auto& { return c.cCarCam.bSkidBreakingOn; });
  visit("ancCarCampcInput_SKIDDING", self.skidding_,
        [](auto& c) -> auto& { return c.cCarCam.inputs[pcInput_SKIDDING].value; });
  visit("ancCarCambSkiddingOn", self.skiddingOn_, [](auto& c) -> auto& { return c.cCarCam.bSkiddingOn; });
  // The gas value a brake started from, which the next frames brake towards 0.
  visit("ancCarCamfSkidWantedGasPedalValue", self.absReference_,
        [](auto& c) -> auto& { return c.cCarCam.dAbsReference; });
  visit("anQGravityFilterMem", self.gravityFilter_, [](auto& c) -> auto& { return c.cCarCam.qAttitudeMem; });
  visit("anbCarInTheAir", self.inTheAir_, [](auto& c) -> auto& { return c.cCarCam.bCarInTheAir; });
  visit("ancCarCampcInput_BOOSTER", self.booster_,
        [](auto& c) -> auto& { return c.cCarCam.inputs[pcInput_BOOSTER].value; });
  visit("ancCarCampcInput_BURNOUT", self.burnout_,
        [](auto& c) -> auto& { return c.cCarCam.inputs[pcInput_BURNOUT].value; });
  visit("anvAcceleration", self.acceleration_, [](auto& c) -> auto& { return c.cCarCam.vLocalAcceleration; });
  visit("andFollowAccMem", self.followAcc_, [](auto& c) -> auto& { return c.cCarCam.dFollowAccMem; });
  visit("andAutoSteeringValueMem", self.autoSteering_, [](auto& c) -> auto& { return c.cCarCam.dAutoSteeringValueMem; });
  visit("ancCarCamfCarLocalYawIncr", self.localYawIncr_, [](auto& c) -> auto& { return c.cCarCam.fCarLocalYawIncr; });
  visit("ancCarCambSkidBreakingOnDisableFeatures", self.skidDisableFeatures_,
        [](auto& c) -> auto& { return c.cCarCam.bSkidBreakingOnDisableFeatures; });
  visit("ancCarCampcInput_GAS_PEDAL_inp_prev", self.gasRawFormer_,
        [](auto& c) -> auto& { return c.cCarCam.dGasRawFormer; });
  visit("ancCarCambIsReverseVelAbsBraking", self.reverseAbsBraking_,
        [](auto& c) -> auto& { return c.cCarCam.bIsReverseVelAbsBraking; });
  visit("ancCarCamvSkidBrakePosIncr", self.skidBrakePosIncr_,
        [](auto& c) -> auto& { return c.cCarCam.vSkidBrakePosIncr; });
  visit("ancCarCamdSkidBrakeLocalYawIncr", self.skidBrakeYawIncr_,
        [](auto& c) -> auto& { return c.cCarCam.dSkidBrakeLocalYawIncr; });
  visit("ancCarCambSkidFirstTime", self.skidFirstTime_, [](auto& c) -> auto& { return c.cCarCam.bSkidFirstTime; });
  visit("ancCarCamrandomValue_gravelShake", self.randomGravel_,
        [](auto& c) -> auto& { return c.cCarCam.randomValue_gravelShake; });
  visit("ancCarCamrandomValue_burnout", self.randomBurnout_,
        [](auto& c) -> auto& { return c.cCarCam.randomValue_burnout; });
  visit("ancCarCamrandomValue_steeringNoise", self.randomSteering_,
        [](auto& c) -> auto& { return c.cCarCam.randomValue_steeringNoise; });

  visit("ancCarCamqBasePose", self.basePose_, [](auto& c) { return Pose(c.cCarCam.position, c.cCarCam.rotation); });
  visit("anFollowCamFilterMemInner", self.followCamInner_, [](auto& c) -> auto& { return c.followCam.inner; });
  visit("ancCarCamcCarBodyAcc", self.bodyAcceleration_, [](auto& c) {
    return Triple(c.cCarCam.cCarBody.fRelYAcc, c.cCarCam.cCarBody.fRelXAngAcc, c.cCarCam.cCarBody.fRelZAngAcc);
  });
  visit("ancCarCamvSkidBrakeSpeed", self.skidBrakeSpeed_, [](auto& c) -> auto& { return c.cCarCam.vSkidBrakeSpeed; });
  visit("ancCarCamdVelocityFollowFactor", self.velocityFollow_,
        [](auto& c) -> auto& { return c.cCarCam.dVelocityFollowFactor; });
  visit("ancCarCamdSteeringRawFormer", self.steeringRawFormer_,
        [](auto& c) -> auto& { return c.cCarCam.dSteeringRawFormer; });
  visit("ancCarCamdAbsFormerGasRaw", self.absFormerGasRaw_,
        [](auto& c) -> auto& { return c.cCarCam.dAbsFormerGasRaw; });
  visit("ancCarCamdSkidBrakeYawSpeed", self.skidBrakeYawSpeed_,
        [](auto& c) -> auto& { return c.cCarCam.dSkidBrakeYawSpeed; });
  visit("ancCarCamdSkidBrakeSigns", self.skidBrakeSigns_, [](auto& c) -> auto& { return c.cCarCam.dSkidBrakeSigns; });
  visit("ancCarCamdBurnoutSavedSteeringResponse", self.burnoutSavedResponse_,
        [](auto& c) -> auto& { return c.cCarCam.dBurnoutSavedSteeringResponse; });
  visit("ancCarCamdBurnoutTorque", self.burnoutTorque_, [](auto& c) -> auto& { return c.cCarCam.dBurnoutTorque; });
  visit("ancCarCampcInput_ABS_BRAKE", self.abs_,
        [](auto& c) -> auto& { return c.cCarCam.inputs[pcInput_ABS_BRAKE].value; });
  visit("ancCarCampcInput_GRAVEL_SHAKE", self.gravel_,
        [](auto& c) -> auto& { return c.cCarCam.inputs[pcInput_GRAVEL_SHAKE].value; });
  visit("ancCarCampcInput_EXTERNAL_FORCE", self.externalForce_,
        [](auto& c) -> auto& { return c.cCarCam.inputs[pcInput_EXTERNAL_FORCE].value; });
  visit("ancCarCambJustLanded", self.justLanded_, [](auto& c) -> auto& { return c.cCarCam.bJustLanded; });
  visit("ancCarCambAbsIdle", self.absIdle_, [](auto& c) -> auto& { return c.cCarCam.bAbsIdle; });
  visit("ancCarCambBoosterOn", self.boosterOn_, [](auto& c) -> auto& { return c.cCarCam.bBoosterOn; });
  visit("ancCarCambSuspensionBoosted", self.suspensionBoosted_,
        [](auto& c) -> auto& { return c.cCarCam.bSuspensionBoosted; });
  visit("ancCarCambBurnoutOn", self.burnoutOn_, [](auto& c) -> auto& { return c.cCarCam.bBurnoutOn; });
}

template <typename Wheel, typename Visit>
void CarHistory::ForEachWheelHistory(Wheel& wheel, std::size_t i, Visit& visit) {
  visit("ancCarCampcWheelfSuspZeroDiff", wheel.suspZeroDiff,
        [i](auto& c) -> auto& { return c.cCarCam.wheels[i].ground.compression; });
  visit("ancCarCampcWheelfSuspZeroDiff_prev", wheel.suspZeroDiffPrev,
        [i](auto& c) -> auto& { return c.cCarCam.wheels[i].compressionFormer; });
  visit("ancCarCampcWheelpfTotalPitch", wheel.totalPitch,
        [i](auto& c) -> auto& { return c.cCarCam.wheels[i].totalPitch; });
  visit("ancWheelNodeCurrDelta", wheel.currDelta, [i](auto& c) -> auto& { return c.wheels[i].heightAboveGround; });
  visit("ancWheelNodeCurrDeltaW", wheel.currDeltaW, [i](auto& c) -> auto& { return c.wheels[i].position; });
  visit("andWheelGroundNormalDiff", wheel.groundNormal, [i](auto& c) -> auto& { return c.wheels[i].normal; });
  visit("ancCarCampcWheelfYaw", wheel.yaw, [i](auto& c) -> auto& { return c.cCarCam.wheels[i].yaw; });
  visit("ancCarCampcWheelfGravelMemory", wheel.gravelMemory,
        [i](auto& c) -> auto& { return c.cCarCam.wheels[i].gravelMemory; });
  visit("ancCarCampcWheelvHitPoint", wheel.hitPoint,
        [i](auto& c) -> auto& { return c.cCarCam.wheels[i].ground.hitPoint; });
  visit("ancCarCampcWheelbInTheAir", wheel.inTheAir,
        [i](auto& c) -> auto& { return c.cCarCam.wheels[i].ground.inTheAir; });
}

namespace {

// Visits the wheels' histories in line with the others.
template <typename Each>
struct FlatVisit {
  template <typename History, typename Live>
  void operator()(const char* key, History& history, Live live) {
    each(key, history, live);
  }
  template <typename History>
  void Wheel(std::size_t i, History& wheel) {
    CarHistory::ForEachWheelHistory(wheel, i, *this);
  }

  Each each;
};
template <typename Each>
FlatVisit<Each> Flat(Each each) {
  return {each};
}

// The n-th child of that name, or null.
const util::DataChunk* NthChild(const util::DataChunk& chunk, const std::string& name, std::size_t n) {
  for (const util::DataChunk& child : chunk.children) {
    if (child.name == name && n-- == 0) return &child;
  }
  return nullptr;
}

struct SaveVisit {
  template <typename History, typename Live>
  void operator()(const char* key, const History& history, Live) {
    util::Bytes block(history.GetSaveSize());
    history.Save(block.data(), static_cast<std::uint32_t>(block.size()));
    chunk->AddChild(key, std::move(block));
  }
  template <typename History>
  void Wheel(std::size_t i, const History& wheel) {
    SaveVisit store{&chunk->AddChild(CarHistory::kWheelStoreKey)};
    CarHistory::ForEachWheelHistory(wheel, i, store);
  }

  util::DataChunk* chunk;
};

struct LoadVisit {
  template <typename History, typename Live>
  void operator()(const char* key, History& history, Live) {
    const util::DataChunk* entry = chunk ? chunk->FindChild(key) : nullptr;
    if (!entry || !history.Load(entry->data.data(), entry->data.size())) complete = false;
  }
  template <typename History>
  void Wheel(std::size_t i, History& wheel) {
    LoadVisit store{NthChild(*chunk, CarHistory::kWheelStoreKey, i), true};
    CarHistory::ForEachWheelHistory(wheel, i, store);
    complete = complete && store.complete;
  }

  const util::DataChunk* chunk;
  bool complete;
};

}  // namespace

void CarHistory::Record(double t, const CCarCamObject& car) {
  auto visit = Flat([t, &car](const char*, auto& history, auto live) {
    history.Set(t, ToValue<ValueOf<decltype(history)>>(live(car)));
  });
  ForEachHistory(*this, visit);
}

void CarHistory::Restore(double t, CCarCamObject& car) const {
  auto visit = Flat([t, &car](const char*, const auto& history, auto live) { Assign(live(car), history.Get(t)); });
  ForEachHistory(*this, visit);
}

void CarHistory::CutAfter(double t, CInterface* undo) {
  const double after = std::nextafter(t, std::numeric_limits<double>::infinity());
  auto visit = Flat([after, undo](const char*, auto& history, auto) {
    if (undo) undo->PushUndo(new CVariableModUndo<std::decay_t<decltype(history)>>(&history));
    history.RemoveFrom(after);
  });
  ForEachHistory(*this, visit);
}

bool CarHistory::IsEmpty() const { return relYPos_.records.empty(); }

void CarHistory::SaveTo(util::DataChunk& chunk) const {
  SaveVisit visit{&chunk};
  ForEachHistory(*this, visit);
}

bool CarHistory::LoadFrom(const util::DataChunk& chunk) {
  CarHistory loaded;
  LoadVisit visit{&chunk, true};
  ForEachHistory(loaded, visit);
  if (!visit.complete) return false;
  *this = std::move(loaded);
  return true;
}

}  // namespace vuk::rgw::addon
