#pragma once
// The 1DPositioner: one input channel drives a dummy node, the relative cage,
// along its local Z axis in real time. Objects linked below the cage follow.

#include <cstdint>
#include <string>

#include "plugins/common/actuatorchannel.h"
#include "plugins/common/hideswitch.h"
#include "plugins/common/posering.h"
#include "plugins/common/saveddata.h"
#include "plugins/common/toolnode.h"
#include "plugins/common/toolplugin.h"
#include "sdk/cinterface.h"

namespace vuk::rgw::addon {

class C1DPositionerObject : public CCamera, public CInterface::Callback {
 public:
  // The moving dummy. It has no motion of its own: the pose ring feeds it.
  class CRelativeCageNode : public ToolNode {
   public:
    // A wire box with an arrow along minus Z, the way a positive input moves it.
    class CMesh_Cage : public util::CMesh {
     public:
      CMesh_Cage();
    };

    CRelativeCageNode(CCamera* object, const PoseRing& poses) : ToolNode(object, "RelativeCage"), ring(poses) {}
    void Create() override;
    // The node's local pose at the time; keeps its scale.
    PoseRecord Read(double time);
    // Writes the ring's current record, with the kept scale, as the node's
    // local matrix.
    void Update(double time) override;

    util::Vector3<double> scale{1, 1, 1};

   private:
    const PoseRing& ring;
  };

  static const ToolInfo kInfo;
  // Version 100: the settings, then the channel's histories.
  static const SavedData kSavedData;

  explicit C1DPositionerObject(const CreateParam& param) : CCamera(param) {}

  void Start(double time) override;
  void Stop(double time) override;
  void Step(double time) override;
  void TimeChanged(double time) override;
  std::int32_t BuildConfig() override;
  std::int32_t Create() override;
  std::int32_t Load() override;
  std::int32_t Save() override;
  void Changed(std::string label) override;

  ActuatorChannel channel{"Position", 0.3, 1.0};
  PoseRing ring;
  CRelativeCageNode cageNode{this, ring};
  ActuatorHistory history;
  HelperSwitches helpers;
};

using C1DPositionerPlugin = CToolPlugin<C1DPositionerObject>;

}  // namespace vuk::rgw::addon
