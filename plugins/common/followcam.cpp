#include "plugins/common/followcam.h"

#include <charconv>
#include <string>

#include "plugins/common/hideswitch.h"
#include "sdk/cvariablemodundo.h"
#include "util/bytes.h"

namespace vuk::rgw::addon {

util::DataChunk BuildChunk::Begin() const {
  const std::string build = std::to_string(kBuild);
  return util::DataChunk(name_, util::Bytes(build.begin(), build.end()));
}

bool BuildChunk::Read(CInterface* iface, util::DataChunk& chunk, std::int32_t& build) const {
  std::int32_t length = 0;
  const std::uint8_t* bytes = iface->GetSaveData(&length);
  if (!bytes || length <= 0 || !chunk.Read(bytes, static_cast<std::size_t>(length)) || chunk.name != name_) {
    return false;
  }
  const auto* text = reinterpret_cast<const char*>(chunk.data.data());
  return std::from_chars(text, text + chunk.data.size(), build).ec == std::errc();
}

ChunkFields& ChunkFields::Double(const char* key, double& value) {
  fields_.push_back({key, Kind::kDouble, &value});
  return *this;
}

ChunkFields& ChunkFields::Flag(const char* key, bool& value) {
  fields_.push_back({key, Kind::kFlag, &value});
  return *this;
}

ChunkFields& ChunkFields::Memory(const char* key, FollowMemory& value) {
  fields_.push_back({key, Kind::kMemory, &value});
  return *this;
}

void ChunkFields::SaveTo(util::DataChunk& chunk) const {
  for (const Field& field : fields_) {
    util::Bytes bytes;
    switch (field.kind) {
      case Kind::kDouble:
        util::ByteWriter(bytes).Put(*static_cast<const double*>(field.value));
        break;
      case Kind::kFlag:
        util::ByteWriter(bytes).Put(static_cast<std::uint8_t>(*static_cast<const bool*>(field.value)));
        break;
      case Kind::kMemory: {
        const auto& memory = *static_cast<const FollowMemory*>(field.value);
        bytes.resize(memory.GetSaveSize());
        memory.Save(bytes.data(), static_cast<std::uint32_t>(bytes.size()));
        break;
      }
    }
    chunk.AddChild(field.key, std::move(bytes));
  }
}

bool ChunkFields::LoadFrom(const util::DataChunk& chunk) const {
  // Everything is read aside first; only a complete chunk is taken.
  std::vector<double> numbers;
  std::vector<FollowMemory> memories;
  for (const Field& field : fields_) {
    const util::DataChunk* entry = chunk.FindChild(field.key);
    if (!entry) return false;
    const util::Bytes& bytes = entry->data;
    double number = 0;
    std::uint8_t flag = 0;
    switch (field.kind) {
      case Kind::kDouble:
        if (bytes.size() != sizeof number || !util::ByteReader(bytes).Get(number)) return false;
        numbers.push_back(number);
        break;
      case Kind::kFlag:
        if (bytes.size() != sizeof flag || !util::ByteReader(bytes).Get(flag)) return false;
        numbers.push_back(flag);
        break;
      case Kind::kMemory:
        memories.emplace_back();
        if (!memories.back().Load(bytes.data(), bytes.size())) return false;
        break;
    }
  }
  auto number = numbers.begin();
  auto memory = memories.begin();
  for (const Field& field : fields_) {
    switch (field.kind) {
      case Kind::kDouble:
        *static_cast<double*>(field.value) = *number++;
        break;
      case Kind::kFlag:
        *static_cast<bool*>(field.value) = *number++ != 0;
        break;
      case Kind::kMemory:
        *static_cast<FollowMemory*>(field.value) = std::move(*memory++);
        break;
    }
  }
  return true;
}

void FollowCamObject::CAttachedCamNode::Create() {
  CreateCamera();
  RefreshHelper();
  if (const TransformSnapshot snapshot = Transform(owner->iface->GetTime())) {
    snapshot->SetLocalTransform(util::Matrix<double>());
  }
}

void FollowCamObject::FollowerNode::Create() { CreateCamera(tool.attachedNode.handle); }

void FollowCamObject::FollowerNode::Update(double time) {
  const double dt = owner->iface->GetFrameDuration();
  // The follower goes on from where it stood a frame ago.
  const util::Matrix<double> before = World(time - dt);
  util::QTransform<double> pose = before.ToPose();
  Follow(pose, tool.attachedNode.World(time).ToPose(), dt);
  tool.memory.Set(time, State());
  util::Matrix<double> after = util::Matrix<double>::FromPose(pose);
  for (int axis = 0; axis < 3; ++axis) {
    after.SetAxis(axis, after.Axis(axis) * (before.Axis(axis).Length() / after.Axis(axis).Length()));
  }
  if (const TransformSnapshot snapshot = Transform(time)) snapshot->SetWorldTransform(after);
}

void FollowCamObject::FollowerNode::ReadLens() {
  if (const LensSnapshot lens = Lens(0.0)) {
    fieldOfView = baseFieldOfView = lens->GetFOV();
    targetDistance = baseTargetDistance = lens->GetTargetDistance();
  }
}

void FollowCamObject::Start(double time) {
  iface->PushUndo(new CVariableModUndo<FollowMemory>(&memory));
  FollowerNode& follower = Follower();
  follower.Reset(time, bFirstTime);
  // Kept at the start time as well, so that a later run from there, a first
  // one included, starts alike. The frames after it are simulated anew.
  memory.Set(time, follower.State());
  memory.RemoveFrom(time + iface->GetFrameDuration());
  bFirstTime = false;
}

void FollowCamObject::Step(double time) {
  // The attached camera has no work of its own; the follower is written last.
  attachedNode.Update(time);
  Follower().Update(time);
}

void FollowCamObject::TimeChanged(double) { iface->UpdateConfig(); }

std::int32_t FollowCamObject::Create() {
  attachedNode.Create();
  Follower().Create();
  if (attachedNode.handle) attachedNode.handle->Select();
  iface->UpdateConfig();
  return 0;
}

void FollowCamObject::Changed(std::string label) {
  const ConfigChange change(std::move(label));
  if (!change.IsReplay() && change.label == kReInitialize) bFirstTime = true;
}

bool FollowCamObject::FindNodes() {
  FollowerNode& follower = Follower();
  follower.Find();
  attachedNode.Find();
  if (!follower.handle || !attachedNode.handle) return false;
  follower.ReadLens();
  attachedNode.RefreshHelper();
  return true;
}

}  // namespace vuk::rgw::addon
