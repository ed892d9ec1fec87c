#pragma once
// The tool tree: one item per tool instance under the root "RGT", with the
// check state and the two visibility states of each tool. An item writes
// its tool, and those below it, as one "RGT_Plugin" element. The GUI shows
// the tree through a view of its own (gui/tooltree).

#include <array>
#include <cstdint>
#include <memory>
#include <string>

#include "core/instance.h"
#include "core/polyvisibility.h"
#include "util/compositedynamic.h"
#include "util/dynamicobject.h"
#include "util/mesh.h"
#include "util/xml/element.h"

namespace vuk::rgw::core {

class TreeItem : public util::DynamicObject, public util::Composite_Dynamic<TreeItem> {
 public:
  enum Slot { kChecked = 0, kHighPoly = 1, kLowPoly = 2 };

  // Links a child at the end and becomes its parent.
  void Link(TreeItem* child);
  // The position among the parent's children, or 0 for the root.
  std::int32_t ChildIndex() const;

  TreeItem* parent = nullptr;
  std::array<std::int32_t, 3> states{1, 1, 1};
};

class InstanceReference : public TreeItem {
 public:
  // Flags of Serialize.
  static constexpr std::uint32_t kFullContent = 0x1;
  static constexpr std::uint32_t kNoChildren = 0x10000;
  static constexpr std::uint32_t kCompress = 0x20000;
  static constexpr std::uint32_t kForScene = 0x30001;
  // The layout of "RGT_Plugin" this program writes, and the newest it reads.
  static constexpr const char* kLayoutVersion = "2.5";

  // The root of the tree has no instance and is named "RGT".
  InstanceReference() : deletable(false) {}
  explicit InstanceReference(std::unique_ptr<Instance> owned);
  ~InstanceReference() override;

  std::string GetLabel() const;
  // The "RGT_Plugin" element of this tool and, unless told not to, of those
  // below it; compressed into one blob when asked.
  util::xml::Element Serialize(std::uint32_t flags) const;
  // "masternode": the parent's name, the child index and the tool compressed.
  util::xml::Element MasterNode() const;

  // Sets a state slot; turning a visibility slot off hides the tool's
  // models of that kind in the scene, turning it on shows them as they were.
  void SetState(Slot slot, std::int32_t state);

  std::unique_ptr<Instance> instance;
  bool deletable = true;

 private:
  ModelSet highPoly_{ModelSet::Kind::kHighPoly};
  ModelSet lowPoly_{ModelSet::Kind::kLowPoly};
};

// The "mesh" of a node's saved information: the four arrays of the mesh,
// each a blob of little-endian numbers.
util::xml::Element MeshElement(const util::CMesh& mesh);
// False, with the mesh untouched, when a blob is damaged.
bool ReadMeshElement(const util::xml::Element& element, util::CMesh& mesh);

}  // namespace vuk::rgw::core
