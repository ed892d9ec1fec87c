#include "adaptor/standalone/gltffile.h"

#include <tiny_gltf.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <set>

#include "adaptor/standalone/gltfblobs.h"
#include "adaptor/standalone/gltfprune.h"

namespace vuk::rgw::adaptor::standalone {

namespace {

using util::Matrix;
using util::Quat;
using util::Vector3;

constexpr double kPi = 3.141592653589793;
constexpr int kTriangles = 4;

bool EndsWith(const std::string& text, const std::string& end) {
  return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

// Reads an accessor's elements as doubles, every bound checked: a damaged
// file gives a message, never a read past its buffers.
class AccessorReader {
 public:
  AccessorReader(const tinygltf::Model& model, std::string& problem) : model_(model), problem_(problem) {}

  bool Floats(int index, int components, std::vector<double>& out) {
    const tinygltf::Accessor* accessor = Find(index, components);
    if (!accessor) return false;
    if (accessor->componentType != TINYGLTF_COMPONENT_TYPE_FLOAT) return Fail("accessor " + std::to_string(index) + " is not of floats");
    const std::uint8_t* base = nullptr;
    std::size_t stride = 0;
    if (!Locate(*accessor, 4 * static_cast<std::size_t>(components), base, stride)) return false;
    out.resize(accessor->count * static_cast<std::size_t>(components));
    for (std::size_t i = 0; i < accessor->count; ++i) {
      for (int c = 0; c < components; ++c) {
        float value = 0;
        std::memcpy(&value, base + i * stride + 4 * static_cast<std::size_t>(c), 4);
        out[i * static_cast<std::size_t>(components) + static_cast<std::size_t>(c)] = value;
      }
    }
    return true;
  }

  bool Indices(int index, std::vector<std::int32_t>& out) {
    const tinygltf::Accessor* accessor = Find(index, 1);
    if (!accessor) return false;
    std::size_t size = 0;
    if (accessor->componentType == TINYGLTF_COMPONENT_TYPE_UNSIGNED_BYTE) size = 1;
    if (accessor->componentType == TINYGLTF_COMPONENT_TYPE_UNSIGNED_SHORT) size = 2;
    if (accessor->componentType == TINYGLTF_COMPONENT_TYPE_UNSIGNED_INT) size = 4;
    if (size == 0) return Fail("index accessor " + std::to_string(index) + " has an unsupported component type");
    const std::uint8_t* base = nullptr;
    std::size_t stride = 0;
    if (!Locate(*accessor, size, base, stride)) return false;
    out.resize(accessor->count);
    for (std::size_t i = 0; i < accessor->count; ++i) {
      std::uint32_t value = 0;
      std::memcpy(&value, base + i * stride, size);
      out[i] = static_cast<std::int32_t>(std::min<std::uint32_t>(value, 0x7FFFFFFF));
    }
    return true;
  }

 private:
  bool Fail(const std::string& text) {
    problem_ = text;
    return false;
  }

  const tinygltf::Accessor* Find(int index, int components) {
    if (index < 0 || static_cast<std::size_t>(index) >= model_.accessors.size()) {
      Fail("accessor " + std::to_string(index) + " does not exist");
      return nullptr;
    }
    const tinygltf::Accessor& accessor = model_.accessors[static_cast<std::size_t>(index)];
    if (accessor.sparse.isSparse) {
      Fail("accessor " + std::to_string(index) + " is sparse, which is not supported");
      return nullptr;
    }
    if (tinygltf::GetNumComponentsInType(static_cast<std::uint32_t>(accessor.type)) != components) {
      Fail("accessor " + std::to_string(index) + " has " +
           std::to_string(tinygltf::GetNumComponentsInType(static_cast<std::uint32_t>(accessor.type))) +
           " components where " + std::to_string(components) + " are needed");
      return nullptr;
    }
    return &accessor;
  }

  bool Locate(const tinygltf::Accessor& accessor, std::size_t elementSize, const std::uint8_t*& base,
              std::size_t& stride) {
    if (accessor.bufferView < 0 || static_cast<std::size_t>(accessor.bufferView) >= model_.bufferViews.size()) {
      return Fail("an accessor has no buffer view");
    }
    const tinygltf::BufferView& view = model_.bufferViews[static_cast<std::size_t>(accessor.bufferView)];
    if (view.buffer < 0 || static_cast<std::size_t>(view.buffer) >= model_.buffers.size()) {
      return Fail("a buffer view names no buffer");
    }
    const std::vector<unsigned char>& data = model_.buffers[static_cast<std::size_t>(view.buffer)].data;
    stride = view.byteStride ? view.byteStride : elementSize;
    const std::size_t need =
        accessor.count == 0 ? 0 : accessor.byteOffset + stride * (accessor.count - 1) + elementSize;
    if (stride < elementSize || view.byteOffset + view.byteLength > data.size() || need > view.byteLength) {
      return Fail("an accessor runs past its buffer");
    }
    base = data.data() + view.byteOffset + accessor.byteOffset;
    return true;
  }

  const tinygltf::Model& model_;
  std::string& problem_;
};

Matrix<double> NodePose(const tinygltf::Node& node) {
  Matrix<double> pose;
  if (node.matrix.size() == 16) {
    // Both are column-major with the translation in 12 to 14.
    for (int i = 0; i < 16; ++i) pose.m[i] = node.matrix[static_cast<std::size_t>(i)];
    return pose;
  }
  TransformKey key;
  if (node.translation.size() == 3) key.position = {node.translation[0], node.translation[1], node.translation[2]};
  if (node.rotation.size() == 4) key.rotation = {node.rotation[0], node.rotation[1], node.rotation[2], node.rotation[3]};
  if (node.scale.size() == 3) key.scale = {node.scale[0], node.scale[1], node.scale[2]};
  return key.ToMatrix();
}

// One animated property of a node: its key times and values.
struct Curve {
  std::vector<double> times;
  std::vector<double> values;  // components per key: 3 or 4
  int components = 3;
  bool step = false;

  bool Empty() const { return times.empty(); }
  // The value at t: held outside the keys, stepped or linear between them.
  std::vector<double> At(double t) const {
    const std::size_t n = static_cast<std::size_t>(components);
    const auto after = std::lower_bound(times.begin(), times.end(), t);
    std::size_t i = static_cast<std::size_t>(after - times.begin());
    if (i == 0) return {values.begin(), values.begin() + static_cast<std::ptrdiff_t>(n)};
    if (i == times.size()) return {values.end() - static_cast<std::ptrdiff_t>(n), values.end()};
    if (times[i] == t || step) {
      const std::size_t at = times[i] == t ? i : i - 1;
      return {values.begin() + static_cast<std::ptrdiff_t>(at * n), values.begin() + static_cast<std::ptrdiff_t>(at * n + n)};
    }
    const double f = (t - times[i - 1]) / (times[i] - times[i - 1]);
    std::vector<double> out(n);
    if (components == 4) {
      const Quat<double> a{values[(i - 1) * 4], values[(i - 1) * 4 + 1], values[(i - 1) * 4 + 2], values[(i - 1) * 4 + 3]};
      const Quat<double> b{values[i * 4], values[i * 4 + 1], values[i * 4 + 2], values[i * 4 + 3]};
      const Quat<double> q = Quat<double>::Slerp(a, b, f);
      return {q.x, q.y, q.z, q.w};
    }
    for (std::size_t c = 0; c < n; ++c) out[c] = values[(i - 1) * n + c] + (values[i * n + c] - values[(i - 1) * n + c]) * f;
    return out;
  }
};

struct NodeCurves {
  Curve translation, rotation, scale;
};

tinygltf::Value::Object ExtrasOf(const tinygltf::Node& node) {
  return node.extras.IsObject() ? node.extras.Get<tinygltf::Value::Object>() : tinygltf::Value::Object();
}

bool BoolExtra(const tinygltf::Value::Object& extras, const char* name, bool fallback) {
  const auto found = extras.find(name);
  return found != extras.end() && found->second.IsBool() ? found->second.Get<bool>() : fallback;
}

// Adds bytes to a buffer, aligned to four, and answers a view of them.
int AppendView(tinygltf::Model& model, int buffer, const void* bytes, std::size_t size) {
  std::vector<unsigned char>& data = model.buffers[static_cast<std::size_t>(buffer)].data;
  while (data.size() % 4) data.push_back(0);
  tinygltf::BufferView view;
  view.buffer = buffer;
  view.byteOffset = data.size();
  view.byteLength = size;
  const auto* begin = static_cast<const unsigned char*>(bytes);
  data.insert(data.end(), begin, begin + size);
  model.bufferViews.push_back(view);
  return static_cast<int>(model.bufferViews.size() - 1);
}

int AppendFloats(tinygltf::Model& model, int buffer, const std::vector<float>& values, int type, bool bounds) {
  tinygltf::Accessor accessor;
  accessor.bufferView = AppendView(model, buffer, values.data(), values.size() * sizeof(float));
  accessor.componentType = TINYGLTF_COMPONENT_TYPE_FLOAT;
  accessor.type = type;
  const int components = tinygltf::GetNumComponentsInType(static_cast<std::uint32_t>(type));
  accessor.count = values.size() / static_cast<std::size_t>(components);
  if (bounds && accessor.count > 0) {
    accessor.minValues.assign(static_cast<std::size_t>(components), 1e300);
    accessor.maxValues.assign(static_cast<std::size_t>(components), -1e300);
    for (std::size_t i = 0; i < values.size(); ++i) {
      const std::size_t c = i % static_cast<std::size_t>(components);
      accessor.minValues[c] = std::min<double>(accessor.minValues[c], values[i]);
      accessor.maxValues[c] = std::max<double>(accessor.maxValues[c], values[i]);
    }
  }
  model.accessors.push_back(accessor);
  return static_cast<int>(model.accessors.size() - 1);
}

}  // namespace

GltfFile::GltfFile() : model_(std::make_unique<tinygltf::Model>()) {}
GltfFile::~GltfFile() = default;

bool GltfFile::Load(const std::string& path, Scene& scene, std::string* error) {
  auto fail = [&](const std::string& problem) {
    if (error) *error = path + ": " + problem;
    return false;
  };
  auto model = std::make_unique<tinygltf::Model>();
  tinygltf::TinyGLTF loader;
  // Images stay as the file has them: nothing is decoded or re-encoded.
  loader.SetImageLoader([](tinygltf::Image*, const int, std::string*, std::string*, int, int, const unsigned char*, int,
                           void*) { return true; },
                        nullptr);
  std::string err, warn;
  const bool binary = EndsWith(path, ".glb");
  const bool read = binary ? loader.LoadBinaryFromFile(model.get(), &err, &warn, path)
                           : loader.LoadASCIIFromFile(model.get(), &err, &warn, path);
  if (!read) return fail(err.empty() ? "not a glTF file" : err);
  if (std::string problem; !RestoreLongExtras(*model, problem)) return fail(problem);

  // Everything is read and checked before the scene changes.
  std::string problem;
  AccessorReader reader(*model, problem);
  const std::size_t count = model->nodes.size();
  std::vector<util::CMesh> meshes(count);
  for (std::size_t i = 0; i < count; ++i) {
    const int meshIndex = model->nodes[i].mesh;
    if (meshIndex < 0) continue;
    if (static_cast<std::size_t>(meshIndex) >= model->meshes.size()) return fail("node " + std::to_string(i) + " names a missing mesh");
    for (const tinygltf::Primitive& primitive : model->meshes[static_cast<std::size_t>(meshIndex)].primitives) {
      if (primitive.mode != kTriangles && primitive.mode != -1) continue;
      const auto position = primitive.attributes.find("POSITION");
      if (position == primitive.attributes.end()) continue;
      std::vector<double> points;
      if (!reader.Floats(position->second, 3, points)) return fail(problem);
      const auto base = static_cast<std::int32_t>(meshes[i].vertices.size());
      for (std::size_t p = 0; p + 2 < points.size(); p += 3) meshes[i].vertices.push_back({points[p], points[p + 1], points[p + 2]});
      std::vector<std::int32_t> indices;
      if (primitive.indices >= 0) {
        if (!reader.Indices(primitive.indices, indices)) return fail(problem);
      } else {
        for (std::int32_t v = 0; v < static_cast<std::int32_t>(points.size() / 3); ++v) indices.push_back(v);
      }
      for (std::int32_t index : indices) meshes[i].faces.push_back(base + index);
    }
    meshes[i].faces.resize(meshes[i].faces.size() / 3 * 3);
  }
  std::vector<NodeCurves> curves(count);
  for (const tinygltf::Animation& animation : model->animations) {
    for (const tinygltf::AnimationChannel& channel : animation.channels) {
      if (channel.target_node < 0 || static_cast<std::size_t>(channel.target_node) >= count) continue;
      if (channel.sampler < 0 || static_cast<std::size_t>(channel.sampler) >= animation.samplers.size()) {
        return fail("an animation channel names a missing sampler");
      }
      NodeCurves& node = curves[static_cast<std::size_t>(channel.target_node)];
      Curve* curve = channel.target_path == "translation" ? &node.translation
                     : channel.target_path == "rotation"  ? &node.rotation
                     : channel.target_path == "scale"     ? &node.scale
                                                          : nullptr;
      if (!curve) continue;
      const tinygltf::AnimationSampler& sampler = animation.samplers[static_cast<std::size_t>(channel.sampler)];
      curve->components = curve == &node.rotation ? 4 : 3;
      curve->step = sampler.interpolation == "STEP";
      std::vector<double> values;
      if (!reader.Floats(sampler.input, 1, curve->times) || !reader.Floats(sampler.output, curve->components, values)) {
        return fail(problem);
      }
      const std::size_t n = static_cast<std::size_t>(curve->components);
      if (sampler.interpolation == "CUBICSPLINE") {
        // Sampled at the keys: the value stands between the two tangents.
        std::vector<double> middle;
        for (std::size_t k = 0; k * 3 * n + 2 * n <= values.size() && k < curve->times.size(); ++k) {
          middle.insert(middle.end(), values.begin() + static_cast<std::ptrdiff_t>(k * 3 * n + n),
                        values.begin() + static_cast<std::ptrdiff_t>(k * 3 * n + 2 * n));
        }
        values = std::move(middle);
      }
      if (values.size() < curve->times.size() * n || !std::is_sorted(curve->times.begin(), curve->times.end())) {
        return fail("animation of node " + std::to_string(channel.target_node) + " has keys out of order or missing values");
      }
      curve->values = std::move(values);
    }
  }

  // The tree from the scene's roots; a node is taken once, whatever the file says.
  std::vector<int> roots;
  const int sceneIndex = model->defaultScene >= 0 ? model->defaultScene : 0;
  if (static_cast<std::size_t>(sceneIndex) < model->scenes.size()) roots = model->scenes[static_cast<std::size_t>(sceneIndex)].nodes;
  std::set<int> taken;
  std::map<SceneNode::Handle, int> nodeOf;
  std::vector<std::pair<int, SceneNode*>> pending;
  // A stack: pushed last first, so that children keep the file's order.
  for (auto root = roots.rbegin(); root != roots.rend(); ++root) pending.emplace_back(*root, &scene.Root());
  while (!pending.empty()) {
    const auto [index, parent] = pending.back();
    pending.pop_back();
    if (index < 0 || static_cast<std::size_t>(index) >= count || !taken.insert(index).second) continue;
    const tinygltf::Node& source = model->nodes[static_cast<std::size_t>(index)];
    const tinygltf::Value::Object extras = ExtrasOf(source);
    ObjectKind kind = ObjectKind::kEmpty;
    if (source.mesh >= 0) kind = BoolExtra(extras, "rgw_helper", false) ? ObjectKind::kHelper : ObjectKind::kMesh;
    if (source.camera >= 0) kind = ObjectKind::kCamera;
    SceneNode* node = scene.CreateNode(kind, source.name, parent);
    nodeOf[node->handle] = index;
    node->mesh = meshes[static_cast<std::size_t>(index)];
    node->visible = !BoolExtra(extras, "rgw_hidden", false);
    node->wireframe = BoolExtra(extras, "rgw_wireframe", true);
    node->backfaceCull = BoolExtra(extras, "rgw_backface_cull", false);
    for (const auto& [key, value] : extras) {
      if (value.IsString()) node->properties[key] = value.Get<std::string>();
    }
    if (source.camera >= 0 && static_cast<std::size_t>(source.camera) < model->cameras.size()) {
      const tinygltf::Camera& camera = model->cameras[static_cast<std::size_t>(source.camera)];
      if (camera.type == "perspective") node->camera.fovDegrees = camera.perspective.yfov * 180 / kPi;
      node->camera.fovType = 1;
      const auto distance = extras.find("rgw_target_distance");
      if (distance != extras.end() && distance->second.IsNumber()) node->camera.targetDistance = distance->second.GetNumberAsDouble();
    }
    const TransformKey rest = TransformKey::FromMatrix(0, NodePose(source));
    node->track.SetStaticPose(rest);
    const NodeCurves& animated = curves[static_cast<std::size_t>(index)];
    std::set<double> times;
    for (const Curve* curve : {&animated.translation, &animated.rotation, &animated.scale}) times.insert(curve->times.begin(), curve->times.end());
    for (double t : times) {
      TransformKey key = rest;
      // Times in files are floats: the nearest tick is the one they were written from.
      key.tick = static_cast<Tick>(std::llround(t * kTicksPerSecond));
      if (!animated.translation.Empty()) {
        const auto v = animated.translation.At(t);
        key.position = {v[0], v[1], v[2]};
      }
      if (!animated.rotation.Empty()) {
        const auto v = animated.rotation.At(t);
        key.rotation = Quat<double>{v[0], v[1], v[2], v[3]}.Normalized();
      }
      if (!animated.scale.Empty()) {
        const auto v = animated.scale.At(t);
        key.scale = {v[0], v[1], v[2]};
      }
      node->track.SetKey(key);
    }
    for (auto child = source.children.rbegin(); child != source.children.rend(); ++child) pending.emplace_back(*child, node);
  }
  model_ = std::move(model);
  nodeOf_ = std::move(nodeOf);
  return true;
}

bool GltfFile::Save(const std::string& path, Scene& scene, std::string* error) {
  tinygltf::Model& model = *model_;
  if (model.asset.version.empty()) model.asset.version = "2.0";
  model.asset.generator = "Rigworks";
  // New data goes after what the first buffer holds; pruning then drops the
  // bytes it replaced, so a file saved again is the file saved the first time.
  if (model.buffers.empty()) model.buffers.emplace_back();
  const int buffer = 0;

  // Each scene node to its glTF node, made for nodes the file didn't have;
  // in the scene's order, so that the same scene writes the same file.
  std::map<const SceneNode*, int> indexOf;
  std::vector<std::pair<const SceneNode*, int>> ordered;
  scene.Walk([&](SceneNode& node) {
    if (node.isRoot) return;
    auto known = nodeOf_.find(node.handle);
    if (known == nodeOf_.end()) {
      model.nodes.emplace_back();
      known = nodeOf_.emplace(node.handle, static_cast<int>(model.nodes.size() - 1)).first;
    }
    indexOf[&node] = known->second;
    ordered.emplace_back(&node, known->second);
  });
  // Nodes taken out of the scene are unlinked, not removed: other parts of
  // the file may still name their index.
  for (tinygltf::Node& node : model.nodes) node.children.clear();
  std::vector<int> roots;
  for (const auto& [node, index] : ordered) {
    tinygltf::Node& target = model.nodes[static_cast<std::size_t>(index)];
    target.name = node->hostName;
    const TransformKey& pose = node->track.StaticPose();
    target.matrix.clear();
    target.translation = {pose.position.x, pose.position.y, pose.position.z};
    target.rotation = {pose.rotation.x, pose.rotation.y, pose.rotation.z, pose.rotation.w};
    target.scale = {pose.scale.x, pose.scale.y, pose.scale.z};
    for (const SceneNode* child : node->children) target.children.push_back(indexOf[child]);
    if (node->parent && node->parent->isRoot) roots.push_back(index);
    tinygltf::Value::Object extras = ExtrasOf(target);
    // String extras are the node's properties: one the scene dropped goes from the file too.
    for (auto it = extras.begin(); it != extras.end();) {
      it = it->second.IsString() && !node->properties.count(it->first) ? extras.erase(it) : std::next(it);
    }
    for (const auto& [key, value] : node->properties) extras[key] = tinygltf::Value(value);
    extras["rgw_hidden"] = tinygltf::Value(!node->visible);
    if (node->kind == ObjectKind::kHelper) {
      // Helpers are marked so that renderers of the file can leave them out.
      extras["rgw_helper"] = tinygltf::Value(true);
      extras["rgw_wireframe"] = tinygltf::Value(node->wireframe);
      extras["rgw_backface_cull"] = tinygltf::Value(node->backfaceCull);
    }
    if (node->kind == ObjectKind::kCamera) {
      extras["rgw_target_distance"] = tinygltf::Value(node->camera.targetDistance);
      if (target.camera < 0 || static_cast<std::size_t>(target.camera) >= model.cameras.size()) {
        tinygltf::Camera camera;
        camera.type = "perspective";
        camera.perspective.aspectRatio = 16.0 / 9.0;
        camera.perspective.znear = 0.1;
        camera.perspective.zfar = 10000;
        model.cameras.push_back(camera);
        target.camera = static_cast<int>(model.cameras.size() - 1);
      }
      model.cameras[static_cast<std::size_t>(target.camera)].perspective.yfov = node->camera.fovDegrees * kPi / 180;
    }
    if ((node->kind == ObjectKind::kHelper || node->kind == ObjectKind::kMesh) && target.mesh < 0 && !node->mesh.faces.empty()) {
      std::vector<float> points;
      for (const Vector3<double>& v : node->mesh.vertices) points.insert(points.end(), {float(v.x), float(v.y), float(v.z)});
      std::vector<std::uint32_t> indices(node->mesh.faces.begin(), node->mesh.faces.end());
      tinygltf::Primitive primitive;
      primitive.mode = kTriangles;
      primitive.attributes["POSITION"] = AppendFloats(model, buffer, points, TINYGLTF_TYPE_VEC3, true);
      tinygltf::Accessor index;
      index.bufferView = AppendView(model, buffer, indices.data(), indices.size() * 4);
      index.componentType = TINYGLTF_COMPONENT_TYPE_UNSIGNED_INT;
      index.type = TINYGLTF_TYPE_SCALAR;
      index.count = indices.size();
      model.accessors.push_back(index);
      primitive.indices = static_cast<int>(model.accessors.size() - 1);
      tinygltf::Mesh mesh;
      mesh.name = node->hostName;
      mesh.primitives.push_back(primitive);
      model.meshes.push_back(mesh);
      target.mesh = static_cast<int>(model.meshes.size() - 1);
    }
    target.extras = tinygltf::Value(extras);
  }
  std::sort(roots.begin(), roots.end());
  if (model.scenes.empty()) model.scenes.emplace_back();
  // A default scene the file doesn't have is taken as the first.
  const bool known = model.defaultScene >= 0 && static_cast<std::size_t>(model.defaultScene) < model.scenes.size();
  const int sceneIndex = known ? model.defaultScene : 0;
  model.scenes[static_cast<std::size_t>(sceneIndex)].nodes = roots;
  model.defaultScene = sceneIndex;

  // The scene's keys replace what the file animated on these nodes.
  std::set<int> managed;
  for (const auto& entry : indexOf) managed.insert(entry.second);
  for (tinygltf::Animation& animation : model.animations) {
    animation.channels.erase(std::remove_if(animation.channels.begin(), animation.channels.end(),
                                            [&](const tinygltf::AnimationChannel& c) {
                                              return managed.count(c.target_node) &&
                                                     (c.target_path == "translation" || c.target_path == "rotation" ||
                                                      c.target_path == "scale");
                                            }),
                             animation.channels.end());
  }
  model.animations.erase(std::remove_if(model.animations.begin(), model.animations.end(),
                                        [](const tinygltf::Animation& a) { return a.channels.empty(); }),
                         model.animations.end());
  tinygltf::Animation keys;
  keys.name = "Rigworks";
  for (const auto& [node, index] : ordered) {
    const std::vector<TransformKey>& track = node->track.Keys();
    if (track.empty()) continue;
    std::vector<float> times, positions, rotations, scales;
    for (const TransformKey& key : track) {
      times.push_back(static_cast<float>(SecondsFromTicks(key.tick)));
      positions.insert(positions.end(), {float(key.position.x), float(key.position.y), float(key.position.z)});
      rotations.insert(rotations.end(), {float(key.rotation.x), float(key.rotation.y), float(key.rotation.z), float(key.rotation.w)});
      scales.insert(scales.end(), {float(key.scale.x), float(key.scale.y), float(key.scale.z)});
    }
    const int input = AppendFloats(model, buffer, times, TINYGLTF_TYPE_SCALAR, true);
    const std::pair<const char*, std::pair<std::vector<float>*, int>> paths[] = {
        {"translation", {&positions, TINYGLTF_TYPE_VEC3}}, {"rotation", {&rotations, TINYGLTF_TYPE_VEC4}}, {"scale", {&scales, TINYGLTF_TYPE_VEC3}}};
    for (const auto& [pathName, data] : paths) {
      tinygltf::AnimationSampler sampler;
      sampler.input = input;
      sampler.output = AppendFloats(model, buffer, *data.first, data.second, false);
      sampler.interpolation = "LINEAR";
      keys.samplers.push_back(sampler);
      tinygltf::AnimationChannel channel;
      channel.sampler = static_cast<int>(keys.samplers.size() - 1);
      channel.target_node = index;
      channel.target_path = pathName;
      keys.channels.push_back(channel);
    }
  }
  if (!keys.channels.empty()) model.animations.push_back(keys);
  MoveLongExtrasToBuffer(model, EndsWith(path, ".glb"));
  PruneUnusedData(model);

  const std::string temporary = path + ".tmp";
  tinygltf::TinyGLTF writer;
  const bool binary = EndsWith(path, ".glb");
  if (!writer.WriteGltfSceneToFile(&model, temporary, false, true, true, binary)) {
    if (error) *error = path + ": the file can't be written";
    std::error_code ignored;
    std::filesystem::remove(temporary, ignored);
    return false;
  }
  std::error_code renamed;
  std::filesystem::rename(temporary, path, renamed);
  if (renamed) {
    if (error) *error = path + ": can't be replaced (" + renamed.message() + ")";
    return false;
  }
  return true;
}

}  // namespace vuk::rgw::adaptor::standalone
