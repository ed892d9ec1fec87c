#pragma once
// The HumanizerCam: a camera linked below an animated camera that adds the
// small irregular turns of a hand-held shot to its move. Only the rotation
// is shaken; the camera stays where its base pose puts it.

#include <array>
#include <cstdint>
#include <string>

#include "plugins/common/saveddata.h"
#include "plugins/common/toolnode.h"
#include "plugins/common/toolplugin.h"
#include "plugins/humanizercam/humanizercamsim.h"
#include "sdk/cinterface.h"
#include "util/avar.h"
#include "util/datachunk.h"

namespace vuk::rgw::addon {

// The shake's state frame by frame, so that a run from any frame of a take
// goes on as the take went, bit for bit.
class HumanizerHistory {
 public:
  // Keeps the state after the frame at t; a record at exactly t is replaced.
  void Record(double t, const HumanizerCamSim& sim);
  // Forgets the frames after t, to the undo of `tool`, and puts the shake
  // back as it stood after the frame at t; at rest, the generator seeded
  // with `seed`, when no frame is left.
  void RewindTo(double t, double dt, std::uint32_t seed, HumanizerCamSim& sim, CInterface& tool);
  void SaveTo(util::DataChunk& chunk) const;
  // False, and the history as it was, when an entry is missing or damaged or
  // the entries don't agree frame by frame.
  bool LoadFrom(const util::DataChunk& chunk);

 private:
  // Calls visit(key, history) for the four histories of a const or non-const self.
  template <typename Self, typename Visit>
  static void ForEach(Self& self, Visit visit);

  util::AVar_Nearest<util::Vector3<double>> stage_, output_;
  util::AVar_Nearest<double> amplitude_;
  util::AVar_Latest<int> randomState_;
};

class CHumanizerCamObject : public CCamera, public CInterface::Callback {
 public:
  class CHumanizerCamNode : public ToolNode {
   public:
    CHumanizerCamNode(CCamera* object, const PoseRing& poses) : ToolNode(object, "HumanizerCam"), ring(poses) {}
    void Create() override;
    // The base pose turned by the ring's current shake, as the local matrix.
    void Update(double time) override;

    // The pose the shake is added to: the camera's local matrix when the
    // first run started.
    util::Matrix<double> mInit;

   private:
    const PoseRing& ring;
  };

  static const ToolInfo kInfo;
  // Version 104: the settings, the base pose, then the shake's histories.
  static const SavedData kSavedData;
  // Where a take from rest starts the generator.
  static constexpr std::uint32_t kSeed = 1;

  explicit CHumanizerCamObject(const CreateParam& param) : CCamera(param) {}

  void Start(double time) override;
  void Step(double time) override;
  void TimeChanged(double time) override;
  std::int32_t BuildConfig() override;
  std::int32_t Create() override;
  std::int32_t Load() override;
  std::int32_t Save() override;
  void Changed(std::string label) override;

  HumanizerCamSim sim;
  HumanizerHistory history;
  CHumanizerCamNode cameraNode{this, sim.ring};
  // The three visibility bytes as scenes store them: hide helpers during
  // recording, hide helpers, hide camera. The page shows no switch for them.
  std::array<bool, 3> hideFlags{true, false, false};
  // Set until a run takes the camera's pose as the base.
  bool bFirstTime = true;
};

using CHumanizerCamPlugin = CToolPlugin<CHumanizerCamObject>;

}  // namespace vuk::rgw::addon
