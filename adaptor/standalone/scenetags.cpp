#include "adaptor/standalone/scenetags.h"

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <utility>

#include "core/instancereference.h"
#include "sdk/cextendable.h"
#include "util/base64.h"
#include "util/compressedblock.h"
#include "util/parallel.h"
#include "util/xml/tag.h"

namespace vuk::rgw::adaptor::standalone {

using util::xml::Element;

util::xml::Element MakeNodeTag(const std::string& instanceName, const std::string& objectName) {
  util::xml::Tag tag("RGT_tag");
  tag.AddChild(util::xml::TagWithData("name", instanceName));
  tag.AddChild(util::xml::TagWithData("objectname", objectName));
  return std::move(tag);
}

util::xml::Element MakeMasterNodes(core::InstanceHandle instance) {
  util::xml::Tag masters("masternodes");
  if (instance) instance->Extension(extension::kMasterNode, &masters);
  return std::move(masters);
}

std::string NameInDamagedTag(const std::string& text) {
  const std::string close = "</name>";
  const std::size_t end = text.find(close);
  if (end == std::string::npos) return {};
  Element start;
  if (start.ParseText(text.substr(0, end + close.size()) + "</RGT_tag>") != util::xml::kParsed) return {};
  return start.GetChild("name").GetText();
}

void AddRootTools(const util::xml::Element& tree, std::vector<util::xml::Element>& masters) {
  for (std::size_t i = 0, n = tree.CountChildren("RGT_Plugin"); i < n; ++i) {
    util::xml::Tag master("masternode");
    master.AddChild(tree.GetChild("RGT_Plugin", i));
    masters.push_back(std::move(master));
  }
}

namespace {

std::string PluginName(const Element& master) { return master.GetChild("RGT_Plugin").GetChild("name").GetText(); }

struct Builder {
  Element* master;
  int childIndex = 0;
  std::vector<Builder*> children;
};

void SortByChildIndex(std::vector<Builder*>& builders) {
  std::stable_sort(builders.begin(), builders.end(),
                   [](const Builder* a, const Builder* b) { return a->childIndex < b->childIndex; });
}

// Each master goes into the tree once: its "RGT_Plugin" is moved, not copied.
Element TreeOf(Builder& builder) {
  Element plugin;
  for (auto& child : builder.master->children) {
    if (child->name == "RGT_Plugin") {
      plugin = std::move(*child);
      break;
    }
  }
  SortByChildIndex(builder.children);
  for (Builder* child : builder.children) plugin.AddChild(TreeOf(*child));
  return plugin;
}

// "2.5" as its two numbers; 0.0 for what isn't a version.
std::pair<long, long> VersionNumbers(const std::string& text) {
  char* end = nullptr;
  const long major = std::strtol(text.c_str(), &end, 10);
  return {major, *end == '.' ? std::strtol(end + 1, nullptr, 10) : 0};
}

}  // namespace

bool UnpackMaster(Element& master) {
  for (auto& child : master.children) {
    Element& plugin = *child;
    if (plugin.name != "RGT_Plugin" || plugin.GetAttribute("compressed") != "1") continue;
    if (plugin.children.size() != 1 || plugin.children[0]->kind != Element::kText) return true;
    util::Bytes packed, text;
    if (!util::Base64::Decode(plugin.children[0]->name, packed) || packed.empty()) return false;
    plugin.children.clear();  // its text is in `packed` now
    // A tool's text is markup, never a run of one byte: no more than its code holds.
    const std::size_t limit = util::CompressedBlock::MostUnpackedFromCode(packed.size());
    if (util::CompressedBlock::Unpack(packed.data(), packed.size(), text, nullptr, limit) ==
        util::CompressedBlock::Unpacked::kDamaged) {
      return false;
    }
    packed = util::Bytes();
    Element unpacked;
    if (unpacked.ParseText(std::string_view(reinterpret_cast<const char*>(text.data()), text.size())) !=
        util::xml::kParsed) {
      return false;
    }
    plugin = std::move(unpacked);
    return true;
  }
  return true;
}

std::vector<char> UnpackMasters(std::vector<Element>& masters) {
  std::vector<char> unpacked(masters.size());
  util::ForEachInParallel(masters.size(), [&](std::size_t i) { unpacked[i] = UnpackMaster(masters[i]); });
  return unpacked;
}

bool IsNewerLayout(const Element& plugin) {
  return VersionNumbers(plugin.GetAttribute("version")) > VersionNumbers(core::InstanceReference::kLayoutVersion);
}

Element BuildGatheredTree(std::vector<Element> kept) {
  // One tool, however many merges brought it: the first stands.
  for (std::size_t i = 0; i < kept.size(); ++i) {
    for (std::size_t j = kept.size(); j-- > i + 1;) {
      if (PluginName(kept[j]) == PluginName(kept[i])) kept.erase(kept.begin() + static_cast<std::ptrdiff_t>(j));
    }
  }

  std::vector<Builder> builders(kept.size());
  for (std::size_t i = 0; i < kept.size(); ++i) builders[i].master = &kept[i];
  std::vector<Builder*> roots;
  for (std::size_t i = builders.size(); i-- > 0;) {
    Builder& builder = builders[i];
    builder.childIndex = std::atoi(builder.master->GetChild("childindex").GetText().c_str());
    const std::string parent = builder.master->GetChild("parent").GetText();
    Builder* parentBuilder = nullptr;
    if (!parent.empty()) {
      for (Builder& candidate : builders) {
        if (&candidate != &builder && PluginName(*candidate.master) == parent) parentBuilder = &candidate;
      }
    }
    if (parentBuilder) {
      parentBuilder->children.push_back(&builder);
    } else {
      roots.push_back(&builder);
    }
  }
  SortByChildIndex(roots);
  util::xml::Tag tree("RGT");
  for (Builder* root : roots) tree.AddChild(TreeOf(*root));
  return std::move(tree);
}

}  // namespace vuk::rgw::adaptor::standalone
