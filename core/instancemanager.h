#pragma once
// The tool tree and the making of tools: new ones by name, and saved ones
// from "RGT_Plugin" elements, each a template of itself.

#include <memory>
#include <string>
#include <vector>

#include "core/adaptorinterface.h"
#include "core/librarymanager.h"
#include "core/instancereference.h"
#include "core/recordmanager.h"

namespace vuk::rgw::core {

class InstanceManager final : public InstanceList {
 public:
  // Tools below tools are made, saved and walked recursively. Real rigs nest
  // a handful of levels; 64 is far past any of them and far within the stack.
  static constexpr std::size_t kMaxToolDepth = 64;

  InstanceManager(AdaptorInterface* adaptor, const LibraryManager* library);

  // How many levels of tools an "RGT" list or a bare "RGT_Plugin" holds.
  static std::size_t ToolDepth(const util::xml::Element& tree);

  InstanceReference& Root() { return root_; }
  // A new tool below the parent (the root when null); null when the tool
  // is unknown or refuses.
  InstanceReference* Create(const std::string& toolName, const std::string& name = "",
                            InstanceReference* parent = nullptr);
  InstanceReference* Find(const std::string& instanceName);

  // Tree order; the checked ones are those whose check state is 1, at any depth.
  std::vector<Instance*> AllInstances() override;
  std::vector<Instance*> CheckedInstances() override;
  // The names of all tools, in tree order.
  std::vector<std::string> InstanceNames();

  // The whole tree with its recorded data.
  util::xml::Element SaveToolTree() const { return root_.Serialize(InstanceReference::kFullContent); }
  // Makes the tools an "RGT" (or a bare "RGT_Plugin") element describes, in
  // one undo group; answers how many tools were made. Tools below the
  // deepest level allowed are left out, with a box that says so.
  int LoadToolTree(const util::xml::Element& tree);
  // Puts every tool's tags on its nodes for a scene save.
  void WriteNodeTags();
  // Deletes a tool and those below it, last child first, in one undo group;
  // with `unplugOnly` the nodes stay in the scene, free of their tools.
  void Delete(InstanceReference* item, bool unplugOnly);
  // A copy of the tool with new nodes that take over the source's poses and
  // outside parents; nodes of other tools below the source's are copied
  // below the copy's.
  InstanceReference* Clone(InstanceReference* item);
  // Moves the tool, with those below it, to the end of another tool's
  // children (the root's when null), undoable; false when that would put
  // it below itself.
  bool Move(InstanceReference* item, InstanceReference* newParent);
  // Gives the tool a new name, undoable; false for an empty name or one that
  // another tool has.
  bool Rename(InstanceReference* item, const std::string& newName);
  // Every tool out of the tree, last first, without undo; the scene's nodes
  // are left as they are (a new scene has dropped them already).
  void RemoveAll();
  // "RGT" with one element per top-level tool that has no nodes of its own:
  // those the scene's node tags can't carry.
  util::xml::Element SaveToolTreeForScene() const;

 private:
  // A node below a node of another tool, linked once that tool is made.
  struct PendingLink {
    CoreNode* node;
    std::string instanceName;
    std::string parentName;
  };

  // `depth` is the level of the tool made, 1 at the top of what is loaded.
  InstanceReference* MakeFromElement(const util::xml::Element& plugin, InstanceReference* parent,
                                     std::size_t depth = 1);
  // Gives the tool's nodes their saved meshes and parents.
  void RestoreNodes(Instance& tool, const util::xml::Element& nodeInfo);
  // Links what waits for tools made in this load; at the end of the load
  // also for tools that were there before, by their names.
  void ResolveLinks(bool loadEnded);
  void EndLoad();

  AdaptorInterface* adaptor_;
  const LibraryManager* library_;
  InstanceReference root_;
  // For the load under way: each tool made by its saved name, and the links
  // still waiting for a tool.
  std::vector<std::pair<std::string, Instance*>> loaded_;
  std::vector<PendingLink> pendingLinks_;
};

}  // namespace vuk::rgw::core
