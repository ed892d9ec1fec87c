#pragma once
// The 1DPositioner: one input channel drives a dummy node, the relative cage,
// along its local Z axis in real time. Objects linked below the cage follow.

#include <cstdint>
#include <string>

#include "plugins/common/actuatorchannel.h"
#include "plugins/common/posering.h"
#include "sdk/ccamera.h"
#include "sdk/cinterface.h"
#include "util/mesh.h"

namespace vuk::rgw::addon {

class C1DPositionerObject : public CCamera, public CInterface::Callback {
 public:
  // The moving dummy. It has no update of its own: the pose ring feeds it.
  class CRelativeCageNode {
   public:
    // A wire box with an arrow along minus Z, the way a positive input moves it.
    class CMesh_Cage : public util::CMesh {
     public:
      CMesh_Cage();
    };

    explicit CRelativeCageNode(C1DPositionerObject* object) : owner(object) {}
    void Create();
    // The node's local pose at the time; keeps its scale.
    PoseRecord Read(double time);
    // Writes the ring's current record, with the kept scale, as the node's
    // local matrix.
    void Update(double time);

    C1DPositionerObject* owner;
    util::Vector3<double> scale{1, 1, 1};
    std::string name = "RelativeCage";
    CNode* handle = nullptr;
  };

  explicit C1DPositionerObject(const CreateParam& param);

  void Start(double time) override;
  void Stop(double time) override;
  void Step(double time) override;
  void TimeChanged(double time) override;
  std::int32_t BuildConfig() override;
  std::int32_t Create() override;
  std::int32_t Load() override;
  std::int32_t Save() override;
  void Changed(std::string label) override;

  static constexpr char kChunkName[] = "1DPositionerDataChunk";
  static constexpr std::int32_t kVersion = 100;
  // Flags at 0 to 3, then the response factor, maximum and change limit.
  static constexpr std::size_t kSaveStructSize = 32;

  ActuatorChannel channel{"Position", 0.3, 1.0};
  CRelativeCageNode cageNode{this};
  PoseRing ring;
  ActuatorHistory history;
  bool hideHelpersDuringRecording = false;
  bool hideHelpers = false;
};

}  // namespace vuk::rgw::addon
