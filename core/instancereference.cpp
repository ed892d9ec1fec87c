#include "core/instancereference.h"

#include <algorithm>

#include "util/base64.h"
#include "util/compressedblock.h"
#include "util/xml/tag.h"

namespace vuk::rgw::core {

using util::xml::Element;
using util::xml::Tag;
using util::xml::TagWithData;

namespace {

std::string Blob(const void* bytes, std::size_t size) {
  return util::Base64::Encode(static_cast<const std::uint8_t*>(bytes), size);
}

// The matrix as the 128 bytes of its sixteen doubles, little-endian.
std::string MatrixBlob(const util::Matrix<double>& matrix) {
  util::Bytes bytes;
  util::ByteWriter writer(bytes);
  for (double element : matrix.m) writer.Put(element);
  return Blob(bytes.data(), bytes.size());
}

template <typename T>
void PutNumbers(util::ByteWriter& writer, const std::vector<T>& values) {
  for (const T& value : values) writer.Put(value);
}

void PutNumbers(util::ByteWriter& writer, const std::vector<util::Vector3<double>>& points) {
  for (const auto& point : points) {
    writer.Put(point.x);
    writer.Put(point.y);
    writer.Put(point.z);
  }
}

bool GetNumber(util::ByteReader& reader, std::int32_t& value) { return reader.Get(value); }

bool GetNumber(util::ByteReader& reader, util::Vector3<double>& point) {
  return reader.Get(point.x) && reader.Get(point.y) && reader.Get(point.z);
}

template <typename T>
Element ArrayBlob(const char* name, const std::vector<T>& values) {
  util::Bytes bytes;
  util::ByteWriter writer(bytes);
  PutNumbers(writer, values);
  return TagWithData(name, Blob(bytes.data(), bytes.size()));
}

template <typename T>
bool ReadArrayBlob(const Element& blob, std::vector<T>& values) {
  util::Bytes bytes;
  if (!util::Base64::Decode(blob.GetText(), bytes)) return false;
  util::ByteReader reader(bytes);
  std::vector<T> read;
  T value{};
  while (reader.Remaining() > 0) {
    if (!GetNumber(reader, value)) return false;
    read.push_back(value);
  }
  values = std::move(read);
  return true;
}

// Whole triangles whose corners all exist.
bool ValidFaces(const std::vector<std::int32_t>& faces, std::size_t corners) {
  return faces.size() % 3 == 0 && std::all_of(faces.begin(), faces.end(), [&](std::int32_t index) {
           return index >= 0 && static_cast<std::size_t>(index) < corners;
         });
}

// "parent": the parent's name in this tool, or in another tool named by
// "external"; empty for a scene object, the scene's root or none.
Element ParentOf(Instance& instance, CoreNode& node) {
  Tag parent("parent");
  CNode* up = node.GetParent();
  const auto* wrapper = static_cast<CoreNode*>(up);
  if (wrapper && wrapper->owner) {
    if (wrapper->owner != static_cast<CInterface*>(&instance)) {
      parent.SetAttribute("external") = InstanceName(wrapper->owner);
    }
    parent.AddChild(util::xml::Text(wrapper->name));
  }
  if (up) node.ReleaseWrapper(up);
  return std::move(parent);
}

Element NodeInfo(Instance& instance) {
  Tag info("nodeinfo");
  NodeVector nodes;
  instance.GetAdaptor()->GetInstanceNodes(&instance, nodes);
  const double now = instance.GetAdaptor()->GetTime();
  for (CoreNode* node : nodes.nodes) {
    Tag entry("node");
    entry.AddChild(TagWithData("name", node->name));
    entry.AddChild(TagWithData("objectname", node->GetHostName()));
    if (CSnapshot_Lens* lens = node->GetLensSnapshot(now)) {
      entry.SetAttribute("type") = "camera";
      Tag lensElement("lens");
      lensElement.SetAttribute("fov") = std::to_string(lens->GetFOV());
      entry.AddChild(lensElement);
      node->ReleaseLensSnapshot(lens);
    }
    if (CSnapshot* snapshot = node->GetSnapshot(now)) {
      Tag global("transform"), local("transform");
      global.SetAttribute("reference") = "global";
      global.AddChild(util::xml::Text(MatrixBlob(snapshot->GetWorldTransform())));
      local.SetAttribute("reference") = "local";
      local.AddChild(util::xml::Text(MatrixBlob(snapshot->GetLocalTransform())));
      entry.AddChild(global);
      entry.AddChild(local);
      node->ReleaseSnapshot(snapshot);
    }
    entry.AddChild(ParentOf(instance, *node));
    entry.AddChild(TagWithData("visible", node->IsVisible() ? "true" : "false"));
    if (CSnapshot_Mesh* mesh = node->GetMeshSnapshot(now)) {
      entry.AddChild(MeshElement(mesh->GetMesh()));
      node->ReleaseMeshSnapshot(mesh);
    }
    info.AddChild(entry);
  }
  return std::move(info);
}

}  // namespace

Element MeshElement(const util::CMesh& mesh) {
  Tag element("mesh");
  element.AddChild(ArrayBlob("vertices", mesh.vertices));
  element.AddChild(ArrayBlob("texturevertices", mesh.textureVertices));
  element.AddChild(ArrayBlob("faces", mesh.faces));
  element.AddChild(ArrayBlob("texturefaces", mesh.textureFaces));
  return std::move(element);
}

bool ReadMeshElement(const Element& element, util::CMesh& mesh) {
  util::CMesh read;
  if (!ReadArrayBlob(element.GetChild("vertices"), read.vertices) ||
      !ReadArrayBlob(element.GetChild("texturevertices"), read.textureVertices) ||
      !ReadArrayBlob(element.GetChild("faces"), read.faces) ||
      !ReadArrayBlob(element.GetChild("texturefaces"), read.textureFaces) ||
      !ValidFaces(read.faces, read.vertices.size()) || !ValidFaces(read.textureFaces, read.textureVertices.size())) {
    return false;
  }
  mesh.Assign(read);
  return true;
}

void TreeItem::Link(TreeItem* child) {
  child->parent = this;
  AddChild(child);
}

std::int32_t TreeItem::ChildIndex() const {
  if (!parent) return 0;
  for (std::size_t i = 0; i < parent->GetChildCount(); ++i) {
    if (parent->GetChild(i) == this) return static_cast<std::int32_t>(i);
  }
  return 0;
}

InstanceReference::InstanceReference(std::unique_ptr<Instance> owned) : instance(std::move(owned)) {
  if (instance) instance->SetReference(this);
}

InstanceReference::~InstanceReference() {
  // The children go first, as the tree was built from the root down.
  while (GetChildCount() > 0) RemoveChild(GetChild(GetChildCount() - 1));
}

void InstanceReference::SetState(Slot slot, std::int32_t state) {
  const bool wasOn = states[slot] != 0;
  states[slot] = state;
  if (slot == kChecked || !instance || wasOn == (state != 0)) return;
  ModelSet& models = slot == kHighPoly ? highPoly_ : lowPoly_;
  AdaptorInterface& adaptor = *instance->GetAdaptor();
  const InstanceHandle tool = static_cast<CInterface*>(instance.get());
  if (state != 0) {
    models.ShowBack(adaptor, tool);
  } else {
    models.Hide(adaptor, tool);
  }
  adaptor.RedrawScene();
}

std::string InstanceReference::GetLabel() const {
  return instance ? instance->util::MessageNode::GetName() : std::string("RGT");
}

Element InstanceReference::Serialize(std::uint32_t flags) const {
  Tag plugin("RGT_Plugin");
  plugin.SetAttribute("version") = kLayoutVersion;
  if (instance) {
    Instance& tool = *instance;
    plugin.AddChild(TagWithData("type", tool.GetToolPlugin()->GetName()));
    plugin.AddChild(TagWithData("name", tool.util::MessageNode::GetName()));
    if (states[kChecked] == 0) plugin.AddChild(TagWithData("checked", "false"));
    Tag custom("customdata");
    tool.GetTool()->Extension(extension::kSaveCustomData, &custom);
    plugin.AddChild(custom);
    plugin.AddChild(tool.ConfigProfile());
    Tag input("inputprofile");
    input.AddChild(tool.InputProfile());
    plugin.AddChild(input);
    plugin.AddChild(NodeInfo(tool));
    if (flags & kFullContent) {
      std::int32_t length = 0;
      const std::uint8_t* bytes = tool.GetTool()->Save() == 0 ? tool.GetSaveData(&length) : nullptr;
      if (bytes) plugin.AddChild(TagWithData("savedata", Blob(bytes, static_cast<std::size_t>(length))));
      plugin.AddChild(tool.SaveTracks());
    }
  }
  if (!(flags & kNoChildren)) {
    for (std::size_t i = 0; i < GetChildCount(); ++i) {
      const auto* child = static_cast<const InstanceReference*>(GetChild(i));
      plugin.AddChild(child->Serialize(flags & ~kCompress));
    }
  }
  if (!(flags & kCompress)) return std::move(plugin);
  // Each form is let go as soon as the next is made: saved state runs to
  // tens of megabytes a tool.
  std::string text = plugin.Write("", "");
  plugin.children.clear();
  util::Bytes packed = util::CompressedBlock::Pack(text);
  text = std::string();
  Tag compressed("RGT_Plugin");
  compressed.SetAttribute("compressed") = "1";
  compressed.AddChild(util::xml::Text(util::Base64::Encode(packed)));
  return std::move(compressed);
}

Element InstanceReference::MasterNode() const {
  Tag master("masternode");
  const auto* up = static_cast<const InstanceReference*>(parent);
  if (up && up->instance) master.AddChild(TagWithData("parent", up->GetLabel()));
  master.AddChild(TagWithData("childindex", ChildIndex()));
  master.AddChild(Serialize(kForScene));
  return std::move(master);
}

}  // namespace vuk::rgw::core
