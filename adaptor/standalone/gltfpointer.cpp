#include "adaptor/standalone/gltfpointer.h"

#include <nlohmann/json.hpp>
#include <tiny_gltf.h>

#include <algorithm>

namespace vuk::rgw::adaptor::standalone {

namespace {

// JSON as the parser would have made it: whole numbers as integers.
tinygltf::Value ValueOf(const nlohmann::json& json) {
  switch (json.type()) {
    case nlohmann::json::value_t::boolean: return tinygltf::Value(json.get<bool>());
    case nlohmann::json::value_t::number_integer:
    case nlohmann::json::value_t::number_unsigned: return tinygltf::Value(json.get<int>());
    case nlohmann::json::value_t::number_float: return tinygltf::Value(json.get<double>());
    case nlohmann::json::value_t::string: return tinygltf::Value(json.get<std::string>());
    case nlohmann::json::value_t::array: {
      tinygltf::Value::Array items;
      for (const nlohmann::json& item : json) items.push_back(ValueOf(item));
      return tinygltf::Value(std::move(items));
    }
    case nlohmann::json::value_t::object: {
      tinygltf::Value::Object members;
      for (const auto& [key, member] : json.items()) members[key] = ValueOf(member);
      return tinygltf::Value(std::move(members));
    }
    default: return tinygltf::Value();
  }
}

tinygltf::ExtensionMap ExtensionsOf(const nlohmann::json& owner) {
  tinygltf::ExtensionMap extensions;
  if (!owner.contains("extensions") || !owner["extensions"].is_object()) return extensions;
  for (const auto& [name, extension] : owner["extensions"].items()) extensions[name] = ValueOf(extension);
  return extensions;
}

}  // namespace

void PutBackNodelessChannels(tinygltf::Model& model, const std::vector<NodelessChannel>& channels) {
  // In the order of the text: each goes where it stood among those before it.
  for (const NodelessChannel& kept : channels) {
    if (kept.animation >= model.animations.size()) continue;
    const nlohmann::json json = nlohmann::json::parse(kept.json, nullptr, false);
    if (!json.is_object() || !json.contains("sampler") || !json["sampler"].is_number_integer()) continue;
    tinygltf::AnimationChannel channel;
    channel.sampler = json["sampler"].get<int>();
    const nlohmann::json& target = json["target"];
    if (target.contains("path") && target["path"].is_string()) channel.target_path = target["path"].get<std::string>();
    channel.target_extensions = ExtensionsOf(target);
    channel.extensions = ExtensionsOf(json);
    if (json.contains("extras")) channel.extras = ValueOf(json["extras"]);
    auto& list = model.animations[kept.animation].channels;
    list.insert(list.begin() + static_cast<std::ptrdiff_t>(std::min(kept.channel, list.size())), std::move(channel));
  }
}

std::string PointerOf(const tinygltf::AnimationChannel& channel) {
  const auto found = channel.target_extensions.find(kAnimationPointer);
  if (channel.target_path != "pointer" || found == channel.target_extensions.end()) return {};
  const tinygltf::Value& extension = found->second;
  return extension.IsObject() && extension.Has("pointer") && extension.Get("pointer").IsString()
             ? extension.Get("pointer").Get<std::string>()
             : std::string();
}

tinygltf::AnimationChannel PointerChannel(int sampler, const std::string& pointer) {
  tinygltf::AnimationChannel channel;
  channel.sampler = sampler;
  channel.target_path = "pointer";
  channel.target_extensions[kAnimationPointer] = tinygltf::Value(tinygltf::Value::Object{{"pointer", tinygltf::Value(pointer)}});
  return channel;
}

void DeclarePointerExtension(tinygltf::Model& model) {
  const bool used = std::any_of(model.animations.begin(), model.animations.end(), [](const tinygltf::Animation& clip) {
    return std::any_of(clip.channels.begin(), clip.channels.end(),
                       [](const tinygltf::AnimationChannel& channel) { return !PointerOf(channel).empty(); });
  });
  auto& listed = model.extensionsUsed;
  const bool declared = std::find(listed.begin(), listed.end(), kAnimationPointer) != listed.end();
  if (used && !declared) listed.push_back(kAnimationPointer);
  if (!used && declared) listed.erase(std::remove(listed.begin(), listed.end(), kAnimationPointer), listed.end());
}

bool HasNodelessChannels(const tinygltf::Model& model) {
  return std::any_of(model.animations.begin(), model.animations.end(), [](const tinygltf::Animation& clip) {
    return std::any_of(clip.channels.begin(), clip.channels.end(),
                       [](const tinygltf::AnimationChannel& channel) { return channel.target_node < 0; });
  });
}

void DropNodelessTargets(nlohmann::json& json) {
  if (!json.contains("animations")) return;
  for (nlohmann::json& clip : json["animations"]) {
    if (!clip.contains("channels")) continue;
    for (nlohmann::json& channel : clip["channels"]) {
      nlohmann::json& target = channel["target"];
      if (target.contains("node") && target["node"] == -1) target.erase("node");
    }
  }
}

}  // namespace vuk::rgw::adaptor::standalone
