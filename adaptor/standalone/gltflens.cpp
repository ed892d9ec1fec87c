#include "adaptor/standalone/gltflens.h"

#include <tiny_gltf.h>

#include <algorithm>
#include <cmath>

#include "adaptor/standalone/gltfclips.h"
#include "adaptor/standalone/gltfpointer.h"

namespace vuk::rgw::adaptor::standalone {

namespace {

constexpr double kPi = 3.141592653589793;
constexpr std::int32_t kVertical = 1;
constexpr const char* kFovType = "rgw_fov_type";
constexpr const char* kFovDegrees = "rgw_fov_degrees";
constexpr const char* kTargetDistance = "rgw_target_distance";
constexpr const char* kTargetDistanceKeys = "rgw_target_distance_keys";
constexpr const char* kTicks = "rgw_ticks";
constexpr const char* kValues = "rgw_values";

std::string YfovPointer(int camera) { return "/cameras/" + std::to_string(camera) + "/perspective/yfov"; }

const tinygltf::Value* Member(const tinygltf::Value& object, const char* name) {
  return object.IsObject() && object.Has(name) ? &object.Get(name) : nullptr;
}

double NumberIn(const tinygltf::Value& extras, const char* name, double fallback) {
  const tinygltf::Value* value = Member(extras, name);
  return value && value->IsNumber() ? value->GetNumberAsDouble() : fallback;
}

// Keys of ours: exact ticks and exact values, in the object's two members.
bool ReadExactKeys(AccessorReader& reader, const tinygltf::Value& holder, const std::vector<Tick>* ticksGiven,
                   ScalarTrack& track) {
  std::vector<std::uint32_t> words;
  std::vector<Tick> ticks;
  if (ticksGiven) {
    ticks = *ticksGiven;
  } else if (reader.Unsigned(IndexIn(holder, kTicks), words)) {
    ticks.assign(words.begin(), words.end());
  } else {
    return false;
  }
  std::vector<double> values;
  if (!ReadDoubles(reader, IndexIn(holder, kValues), values) || values.size() != ticks.size() ||
      !std::is_sorted(ticks.begin(), ticks.end())) {
    return false;
  }
  std::vector<ScalarKey> keys;
  keys.reserve(ticks.size());
  for (std::size_t k = 0; k < ticks.size(); ++k) keys.push_back({ticks[k], values[k]});
  track.SetKeys(std::move(keys));
  return true;
}

// The first channel on the pointer, with its clip; null for none.
const tinygltf::AnimationChannel* ChannelOn(const tinygltf::Model& model, const std::string& pointer,
                                           const tinygltf::Animation** clip) {
  for (const tinygltf::Animation& animation : model.animations) {
    for (const tinygltf::AnimationChannel& channel : animation.channels) {
      if (PointerOf(channel) != pointer) continue;
      *clip = &animation;
      return &channel;
    }
  }
  return nullptr;
}

bool ReadFovKeys(const tinygltf::Model& model, int camera, AccessorReader& reader, CameraData& lens, std::string& problem) {
  const tinygltf::Animation* clip = nullptr;
  const tinygltf::AnimationChannel* channel = ChannelOn(model, YfovPointer(camera), &clip);
  if (!channel) return true;
  if (channel->sampler < 0 || static_cast<std::size_t>(channel->sampler) >= clip->samplers.size()) {
    problem = "an animation channel names a missing sampler";
    return false;
  }
  const tinygltf::AnimationSampler& sampler = clip->samplers[static_cast<std::size_t>(channel->sampler)];
  std::vector<Tick> ticks;
  std::vector<double> radians;
  if (!ReadScalarKeys(reader, sampler, ticks, radians, problem)) {
    problem = "camera " + std::to_string(camera) + ", yfov keys: " + problem;
    return false;
  }
  if (ReadExactKeys(reader, sampler.extras, &ticks, lens.fovDegrees)) return true;
  // Keys not of ours animate the file's vertical field of view.
  lens.fovType = kVertical;
  std::vector<ScalarKey> keys;
  keys.reserve(ticks.size());
  for (std::size_t k = 0; k < ticks.size(); ++k) keys.push_back({ticks[k], radians[k] * 180 / kPi});
  lens.fovDegrees.SetKeys(std::move(keys));
  return true;
}

tinygltf::Value ExactKeys(tinygltf::Model& model, int buffer, const ScalarTrack& track) {
  std::vector<Tick> ticks;
  std::vector<double> values;
  for (const ScalarKey& key : track.Keys()) {
    ticks.push_back(key.tick);
    values.push_back(key.value);
  }
  tinygltf::Value extras = TickExtras(model, buffer, ticks);
  if (!extras.IsObject()) extras = tinygltf::Value(tinygltf::Value::Object{});
  extras.Get<tinygltf::Value::Object>()[kValues] = tinygltf::Value(AppendDoubles(model, buffer, values));
  return extras;
}

// The node's camera, made when it has none; copied when another node shows
// it too, so that the keys of this lens animate this node only.
tinygltf::Camera& OwnCamera(tinygltf::Model& model, int node, bool keyed) {
  tinygltf::Node& target = model.nodes[static_cast<std::size_t>(node)];
  const auto shows = [&](const tinygltf::Node& other) { return other.camera == target.camera; };
  const bool made = target.camera >= 0 && static_cast<std::size_t>(target.camera) < model.cameras.size();
  if (!made) {
    tinygltf::Camera camera;
    camera.type = "perspective";
    camera.perspective.aspectRatio = kDefaultAspect;
    camera.perspective.znear = 0.1;
    camera.perspective.zfar = 10000;
    model.cameras.push_back(camera);
    target.camera = static_cast<int>(model.cameras.size() - 1);
  } else if (keyed && std::count_if(model.nodes.begin(), model.nodes.end(), shows) > 1) {
    model.cameras.push_back(model.cameras[static_cast<std::size_t>(target.camera)]);
    target.camera = static_cast<int>(model.cameras.size() - 1);
  }
  return model.cameras[static_cast<std::size_t>(target.camera)];
}

void ReplaceFovKeys(tinygltf::Model& model, int buffer, int camera, const CameraData& lens, double aspect) {
  const std::string pointer = YfovPointer(camera);
  int clipIndex = -1;
  for (std::size_t a = 0; a < model.animations.size(); ++a) {
    auto& channels = model.animations[a].channels;
    const auto on = [&](const tinygltf::AnimationChannel& channel) { return PointerOf(channel) == pointer; };
    if (clipIndex < 0 && std::any_of(channels.begin(), channels.end(), on)) clipIndex = static_cast<int>(a);
    channels.erase(std::remove_if(channels.begin(), channels.end(), on), channels.end());
  }
  const std::vector<ScalarKey>& keys = lens.fovDegrees.Keys();
  if (keys.empty()) return;
  if (model.animations.empty()) {
    model.animations.emplace_back();
    model.animations.back().name = "Rigworks";
  }
  tinygltf::Animation& clip = model.animations[static_cast<std::size_t>(std::max(clipIndex, 0))];
  std::vector<Tick> ticks;
  std::vector<float> yfov;
  for (const ScalarKey& key : keys) {
    ticks.push_back(key.tick);
    yfov.push_back(static_cast<float>(VerticalFov(key.value, lens.fovType, aspect)));
  }
  tinygltf::AnimationSampler sampler;
  sampler.input = AppendFloats(model, buffer, RisingTimes(ticks), TINYGLTF_TYPE_SCALAR, true);
  sampler.output = AppendFloats(model, buffer, yfov, TINYGLTF_TYPE_SCALAR, false);
  sampler.interpolation = "LINEAR";
  sampler.extras = ExactKeys(model, buffer, lens.fovDegrees);
  clip.samplers.push_back(sampler);
  clip.channels.push_back(PointerChannel(static_cast<int>(clip.samplers.size() - 1), pointer));
}

void SetOrErase(tinygltf::Value::Object& extras, const char* name, bool set, tinygltf::Value value) {
  if (set) {
    extras[name] = std::move(value);
  } else {
    extras.erase(name);
  }
}

}  // namespace

double VerticalFov(double degrees, std::int32_t type, double aspect) {
  const double half = std::tan(degrees * kPi / 360);
  if (type == 0) return 2 * std::atan(half / aspect);
  if (type == 2) return 2 * std::atan(half / std::sqrt(1 + aspect * aspect));
  return degrees * kPi / 180;
}

double AspectOf(const tinygltf::Camera& camera) {
  // The camera's own aspect is the one viewers show it at.
  return camera.perspective.aspectRatio > 0 ? camera.perspective.aspectRatio : kDefaultAspect;
}

bool ReadLens(const tinygltf::Model& model, const tinygltf::Node& node, AccessorReader& reader, CameraData& lens,
              std::string& problem) {
  const tinygltf::Camera& camera = model.cameras[static_cast<std::size_t>(node.camera)];
  const tinygltf::Value& extras = node.extras;
  const double type = NumberIn(extras, kFovType, kVertical);
  lens.fovType = type == 0 || type == 2 ? static_cast<std::int32_t>(type) : kVertical;
  const double yfovDegrees = camera.type == "perspective" ? camera.perspective.yfov * 180 / kPi : lens.fovDegrees.StaticKey().value;
  lens.fovDegrees.SetStaticKey({0, lens.fovType == kVertical ? yfovDegrees : NumberIn(extras, kFovDegrees, yfovDegrees)});
  lens.targetDistance.SetStaticKey({0, NumberIn(extras, kTargetDistance, lens.targetDistance.StaticKey().value)});
  if (const tinygltf::Value* keys = Member(extras, kTargetDistanceKeys)) {
    if (!ReadExactKeys(reader, *keys, nullptr, lens.targetDistance)) {
      problem = "its target distance keys can't be read";
      return false;
    }
  }
  return ReadFovKeys(model, node.camera, reader, lens, problem);
}

void WriteLens(tinygltf::Model& model, int buffer, int node, const CameraData& lens, bool changed) {
  tinygltf::Camera& camera = OwnCamera(model, node, changed && !lens.fovDegrees.Keys().empty());
  const double aspect = AspectOf(camera);
  const double degrees = lens.fovDegrees.StaticKey().value;
  // A vertical lens read from the file is written only when changed: the
  // way through degrees may move the last bit.
  double& yfov = camera.perspective.yfov;
  if (lens.fovType != kVertical || yfov * 180 / kPi != degrees) yfov = VerticalFov(degrees, lens.fovType, aspect);
  const int cameraIndex = model.nodes[static_cast<std::size_t>(node)].camera;
  tinygltf::Value& held = model.nodes[static_cast<std::size_t>(node)].extras;
  tinygltf::Value::Object extras = held.IsObject() ? held.Get<tinygltf::Value::Object>() : tinygltf::Value::Object();
  const CameraData defaults;
  SetOrErase(extras, kFovType, lens.fovType != kVertical, tinygltf::Value(lens.fovType));
  SetOrErase(extras, kFovDegrees, lens.fovType != kVertical, tinygltf::Value(degrees));
  const double distance = lens.targetDistance.StaticKey().value;
  SetOrErase(extras, kTargetDistance, distance != defaults.targetDistance.StaticKey().value, tinygltf::Value(distance));
  if (changed) {
    const bool keyed = !lens.targetDistance.Keys().empty();
    SetOrErase(extras, kTargetDistanceKeys, keyed, keyed ? ExactKeys(model, buffer, lens.targetDistance) : tinygltf::Value());
    ReplaceFovKeys(model, buffer, cameraIndex, lens, aspect);
  }
  held = extras.empty() ? tinygltf::Value() : tinygltf::Value(std::move(extras));
}

}  // namespace vuk::rgw::adaptor::standalone
