#pragma once
// What the two follow cameras share: an AttachedCam that the user links to
// whatever is to be followed, and a FollowCam that trails it by a law of its
// tool's own. Each frame the follower starts from where it stood one frame
// before, moves towards the attached camera, keeps its scale, and remembers
// its filter state (seven doubles) at that time, so that a run started at a
// later frame takes up the state that frame had.
//
// Saved data of both: one chunk whose own data is the decimal number of the
// build that wrote it; that number tells which entries the chunk holds.

#include <cstdint>
#include <string>
#include <vector>

#include "plugins/common/toolnode.h"
#include "sdk/cinterface.h"
#include "util/avar.h"
#include "util/datachunk.h"
#include "util/qtransform.h"

namespace vuk::rgw::addon {

// The follower's filter state after each frame.
using FollowMemory = util::AVar_Nearest<util::QTransform<double>>;

// The saved chunk of a follow camera, named after its tool.
class BuildChunk {
 public:
  // The build whose entries this program writes.
  static constexpr std::int32_t kBuild = 8102;

  explicit BuildChunk(std::string chunkName) : name_(std::move(chunkName)) {}
  // A chunk that says it was written by this build; the tool adds its entries.
  util::DataChunk Begin() const;
  // The instance's saved bytes as this chunk, and the build that wrote them;
  // false when they are missing, damaged, of another chunk or without a number.
  bool Read(CInterface* iface, util::DataChunk& chunk, std::int32_t& build) const;

 private:
  std::string name_;
};

// Entries of a chunk bound to the variables they keep: one list saves and
// loads them, so the two can't drift apart. A load is all or nothing.
class ChunkFields {
 public:
  ChunkFields& Double(const char* key, double& value);
  ChunkFields& Flag(const char* key, bool& value);
  ChunkFields& Memory(const char* key, FollowMemory& value);

  void SaveTo(util::DataChunk& chunk) const;
  // False, and no variable changed, when an entry is missing or damaged.
  bool LoadFrom(const util::DataChunk& chunk) const;

 private:
  enum class Kind { kDouble, kFlag, kMemory };
  struct Field {
    const char* key;
    Kind kind;
    void* value;
  };
  std::vector<Field> fields_;
};

class FollowCamObject : public CCamera, public CInterface::Callback {
 public:
  static constexpr char kReInitialize[] = "Re-Initialize";
  // The two factors both tools have on their pages.
  static constexpr char kTranslationFactor[] = "Translation Response Factor";
  static constexpr char kTranslationFactorTooltip[] =
      "This factor determines how fast the camera should react to changes in position";
  static constexpr char kRotationFactor[] = "Rotation Response Factor";
  static constexpr char kRotationFactorTooltip[] =
      "This factor determines how fast the camera should react to changes in rotation";

  // The camera the user links to the animated object or camera.
  class CAttachedCamNode : public ToolNode {
   public:
    explicit CAttachedCamNode(CCamera* object) : ToolNode(object, "AttachedCam") {}
    void Create() override;
  };

  // The base of the tools' follower nodes.
  class FollowerNode : public ToolNode {
   public:
    // `formerName` is the node's name in older scenes.
    FollowerNode(FollowCamObject* object, std::string formerName)
        : ToolNode(object, "FollowCam", {std::move(formerName)}), tool(*object) {}
    // Made from the attached camera, below it.
    void Create() override;
    void Update(double time) override;
    // Takes up the filter state the memory holds at the time; on a first run
    // the tool's own start state instead.
    virtual void Reset(double time, bool firstTime) = 0;
    // The filter state as the memory keeps it.
    virtual util::QTransform<double> State() const = 0;
    // The lens as the scene holds it at time 0, current and base alike.
    void ReadLens();

    double targetDistance = 10, baseTargetDistance = 10;
    double fieldOfView = 45, baseFieldOfView = 45;

   protected:
    // Moves the pose one frame of dt towards the target.
    virtual void Follow(util::QTransform<double>& pose, const util::QTransform<double>& target, double dt) = 0;

    FollowCamObject& tool;
  };

  explicit FollowCamObject(const CreateParam& param) : CCamera(param) {}

  void Start(double time) override;
  void Step(double time) override;
  void TimeChanged(double time) override;
  std::int32_t Create() override;
  // "Re-Initialize": the next run starts from the follower's present pose.
  void Changed(std::string label) override;

  virtual FollowerNode& Follower() = 0;

  FollowMemory memory;
  CAttachedCamNode attachedNode{this};
  bool bFirstTime = true;

 protected:
  // Finds both nodes, the follower under its former name as well, and reads
  // the follower's lens; false when either node is missing.
  bool FindNodes();
};

}  // namespace vuk::rgw::addon
