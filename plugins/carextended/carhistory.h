#pragma once
// The 4-Wheeler's memory: each piece of the car's state, frame by frame, so
// that a run started at a later time takes up the state that time had.
// Saved under fixed keys in a fixed order; the wheels' histories once per
// wheel in a "wheelstore" chunk. After the keys older scenes know come the
// rest of the core's state, so that a resumed run goes on bit for bit.

#include <array>
#include <cstddef>

#include "sdk/cinterface.h"
#include "util/avar.h"
#include "util/datachunk.h"

namespace vuk::rgw::addon {

class CCarCamObject;

struct CarWheelHistory {
  util::AVar_Linear<double> suspZeroDiff, suspZeroDiffPrev, totalPitch, currDelta;
  util::AVar_Nearest<util::Vector3<double>> currDeltaW, groundNormal;
  // Beyond the saved keys of older scenes.
  util::AVar_Linear<double> yaw, gravelMemory;
  util::AVar_Nearest<util::Vector3<double>> hitPoint;
  util::AVar_Latest<bool> inTheAir;
};

class CarHistory {
 public:
  static constexpr std::size_t kWheels = 4;
  static constexpr char kWheelStoreKey[] = "wheelstore";

  // Keeps the car's state after the frame at t; a record at t is replaced.
  void Record(double t, const CCarCamObject& car);
  // Puts the car back as it stood after the frame at t.
  void Restore(double t, CCarCamObject& car) const;
  // Forgets every frame after t; with `undo`, the forgotten frames go to the
  // host's undo first, each history in a record of its own.
  void CutAfter(double t, CInterface* undo);
  bool IsEmpty() const;
  // The filtered gas, the car's speed in L per second, at t.
  double GasValueAt(double t) const { return gas_.Get(t); }

  void SaveTo(util::DataChunk& chunk) const;
  // False when an entry is missing or damaged; the history is then left as
  // it was.
  bool LoadFrom(const util::DataChunk& chunk);

 // Calls visit(key, history, live) for every history in saved order, where
  // live(car) answers the car's value the history keeps; and
  // visit.Wheel(index, wheel history) where the wheels' histories stand.
  // Self is a const or non-const CarHistory.
  template <typename Self, typename Visit>
  static void ForEachHistory(Self& self, Visit& visit);
  // The same over one wheel's histories.
  template <typename Wheel, typename Visit>
  static void ForEachWheelHistory(Wheel& wheel, std::size_t index, Visit& visit);

 private:
  util::AVar_Linear<double> relYPos_, relXAng_, relZAng_, relYVel_, relXAngVel_, relZAngVel_;
  util::AVar_Nearest<util::QTransform<double>> followCam_;
  util::AVar_Linear<double> steering_, gas_;
  std::array<CarWheelHistory, kWheels> wheels_;
  util::AVar_Nearest<util::QTransform<double>> transIncr_;
  util::AVar_Linear<double> skidBrake_;
  util::AVar_Latest<bool> skidBreakingOn_;
  util::AVar_Linear<double> skidding_;
  util::AVar_Latest<bool> skiddingOn_;
  util::AVar_Linear<double> absReference_;
  util::AVar_Nearest<util::Quat<double>> gravityFilter_;
  util::AVar_Latest<bool> inTheAir_;
  util::AVar_Linear<double> booster_, burnout_;
  util::AVar_Nearest<util::Vector3<double>> acceleration_;
  util::AVar_Linear<double> followAcc_, autoSteering_, localYawIncr_;
  util::AVar_Latest<bool> skidDisableFeatures_;
  util::AVar_Linear<double> gasRawFormer_;
  util::AVar_Latest<bool> reverseAbsBraking_;
  util::AVar_Nearest<util::Vector3<double>> skidBrakePosIncr_;
  util::AVar_Linear<double> skidBrakeYawIncr_;
  util::AVar_Latest<bool> skidFirstTime_;
  util::AVar_Latest<int> randomGravel_, randomBurnout_, randomSteering_;
  // The rest of the core's state.
  util::AVar_Nearest<util::QTransform<double>> basePose_, followCamInner_;
  util::AVar_Nearest<util::Vector3<double>> bodyAcceleration_, skidBrakeSpeed_;
  util::AVar_Linear<double> velocityFollow_, steeringRawFormer_, absFormerGasRaw_, skidBrakeYawSpeed_,
      skidBrakeSigns_, burnoutSavedResponse_, burnoutTorque_, abs_, gravel_, externalForce_;
  util::AVar_Latest<bool> justLanded_, absIdle_, boosterOn_, suspensionBoosted_, burnoutOn_;
};

}  // namespace vuk::rgw::addon
