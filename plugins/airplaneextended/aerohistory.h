#pragma once
// The airplane's memory: its state frame by frame, so that a run started at
// a later time takes up the state that time had. Each history is saved
// under a fixed key; a key is read only from saved data of the version that
// brought it.

#include <array>
#include <climits>
#include <cstdint>

#include "plugins/airplaneextended/aerocam.h"
#include "sdk/cinterface.h"
#include "util/avar.h"
#include "util/datachunk.h"

namespace vuk::rgw::addon {

class CAeroCamObject;

// The saved versions that brought keys.
namespace aeroversion {
constexpr std::int32_t kFirst = 100;
constexpr std::int32_t kChannelMemories = 105;
constexpr std::int32_t kNewerKeys = 114;
constexpr std::int32_t kPropellerAndRelativeMode = 8103;
constexpr std::int32_t kFollow = 8105;
// Kept in the session only: a run resumed after a reload starts these afresh.
constexpr std::int32_t kSessionOnly = INT32_MAX;
}  // namespace aeroversion

class AeroHistory {
 public:
  // Keeps the airplane's state after the frame at t; a record at t is replaced.
  void Record(double t, const CAeroCamObject& plane);
  // Puts the airplane's memories back as they stood after the frame at t.
  void Restore(double t, CAeroCamObject& plane) const;
  // The body's pose after the frame at t.
  PoseRecord PoseAt(double t) const;
  // Forgets every frame after t; the forgotten frames go to the host's undo
  // first, each history in a record of its own.
  void CutAfter(double t, CInterface& undo);
  bool IsEmpty() const { return pose_.records.empty(); }

  void SaveTo(util::DataChunk& chunk) const;
  // Reads the histories a chunk of that version holds; the others are empty.
  // False when one of them is missing or damaged; the history is then left
  // as it was.
  bool LoadFrom(const util::DataChunk& chunk, std::int32_t version);

 private:
  // Calls visit(key, version that brought it, history) for every single
  // history, and visitChannels(key, version, array) for the channels' two.
  template <typename Self, typename Visit, typename VisitChannels>
  static void ForEach(Self& self, Visit visit, VisitChannels visitChannels);

  using Channels = std::array<util::AVar_Linear<double>, kAeroChannelCount>;
  Channels values_, stages_;
  util::AVar_Nearest<util::Vector3<double>> momentum_;
  util::AVar_Latest<bool> afterBurner_;
  util::AVar_Linear<double> aileronLeft_, aileronRight_, elevator_, rudder_, propeller_;
  util::AVar_Nearest<util::QTransform<double>> followStage_, pose_;
  util::AVar_Nearest<util::Quat<double>> regulator_;
  util::AVar_Nearest<util::Vector3<double>> shake_;
  util::AVar_Linear<double> yawSteering_, pitchSteering_, followValue_, rollSteering_;
  std::array<util::AVar_Linear<double>, kAutoMemoryCount> autonomous_;
  // What else a frame hands on to the next, so that a resumed run goes on
  // exactly as the whole run did.
  util::AVar_Nearest<util::Quat<double>> previousRotation_;
  util::AVar_Latest<bool> regulatorActive_;
  util::AVar_Latest<int> turbulenceCounter_, windRandom_, shakeRandom_;
  util::AVar_Nearest<double> turbulenceMemory_, shakeMemory_, propellerSpin_;
};

}  // namespace vuk::rgw::addon
