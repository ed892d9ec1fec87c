#pragma once
// The helicopter's memory: the six channels' values and filter stages, the
// regulator's wanted height and heading, its integrated heading and the
// follow camera's first stage, frame by frame, so that a run started at a
// later time takes up the state that time had.

#include <array>

#include "plugins/common/vehicle/helicopterplant.h"
#include "sdk/cinterface.h"
#include "util/avar.h"
#include "util/datachunk.h"
#include "util/qtransform.h"

namespace vuk::rgw::addon {

class HelicopterHistory {
 public:
  // Keeps the state after the frame at t; a record at exactly t is replaced.
  void Record(double t, const HelicopterPlant& plant, const util::QTransform<double>& followCam);
  // What a restart at t takes over, by the histories' sampling rule.
  PlantInputRecord InputRecordAt(double t) const;
  util::QTransform<double> FollowCamAt(double t) const { return followCam_.Get(t); }
  // Forgets every frame after t; the forgotten frames go to the undo of
  // `tool` first, so that undoing the run brings them back.
  void CutAfter(double t, CInterface& tool);
  bool IsEmpty() const { return yaw_.records.empty(); }

  void SaveTo(util::DataChunk& chunk) const;
  // False when an entry is missing, damaged or out of step with the others;
  // the history is then left as it was.
  bool LoadFrom(const util::DataChunk& chunk);

 private:
  using Channels = std::array<util::AVar_Linear<double>, HelicopterPlant::kChannelCount>;
  // Calls visit(key, history, channel) for every history of a const or
  // non-const self, in saved order; `channel` is the index within a set of
  // channel histories saved under one key, and -1 for a single history.
  template <typename Self, typename Visit>
  static void ForEach(Self& self, Visit visit);

  Channels values_, memories_;
  util::AVar_Linear<double> heightReference_, yawReference_, yaw_;
  util::AVar_Nearest<util::QTransform<double>> followCam_;
};

}  // namespace vuk::rgw::addon
