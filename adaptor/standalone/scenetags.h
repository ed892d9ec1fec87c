#pragma once
// The tags that carry tools in a scene: each node of a tool says which tool
// and which of its nodes it is, and the first node of a tool carries the
// tool's whole saved state.

#include <string>
#include <vector>

#include "core/adaptorinterface.h"
#include "util/xml/element.h"

namespace vuk::rgw::adaptor::standalone {

constexpr const char* kTagProperty = "RGT_tag";

// "RGT_tag" with "name" and "objectname".
util::xml::Element MakeNodeTag(const std::string& instanceName, const std::string& objectName);
// "masternodes" as the instance fills it.
util::xml::Element MakeMasterNodes(core::InstanceHandle instance);

// The tool's name that a tag which doesn't parse as a whole still shows in
// its first "name"; empty when it shows none.
std::string NameInDamagedTag(const std::string& text);

// Adds a master element for each tool of the scene root's "RGT": the tools
// that have no node of their own, so that those below them find them.
void AddRootTools(const util::xml::Element& tree, std::vector<util::xml::Element>& masters);

// Unpacks a master's compressed "RGT_Plugin" in place. False when its blob
// is empty or damaged: the tool can't be made from it.
bool UnpackMaster(util::xml::Element& master);
// UnpackMaster on each, the tools shared among the cores: each unpacks on its own.
std::vector<char> UnpackMasters(std::vector<util::xml::Element>& masters);

// True when the "RGT_Plugin" was written in a layout newer than this
// program's: making the tool would lose what it can't read.
bool IsNewerLayout(const util::xml::Element& plugin);

// The "RGT" element of the tools that unpacked master elements describe:
// repeats of one tool (from merging a file twice) dropped, children placed
// below their parents in the order of "childindex".
util::xml::Element BuildGatheredTree(std::vector<util::xml::Element> masters);

}  // namespace vuk::rgw::adaptor::standalone
