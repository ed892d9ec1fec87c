#include "adaptor/standalone/gltffile.h"

#include <tiny_gltf.h>

#include <algorithm>
#include <cstring>
#include <string_view>
#include <limits>
#include <map>
#include <set>

#include "adaptor/standalone/gltfblobs.h"
#include "adaptor/standalone/gltfclips.h"
#include "adaptor/standalone/gltfdata.h"
#include "adaptor/standalone/gltfglb.h"
#include "adaptor/standalone/gltfjson.h"
#include "adaptor/standalone/gltflens.h"
#include "adaptor/standalone/gltfpointer.h"
#include "adaptor/standalone/gltfprune.h"
#include "adaptor/standalone/gltfsource.h"
#include "adaptor/standalone/gltfsplice.h"
#include "adaptor/standalone/gltfuris.h"
#include "adaptor/standalone/gltfwrite.h"
#include "adaptor/standalone/scenetags.h"
#include "util/base64.h"
#include "util/parallel.h"

namespace vuk::rgw::adaptor::standalone {

namespace {

using util::Vector3;

constexpr int kTriangles = 4;
constexpr const char* kHelper = "rgw_helper";
constexpr const char* kLights = "KHR_lights_punctual";

bool IsBinary(const std::vector<unsigned char>& bytes) {
  return bytes.size() >= 4 && std::equal(bytes.begin(), bytes.begin() + 4, "glTF");
}

// The JSON the parser will read: all of a text file, or the first chunk of
// a binary one where its header holds; a header that doesn't the parser
// refuses by itself.
std::string_view JsonText(const std::vector<unsigned char>& bytes, bool binary) {
  const auto* text = reinterpret_cast<const char*>(bytes.data());
  if (!binary) return {text, bytes.size()};
  constexpr std::size_t kHeader = 20;
  std::uint32_t length = 0;
  if (bytes.size() < kHeader) return {};
  std::memcpy(&length, text + 12, 4);
  return length <= bytes.size() - kHeader ? std::string_view(text + kHeader, length) : std::string_view();
}

// The library's message as the user may see it: a data URI keeps only its
// header and long lines are cut, so that no payload, and nothing a
// stranger's file put in a name, is repeated at length.
std::string Shortened(const std::string& message) {
  constexpr std::size_t kLine = 160;
  std::string unpacked;
  for (std::size_t i = 0; i < message.size(); ++i) {
    const std::size_t end = std::min(message.find_first_of(" \n'\"", i), message.size());
    const std::size_t comma = message.find(',', i);
    if (message.compare(i, 5, "data:") == 0 && comma < end) {
      unpacked += message.substr(i, comma + 1 - i) + "...";
      i = end - 1;
    } else {
      unpacked += message[i];
    }
  }
  std::string text;
  std::size_t column = 0;
  for (char c : unpacked) {
    column = c == '\n' ? 0 : column + 1;
    if (column <= kLine) text += c;
    if (column == kLine + 1) text += "...";
  }
  return text;
}

// The index fields the parser keeps as they are: -1 or an item that exists.
bool IsIndexOf(int index, std::size_t count) {
  return index == -1 || (index >= 0 && static_cast<std::size_t>(index) < count);
}

// What glTF forbids in a node and this program could neither read nor
// write back as it was; refused, with the node and the member named.
bool CheckNodes(const tinygltf::Model& model, std::string& problem) {
  for (std::size_t i = 0; i < model.nodes.size(); ++i) {
    const tinygltf::Node& node = model.nodes[i];
    auto refuse = [&](const std::string& what) {
      problem = NodePlace(model, i) + ": " + what;
      return false;
    };
    if (!IsIndexOf(node.mesh, model.meshes.size())) return refuse("\"mesh\" names a missing mesh");
    if (!IsIndexOf(node.camera, model.cameras.size())) return refuse("\"camera\" names a missing camera");
    if (!IsIndexOf(node.skin, model.skins.size())) return refuse("\"skin\" names a missing skin");
    for (int child : node.children) {
      if (child < 0 || static_cast<std::size_t>(child) >= model.nodes.size()) return refuse("\"children\" names a missing node");
    }
    const std::pair<const char*, std::pair<const std::vector<double>*, std::size_t>> sized[] = {
        {"translation", {&node.translation, 3}}, {"rotation", {&node.rotation, 4}}, {"scale", {&node.scale, 3}},
        {"matrix", {&node.matrix, 16}}};
    for (const auto& [member, values] : sized) {
      if (!values.first->empty() && values.first->size() != values.second) {
        return refuse("\"" + std::string(member) + "\" must hold " + std::to_string(values.second) + " numbers");
      }
    }
  }
  return true;
}

// The scene the file shows, which must exist when there are nodes to show.
bool FindScene(const tinygltf::Model& model, int& index, std::string& problem) {
  index = model.defaultScene >= 0 ? model.defaultScene : 0;
  if (model.scenes.empty() && model.defaultScene < 0) {
    if (!model.nodes.empty()) problem = "the file has nodes but no scene to show them";
    return model.nodes.empty();
  }
  if (static_cast<std::size_t>(index) >= model.scenes.size()) {
    problem = "\"scene\" names a missing scene";
    return false;
  }
  for (int root : model.scenes[static_cast<std::size_t>(index)].nodes) {
    if (root < 0 || static_cast<std::size_t>(root) >= model.nodes.size()) {
      problem = "scene " + std::to_string(index) + ": \"nodes\" names a missing node";
      return false;
    }
  }
  return true;
}

// Images are not decoded; one given as a data URI keeps it, as nothing
// else would hold its bytes.
bool KeepImage(tinygltf::Image* image, const int, std::string*, std::string*, int, int, const unsigned char* bytes,
               int size, void*) {
  if (image->uri.empty() && image->bufferView < 0) {
    image->uri = "data:" + image->mimeType + ";base64," +
                 util::Base64::Encode(bytes, static_cast<std::size_t>(std::max(size, 0)));
  }
  return true;
}

// Triangles from a position accessor and an index accessor (-1: in order).
bool AppendTriangles(AccessorReader& reader, int positions, int indices, util::CMesh& mesh) {
  std::vector<double> points;
  if (!reader.Floats(positions, 3, points)) return false;
  const auto base = static_cast<std::int32_t>(mesh.vertices.size());
  for (std::size_t p = 0; p + 2 < points.size(); p += 3) mesh.vertices.push_back({points[p], points[p + 1], points[p + 2]});
  std::vector<std::uint32_t> order;
  if (indices >= 0) {
    if (!reader.Unsigned(indices, order)) return false;
  } else {
    for (std::uint32_t v = 0; v < points.size() / 3; ++v) order.push_back(v);
  }
  for (std::uint32_t index : order) mesh.faces.push_back(base + static_cast<std::int32_t>(std::min<std::uint32_t>(index, 0x7FFFFFFF)));
  mesh.faces.resize(mesh.faces.size() / 3 * 3);
  return true;
}

// A node's triangles: a helper's from its extras, anything else's from its mesh.
bool ReadShape(const tinygltf::Model& model, const tinygltf::Node& node, AccessorReader& reader, util::CMesh& mesh) {
  if (node.extras.IsObject() && node.extras.Has(kHelper) && node.extras.Get(kHelper).IsObject()) {
    const tinygltf::Value& helper = node.extras.Get(kHelper);
    const int positions = IndexIn(helper, "positions");
    return positions < 0 || AppendTriangles(reader, positions, IndexIn(helper, "faces"), mesh);
  }
  if (node.mesh < 0) return true;
  for (const tinygltf::Primitive& primitive : model.meshes[static_cast<std::size_t>(node.mesh)].primitives) {
    if (primitive.mode != kTriangles && primitive.mode != -1) continue;
    const auto position = primitive.attributes.find("POSITION");
    if (position != primitive.attributes.end() && !AppendTriangles(reader, position->second, primitive.indices, mesh)) {
      return false;
    }
  }
  return true;
}

ObjectKind KindOf(const tinygltf::Node& node) {
  if (node.extras.IsObject() && node.extras.Has(kHelper)) return ObjectKind::kHelper;
  if (node.camera >= 0) return ObjectKind::kCamera;
  if (node.mesh >= 0) return ObjectKind::kMesh;
  if (node.extensions.count(kLights)) return ObjectKind::kLight;
  return ObjectKind::kEmpty;
}

bool BoolExtra(const tinygltf::Value::Object& extras, const char* name, bool fallback) {
  const auto found = extras.find(name);
  return found != extras.end() && found->second.IsBool() ? found->second.Get<bool>() : fallback;
}

// Our flags are written only where they differ from the default, so a
// user's node carries nothing of ours it doesn't need.
void SetFlag(tinygltf::Value::Object& extras, const char* name, bool value, bool fallback) {
  if (value == fallback) {
    extras.erase(name);
  } else {
    extras[name] = tinygltf::Value(value);
  }
}

// A helper is a node without a mesh, so viewers and renderers leave it out;
// its shape is kept in accessors that its extras name.
tinygltf::Value HelperShape(tinygltf::Model& model, int buffer, const util::CMesh& mesh) {
  tinygltf::Value::Object shape;
  if (!mesh.faces.empty()) {
    std::vector<float> points;
    for (const Vector3<double>& v : mesh.vertices) points.insert(points.end(), {float(v.x), float(v.y), float(v.z)});
    shape["positions"] = tinygltf::Value(AppendFloats(model, buffer, points, TINYGLTF_TYPE_VEC3, true));
    const std::vector<std::uint32_t> faces(mesh.faces.begin(), mesh.faces.end());
    shape["faces"] = tinygltf::Value(AppendUnsigned(model, buffer, faces));
  }
  return tinygltf::Value(std::move(shape));
}

int AppendMesh(tinygltf::Model& model, int buffer, const std::string& name, const util::CMesh& mesh) {
  std::vector<float> points;
  for (const Vector3<double>& v : mesh.vertices) points.insert(points.end(), {float(v.x), float(v.y), float(v.z)});
  tinygltf::Primitive primitive;
  primitive.mode = kTriangles;
  primitive.attributes["POSITION"] = AppendFloats(model, buffer, points, TINYGLTF_TYPE_VEC3, true);
  primitive.indices = AppendUnsigned(model, buffer, std::vector<std::uint32_t>(mesh.faces.begin(), mesh.faces.end()));
  tinygltf::Mesh gltfMesh;
  gltfMesh.name = name;
  gltfMesh.primitives.push_back(primitive);
  model.meshes.push_back(gltfMesh);
  return static_cast<int>(model.meshes.size() - 1);
}

void WritePose(tinygltf::Node& target, const TransformKey& pose) {
  target.matrix.clear();
  target.translation = {pose.position.x, pose.position.y, pose.position.z};
  target.rotation = {pose.rotation.x, pose.rotation.y, pose.rotation.z, pose.rotation.w};
  target.scale = {pose.scale.x, pose.scale.y, pose.scale.z};
}

// The scene root's strings (the tools that have no node to carry them)
// travel as string extras of the glTF scene; other extras stay as they are.
void ReadRootProperties(const tinygltf::Scene& source, SceneNode& root) {
  if (!source.extras.IsObject()) return;
  for (const auto& [key, value] : source.extras.Get<tinygltf::Value::Object>()) {
    if (value.IsString()) root.properties[key] = value.Get<std::string>();
  }
}

void WriteRootProperties(const SceneNode& root, tinygltf::Scene& target) {
  if (!target.extras.IsObject() && root.properties.empty()) return;
  tinygltf::Value::Object extras =
      target.extras.IsObject() ? target.extras.Get<tinygltf::Value::Object>() : tinygltf::Value::Object();
  for (auto it = extras.begin(); it != extras.end();) {
    it = it->second.IsString() && !root.properties.count(it->first) ? extras.erase(it) : std::next(it);
  }
  for (const auto& [key, value] : root.properties) extras[key] = tinygltf::Value(value);
  target.extras = extras.empty() ? tinygltf::Value() : tinygltf::Value(std::move(extras));
}

// Texts of a binary file's JSON are never cut out: they are blobs already.
constexpr std::size_t kNoLongTexts = std::numeric_limits<std::size_t>::max();

// The bytes for the parser and the facts of the file's JSON. A binary file
// as we write it comes without its long texts, which come in `texts`.
// Each embedded buffer's data, decoded here rather than by the parser, for the
// folder to serve. One our decoder refuses is left to the parser and its message.
void EmbedBuffers(std::string_view text, std::vector<EmbeddedBuffer>& buffers, SceneFolder& folder) {
  std::vector<util::Bytes> decoded(buffers.size());
  std::vector<char> decodedWell(buffers.size(), 0);
  util::ForEachInParallel(buffers.size(), [&](std::size_t i) {
    const EmbeddedBuffer& buffer = buffers[i];
    const std::size_t data = buffer.begin + 1 + buffer.header.size();
    decodedWell[i] = util::Base64::Decode(text.substr(data, buffer.end - 1 - data), decoded[i]);
  });
  std::size_t kept = 0;
  for (std::size_t i = 0; i < buffers.size(); ++i) {
    if (!decodedWell[i]) continue;
    folder.Embed(EmbeddedBufferUri(buffers[i].buffer), std::move(decoded[i]));
    buffers[kept++] = std::move(buffers[i]);
  }
  buffers.resize(kept);
}

bool ReadScene(const std::string& path, SceneFolder& folder, std::vector<unsigned char>& bytes, JsonFacts& facts,
               std::map<int, std::string>& texts, std::string& problem) {
  RegularFile file;
  if (!file.Open(path, problem)) return false;
  if (file.Size() == 0) {
    problem = "the file is empty";
    return false;
  }
  GlbChunks chunks;
  if (ReadGlbChunks(file, chunks)) {
    if (!ScanJson(chunks.json, facts, problem, kNoLongTexts)) return false;
    GlbParts parts;
    if (!ReadGlbParts(file, chunks, parts)) return file.ReadAll(bytes, problem);
    bytes = std::move(parts.container);
    texts = std::move(parts.texts);
    return true;
  }
  if (!file.ReadAll(bytes, problem)) return false;
  const bool binary = IsBinary(bytes);
  // A text file's long node texts are cut out before the parser sees them.
  if (!ScanJson(JsonText(bytes, binary), facts, problem, binary ? kNoLongTexts : kBlobThreshold)) return false;
  EmbedBuffers(JsonText(bytes, binary), facts.embeddedBuffers, folder);
  if (!facts.longNodeTexts.empty() || !facts.embeddedBuffers.empty()) {
    const std::string cut = WithoutLongValues(JsonText(bytes, binary), facts);
    bytes.assign(cut.begin(), cut.end());
  }
  return true;
}

}  // namespace

GltfFile::GltfFile() : model_(std::make_unique<tinygltf::Model>()) {}
GltfFile::~GltfFile() = default;

bool GltfFile::Load(const std::string& path, Scene& scene, std::string* error) {
  auto fail = [&](const std::string& problem) {
    if (error) *error = path + ": " + problem;
    return false;
  };
  std::vector<unsigned char> bytes;
  JsonFacts facts;
  std::map<int, std::string> longTexts;
  std::string problem;
  SceneFolder folder(std::filesystem::absolute(path).parent_path());
  if (!ReadScene(path, folder, bytes, facts, longTexts, problem)) return fail(problem);
  const bool binary = IsBinary(bytes);
  for (std::size_t b = 0; b < facts.bufferUris.size(); ++b) {
    const std::string& uri = facts.bufferUris[b];
    if (!uri.empty() && !IsDataUri(uri) && !folder.Allow(uri, problem)) {
      return fail("buffer " + std::to_string(b) + ": \"uri\" " + problem);
    }
  }

  auto model = std::make_unique<tinygltf::Model>();
  tinygltf::TinyGLTF loader;
  loader.SetImageLoader(KeepImage, nullptr);
  loader.SetFsCallbacks(folder.Callbacks());
  std::string err, warn;
  bool read = false;
  // The library throws what it can't allocate; nothing of it goes further.
  try {
    const auto size = static_cast<unsigned int>(bytes.size());
    read = binary ? loader.LoadBinaryFromMemory(model.get(), &err, &warn, bytes.data(), size, folder.Path())
                  : loader.LoadASCIIFromString(model.get(), &err, &warn, reinterpret_cast<const char*>(bytes.data()), size,
                                               folder.Path());
  } catch (const std::exception& thrown) {
    err = thrown.what();
  }
  if (!read) return fail(err.empty() ? "not a glTF file" : Shortened(err));
  for (const EmbeddedBuffer& embedded : facts.embeddedBuffers) {
    if (embedded.buffer < model->buffers.size()) model->buffers[embedded.buffer].uri = embedded.header;
  }
  PutBackNodelessChannels(*model, facts.nodelessChannels);
  for (LongNodeText& long_ : facts.longNodeTexts) {
    if (long_.node >= model->nodes.size() || !model->nodes[long_.node].extras.IsObject()) continue;
    model->nodes[long_.node].extras.Get<tinygltf::Value::Object>()[long_.key] = tinygltf::Value(std::move(long_.text));
  }

  // Everything is read and checked before the scene changes.
  int sceneIndex = 0;
  if (!CheckDataBounds(*model, problem) || !RestoreLongExtras(*model, longTexts, problem) || !CheckNodes(*model, problem) ||
      !FindScene(*model, sceneIndex, problem)) {
    return fail(problem);
  }
  AccessorReader reader(*model, problem);
  const std::size_t count = model->nodes.size();
  std::vector<util::CMesh> meshes(count);
  for (std::size_t i = 0; i < count; ++i) {
    if (!ReadShape(*model, model->nodes[i], reader, meshes[i])) return fail(problem);
  }
  std::vector<TransformTrack> tracks;
  if (!ReadTransformTracks(*model, tracks, problem)) return fail(problem);
  std::vector<CameraData> lenses(count);
  for (std::size_t i = 0; i < count; ++i) {
    if (KindOf(model->nodes[i]) == ObjectKind::kCamera && !ReadLens(*model, model->nodes[i], reader, lenses[i], problem)) {
      return fail(NodePlace(*model, i) + ": " + problem);
    }
  }

  // The tree from the scene's roots; a node is taken once, whatever the file says.
  std::vector<int> roots;
  if (static_cast<std::size_t>(sceneIndex) < model->scenes.size()) {
    roots = model->scenes[static_cast<std::size_t>(sceneIndex)].nodes;
    ReadRootProperties(model->scenes[static_cast<std::size_t>(sceneIndex)], scene.Root());
  }
  std::set<int> taken;
  std::map<SceneNode::Handle, int> nodeOf;
  std::vector<std::pair<int, SceneNode*>> pending;
  // A stack: pushed last first, so that children keep the file's order.
  for (auto root = roots.rbegin(); root != roots.rend(); ++root) pending.emplace_back(*root, &scene.Root());
  while (!pending.empty()) {
    const auto [index, parent] = pending.back();
    pending.pop_back();
    if (!taken.insert(index).second) continue;
    tinygltf::Node& source = model->nodes[static_cast<std::size_t>(index)];
    static const tinygltf::Value::Object kNoExtras;
    tinygltf::Value::Object* held = source.extras.IsObject() ? &source.extras.Get<tinygltf::Value::Object>() : nullptr;
    const tinygltf::Value::Object& extras = held ? *held : kNoExtras;
    SceneNode* node = scene.CreateNode(KindOf(source), source.name, parent);
    nodeOf[node->handle] = index;
    node->mesh = meshes[static_cast<std::size_t>(index)];
    node->visible = !BoolExtra(extras, "rgw_hidden", false);
    node->wireframe = BoolExtra(extras, "rgw_wireframe", true);
    node->backfaceCull = BoolExtra(extras, "rgw_backface_cull", false);
    node->camera = std::move(lenses[static_cast<std::size_t>(index)]);
    node->track = std::move(tracks[static_cast<std::size_t>(index)]);
    // The node's strings move into the scene, which a save writes them back from:
    // a tool's tag, the bulk of a file, is then held once.
    if (held) {
      for (auto it = held->begin(); it != held->end();) {
        if (!it->second.IsString()) {
          ++it;
          continue;
        }
        node->properties[it->first] = std::move(it->second.Get<std::string>());
        it = held->erase(it);
      }
    }
    for (auto child = source.children.rbegin(); child != source.children.rend(); ++child) pending.emplace_back(*child, node);
  }
  scene.clock.SetFrameRate(FrameRateOf(*model));
  // The bytes of the texts taken out of the binary chunk go now, not at the next save.
  PruneUnusedData(*model);
  model_ = std::move(model);
  nodeOf_ = std::move(nodeOf);
  kept_ = std::move(facts.keptMembers);
  folder_ = std::filesystem::absolute(path).parent_path();
  return true;
}

bool GltfFile::Save(const std::string& path, Scene& scene, std::string* error) {
  tinygltf::Model& model = *model_;
  if (model.asset.version.empty()) model.asset.version = "2.0";
  model.asset.generator = "Rigworks";
  StoreFrameRate(model, scene.clock.GetFrameRate());
  // New data goes after what the first buffer holds; pruning then drops the
  // bytes it replaced, so a file saved again is the file saved the first time.
  // The texts an earlier save put there go first, so that the buffer never
  // holds a tool's state twice.
  ForgetLongExtras(model);
  PruneUnusedData(model);
  if (model.buffers.empty()) model.buffers.emplace_back();
  const int buffer = 0;

  // Each scene node to its glTF node, made for nodes the file didn't have;
  // in the scene's order, so that the same scene writes the same file.
  std::map<const SceneNode*, int> indexOf;
  std::vector<std::pair<SceneNode*, int>> ordered;
  std::set<int> known;
  for (const auto& entry : nodeOf_) known.insert(entry.second);
  scene.Walk([&](SceneNode& node) {
    if (node.isRoot) return;
    auto found = nodeOf_.find(node.handle);
    if (found == nodeOf_.end()) {
      model.nodes.emplace_back();
      found = nodeOf_.emplace(node.handle, static_cast<int>(model.nodes.size() - 1)).first;
    }
    indexOf[&node] = found->second;
    ordered.emplace_back(&node, found->second);
  });
  // Nodes taken out of the scene are unlinked, not removed: other parts of
  // the file may still name their index.
  for (tinygltf::Node& node : model.nodes) node.children.clear();
  std::vector<int> roots;
  std::vector<std::pair<int, const TransformTrack*>> changed;
  for (const auto& [node, index] : ordered) {
    tinygltf::Node& target = model.nodes[static_cast<std::size_t>(index)];
    target.name = node->hostName;
    if (node->trackChanged || !known.count(index)) {
      WritePose(target, node->track.StaticPose());
      changed.emplace_back(index, &node->track);
    }
    for (const SceneNode* child : node->children) target.children.push_back(indexOf[child]);
    if (node->parent && node->parent->isRoot) roots.push_back(index);
    tinygltf::Value::Object extras;
    if (target.extras.IsObject()) extras = std::move(target.extras.Get<tinygltf::Value::Object>());
    // String extras are the node's properties: one the scene dropped goes from the file too.
    for (auto it = extras.begin(); it != extras.end();) {
      it = it->second.IsString() && !node->properties.count(it->first) ? extras.erase(it) : std::next(it);
    }
    for (auto& [key, value] : node->properties) {
      // A tool's tag is made for each save and can be the bulk of the file:
      // it moves into the file rather than being copied.
      extras[key] = tinygltf::Value(key == kTagProperty ? std::move(value) : value);
    }
    SetFlag(extras, "rgw_hidden", !node->visible, false);
    if (node->kind == ObjectKind::kHelper) {
      target.mesh = -1;
      extras[kHelper] = HelperShape(model, buffer, node->mesh);
      SetFlag(extras, "rgw_wireframe", node->wireframe, true);
      SetFlag(extras, "rgw_backface_cull", node->backfaceCull, false);
    }
    if (node->kind == ObjectKind::kMesh && target.mesh < 0 && !node->mesh.faces.empty()) {
      target.mesh = AppendMesh(model, buffer, node->hostName, node->mesh);
    }
    target.extras = extras.empty() ? tinygltf::Value() : tinygltf::Value(std::move(extras));
    if (node->kind == ObjectKind::kCamera) WriteLens(model, buffer, index, node->camera, node->lensChanged || !known.count(index));
  }
  std::sort(roots.begin(), roots.end());
  if (model.scenes.empty()) model.scenes.emplace_back();
  // A default scene the file doesn't have is taken as the first.
  const bool hasDefault = model.defaultScene >= 0 && static_cast<std::size_t>(model.defaultScene) < model.scenes.size();
  const int sceneIndex = hasDefault ? model.defaultScene : 0;
  model.scenes[static_cast<std::size_t>(sceneIndex)].nodes = roots;
  WriteRootProperties(scene.Root(), model.scenes[static_cast<std::size_t>(sceneIndex)]);
  model.defaultScene = sceneIndex;

  WriteTransformTracks(model, buffer, changed);
  PruneUnusedData(model);
  DeclarePointerExtension(model);
  // Long texts go where bytes cost nothing to keep: after the first buffer,
  // when it is written as bytes.
  const bool binary = HasBinaryExtension(path);
  const std::vector<BufferPlace> places = BufferPlaces(model, binary);
  if (binary || (!places.empty() && places.front() != BufferPlace::kEmbedded)) {
    longTexts_ = TakeLongExtras(model);
  } else {
    MarkLongExtras(model, splicer_);
  }
  const bool written = Write(path, error);
  longTexts_ = {};
  splicer_.Clear();
  return written;
}

std::vector<GltfFile::WeightsAnimation> GltfFile::WeightsAnimations() const {
  std::vector<WeightsAnimation> found;
  std::string problem;
  AccessorReader reader(*model_, problem);
  for (const tinygltf::Animation& clip : model_->animations) {
    for (const tinygltf::AnimationChannel& channel : clip.channels) {
      if (channel.target_path != "weights" || channel.target_node < 0 ||
          static_cast<std::size_t>(channel.target_node) >= model_->nodes.size() || channel.sampler < 0 ||
          static_cast<std::size_t>(channel.sampler) >= clip.samplers.size()) {
        continue;
      }
      std::vector<double> times;
      if (!reader.Floats(clip.samplers[static_cast<std::size_t>(channel.sampler)].input, 1, times) || times.empty()) continue;
      found.push_back({model_->nodes[static_cast<std::size_t>(channel.target_node)].name, clip.name, times.size(),
                       times.front(), times.back()});
    }
  }
  return found;
}

}  // namespace vuk::rgw::adaptor::standalone
