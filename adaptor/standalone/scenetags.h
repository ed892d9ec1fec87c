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

// Adds a master element for each tool of the scene root's "RGT": the tools
// that have no node of their own, so that those below them find them.
void AddRootTools(const util::xml::Element& tree, std::vector<util::xml::Element>& masters);

// The "RGT" element of the tools that master elements describe: compressed
// states unpacked, repeats of one tool (from merging a file twice) dropped,
// children placed below their parents in the order of "childindex".
util::xml::Element BuildGatheredTree(std::vector<util::xml::Element> masters);

}  // namespace vuk::rgw::adaptor::standalone
