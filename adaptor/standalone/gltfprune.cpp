#include "adaptor/standalone/gltfprune.h"

#include "adaptor/standalone/gltfblobs.h"

#include <tiny_gltf.h>

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

#include "adaptor/standalone/gltfdata.h"

namespace vuk::rgw::adaptor::standalone {

namespace {

// Which items of a list are referred to, and their numbers after the others go.
class Usage {
 public:
  explicit Usage(std::size_t count) : used_(count, false) {}

  void Mark(int index) {
    if (InRange(index)) used_[static_cast<std::size_t>(index)] = true;
  }
  // Keeps the used items in order; Renumber then gives their new numbers.
  template <typename T>
  void Compact(std::vector<T>& items) {
    newIndex_.assign(items.size(), -1);
    std::size_t kept = 0;
    for (std::size_t i = 0; i < items.size(); ++i) {
      if (!used_[i]) continue;
      if (kept != i) items[kept] = std::move(items[i]);
      newIndex_[i] = static_cast<int>(kept++);
    }
    items.resize(kept);
  }
  void Renumber(int& index) const { index = InRange(index) ? newIndex_[static_cast<std::size_t>(index)] : -1; }

 private:
  bool InRange(int index) const { return index >= 0 && static_cast<std::size_t>(index) < used_.size(); }

  std::vector<bool> used_;
  std::vector<int> newIndex_;
};

// Calls visit on every accessor reference of the model.
template <typename Visit>
void ForEachAccessorReference(tinygltf::Model& model, Visit visit) {
  for (tinygltf::Mesh& mesh : model.meshes) {
    for (tinygltf::Primitive& primitive : mesh.primitives) {
      for (auto& attribute : primitive.attributes) visit(attribute.second);
      if (primitive.indices >= 0) visit(primitive.indices);
      for (auto& target : primitive.targets) {
        for (auto& attribute : target) visit(attribute.second);
      }
    }
  }
  for (tinygltf::Animation& animation : model.animations) {
    for (tinygltf::AnimationSampler& sampler : animation.samplers) {
      visit(sampler.input);
      visit(sampler.output);
      for (const char* exact : {"rgw_ticks", "rgw_values"}) {
        if (int* index = IndexSlot(sampler.extras, exact)) visit(*index);
      }
    }
  }
  for (tinygltf::Skin& skin : model.skins) {
    if (skin.inverseBindMatrices >= 0) visit(skin.inverseBindMatrices);
  }
  // A helper's shape and a lens's target distance keys, which are ours to
  // read and no renderer's.
  const std::pair<const char*, std::array<const char*, 2>> ours[] = {{"rgw_helper", {"positions", "faces"}},
                                                                     {"rgw_target_distance_keys", {"rgw_ticks", "rgw_values"}}};
  for (tinygltf::Node& node : model.nodes) {
    for (const auto& [member, parts] : ours) {
      if (!node.extras.IsObject() || !node.extras.Has(member)) continue;
      tinygltf::Value& held = node.extras.Get<tinygltf::Value::Object>()[member];
      for (const char* part : parts) {
        if (int* index = IndexSlot(held, part)) visit(*index);
      }
    }
  }
}

// Samplers no channel uses, and clips left without channels.
void PruneClips(tinygltf::Model& model) {
  for (tinygltf::Animation& clip : model.animations) {
    Usage samplers(clip.samplers.size());
    for (const tinygltf::AnimationChannel& channel : clip.channels) samplers.Mark(channel.sampler);
    samplers.Compact(clip.samplers);
    for (tinygltf::AnimationChannel& channel : clip.channels) samplers.Renumber(channel.sampler);
  }
  model.animations.erase(std::remove_if(model.animations.begin(), model.animations.end(),
                                        [](const tinygltf::Animation& clip) { return clip.channels.empty(); }),
                         model.animations.end());
}

template <typename Visit>
void ForEachViewReference(tinygltf::Model& model, Visit visit) {
  for (tinygltf::Accessor& accessor : model.accessors) {
    if (accessor.bufferView >= 0) visit(accessor.bufferView);
    if (accessor.sparse.isSparse) {
      visit(accessor.sparse.indices.bufferView);
      visit(accessor.sparse.values.bufferView);
    }
  }
  for (tinygltf::Image& image : model.images) {
    if (image.bufferView >= 0) visit(image.bufferView);
  }
  ForEachBlobView(model, visit);
}

// Copies each view's bytes into fresh buffer data, keeping each view's
// offset modulo four so that the accessors inside stay aligned.
void PackBuffers(tinygltf::Model& model) {
  std::vector<std::vector<unsigned char>> packed(model.buffers.size());
  // Sized once: buffers hold megabytes of keys and saved state, and growing
  // by doubling would hold up to three copies at a time.
  std::vector<std::size_t> sizes(model.buffers.size(), 0);
  for (const tinygltf::BufferView& view : model.bufferViews) {
    if (view.buffer >= 0 && static_cast<std::size_t>(view.buffer) < sizes.size()) {
      sizes[static_cast<std::size_t>(view.buffer)] += view.byteLength + 3;
    }
  }
  for (std::size_t i = 0; i < packed.size(); ++i) packed[i].reserve(sizes[i]);
  Usage buffers(model.buffers.size());
  for (tinygltf::BufferView& view : model.bufferViews) {
    if (view.buffer < 0 || static_cast<std::size_t>(view.buffer) >= model.buffers.size()) {
      view.buffer = -1;
      continue;
    }
    buffers.Mark(view.buffer);
    const std::vector<unsigned char>& source = model.buffers[static_cast<std::size_t>(view.buffer)].data;
    std::vector<unsigned char>& target = packed[static_cast<std::size_t>(view.buffer)];
    while (target.size() % 4 != view.byteOffset % 4) target.push_back(0);
    const std::size_t start = target.size();
    // A view past its buffer's end keeps its length; the missing bytes are zero.
    target.resize(start + view.byteLength, 0);
    if (view.byteOffset < source.size()) {
      const std::size_t available = std::min(view.byteLength, source.size() - view.byteOffset);
      std::copy_n(source.begin() + static_cast<std::ptrdiff_t>(view.byteOffset), available,
                  target.begin() + static_cast<std::ptrdiff_t>(start));
    }
    view.byteOffset = start;
  }
  for (std::size_t i = 0; i < model.buffers.size(); ++i) model.buffers[i].data = std::move(packed[i]);
  buffers.Compact(model.buffers);
  for (tinygltf::BufferView& view : model.bufferViews) buffers.Renumber(view.buffer);
}

}  // namespace

void PruneUnusedData(tinygltf::Model& model) {
  PruneClips(model);
  Usage accessors(model.accessors.size());
  ForEachAccessorReference(model, [&](int& index) { accessors.Mark(index); });
  accessors.Compact(model.accessors);
  ForEachAccessorReference(model, [&](int& index) { accessors.Renumber(index); });

  Usage views(model.bufferViews.size());
  ForEachViewReference(model, [&](int& index) { views.Mark(index); });
  views.Compact(model.bufferViews);
  ForEachViewReference(model, [&](int& index) { views.Renumber(index); });

  PackBuffers(model);
}

}  // namespace vuk::rgw::adaptor::standalone
