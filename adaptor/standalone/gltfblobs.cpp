#include "adaptor/standalone/gltfblobs.h"

#include <tiny_gltf.h>

#include <memory>

#include "adaptor/standalone/gltfsplice.h"

namespace vuk::rgw::adaptor::standalone {

namespace {

constexpr const char* kBlobKey = "rgw_blob";
constexpr const char* kViewKey = "bufferView";

tinygltf::Value Reference(int view) {
  tinygltf::Value::Object inner;
  inner[kViewKey] = tinygltf::Value(view);
  tinygltf::Value::Object outer;
  outer[kBlobKey] = tinygltf::Value(std::move(inner));
  return tinygltf::Value(std::move(outer));
}

// The view a value names when it is a blob reference.
bool ReferencedView(const tinygltf::Value& value, int& view) {
  if (!value.IsObject() || value.Keys().size() != 1 || !value.Has(kBlobKey)) return false;
  const tinygltf::Value& inner = value.Get(kBlobKey);
  if (!inner.IsObject() || !inner.Has(kViewKey) || !inner.Get(kViewKey).IsNumber()) return false;
  view = inner.Get(kViewKey).GetNumberAsInt();
  return true;
}

bool IsLong(const tinygltf::Value& value) {
  return value.IsString() && value.Get<std::string>().size() > kBlobThreshold;
}

template <typename Visit>
void ForEachExtra(tinygltf::Model& model, Visit visit) {
  for (tinygltf::Node& node : model.nodes) {
    if (!node.extras.IsObject()) continue;
    for (auto& [key, value] : node.extras.Get<tinygltf::Value::Object>()) visit(key, value);
  }
}

}  // namespace

std::size_t LongTexts::Length(std::size_t ownBytes) const {
  std::size_t end = ownBytes;
  for (const std::string& text : texts) end = (end + 3) / 4 * 4 + text.size();
  return end;
}

LongTexts TakeLongExtras(tinygltf::Model& model) {
  LongTexts taken;
  for (tinygltf::Node& node : model.nodes) {
    if (!node.extras.IsObject()) continue;
    for (auto& [key, value] : node.extras.Get<tinygltf::Value::Object>()) {
      if (!IsLong(value)) continue;
      if (model.buffers.empty()) model.buffers.emplace_back();
      const std::size_t own = model.buffers[0].data.size();
      tinygltf::BufferView blob;
      blob.buffer = 0;
      blob.byteOffset = (taken.Length(own) + 3) / 4 * 4;
      blob.byteLength = value.Get<std::string>().size();
      taken.texts.push_back(std::move(value.Get<std::string>()));
      model.bufferViews.push_back(blob);
      value = Reference(static_cast<int>(model.bufferViews.size() - 1));
    }
  }
  return taken;
}

void MarkLongExtras(tinygltf::Model& model, JsonSplicer& splicer) {
  for (tinygltf::Node& node : model.nodes) {
    if (!node.extras.IsObject()) continue;
    for (auto& [key, value] : node.extras.Get<tinygltf::Value::Object>()) {
      if (!IsLong(value)) continue;
      auto text = std::make_shared<std::string>(std::move(value.Get<std::string>()));
      value = tinygltf::Value(splicer.Add([text](util::AtomicFile& file) { return WriteJsonString(file, *text); }));
    }
  }
}

void ForgetLongExtras(tinygltf::Model& model) {
  for (tinygltf::Node& node : model.nodes) {
    if (!node.extras.IsObject()) continue;
    auto& extras = node.extras.Get<tinygltf::Value::Object>();
    for (auto it = extras.begin(); it != extras.end();) {
      int view = -1;
      it = ReferencedView(it->second, view) ? extras.erase(it) : std::next(it);
    }
    // Extras left empty are no extras: the file writes nothing rather than null.
    if (extras.empty()) node.extras = tinygltf::Value();
  }
}

bool RestoreLongExtras(tinygltf::Model& model, std::map<int, std::string>& texts, std::string& problem) {
  bool restored = true;
  ForEachExtra(model, [&](const std::string& key, tinygltf::Value& value) {
    int view = -1;
    if (!restored || !ReferencedView(value, view)) return;
    if (const auto text = texts.find(view); text != texts.end()) {
      value = tinygltf::Value(std::move(text->second));
      texts.erase(text);
      return;
    }
    const bool known = view >= 0 && static_cast<std::size_t>(view) < model.bufferViews.size();
    const tinygltf::BufferView* blob = known ? &model.bufferViews[static_cast<std::size_t>(view)] : nullptr;
    const bool inBuffer = blob && blob->buffer >= 0 && static_cast<std::size_t>(blob->buffer) < model.buffers.size() &&
                          blob->byteOffset + blob->byteLength <=
                              model.buffers[static_cast<std::size_t>(blob->buffer)].data.size();
    if (!inBuffer) {
      problem = "the extra \"" + key + "\" names buffer view " + std::to_string(view) + ", which holds no bytes";
      restored = false;
      return;
    }
    const auto* bytes = model.buffers[static_cast<std::size_t>(blob->buffer)].data.data() + blob->byteOffset;
    value = tinygltf::Value(std::string(reinterpret_cast<const char*>(bytes), blob->byteLength));
  });
  return restored;
}

void ForEachBlobView(tinygltf::Model& model, const std::function<void(int& view)>& visit) {
  ForEachExtra(model, [&](const std::string&, tinygltf::Value& value) {
    int view = -1;
    if (!ReferencedView(value, view)) return;
    visit(view);
    value = Reference(view);
  });
}

}  // namespace vuk::rgw::adaptor::standalone
