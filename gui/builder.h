#pragma once
// Windows from layout files: each element becomes a component by its tag;
// elements without a factory vanish with their subtree.

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "gui/component.h"
#include "util/xml/element.h"

namespace vuk::gui {

// Texts that a window's code fills in, each a placeholder such as
// "%VERSION%" and its text.
using Placeholders = std::vector<std::pair<std::string, std::string>>;

// Replaces every placeholder in the attribute values and texts of an element
// and all below it, before the window is built from it.
void FillPlaceholders(util::xml::Element& element, const Placeholders& texts);

// Components are built, realised and taken down recursively. Shipped
// windows nest a few levels; 64 is far past them and far within the stack.
constexpr std::size_t kMaxLayoutDepth = 64;

// The tree for an element; null, with the reason in `error`, when its tag
// has no factory or its elements nest deeper than kMaxLayoutDepth.
std::unique_ptr<Component> BuildComponent(const util::xml::Element& element, std::string* error = nullptr);

// Parses a layout file (a path beginning with ":" is a resource), fills its
// placeholders and builds it, with "[coreimages]" registered on the root.
// Null and a message on failure.
std::unique_ptr<Component> LoadLayout(const std::string& path, std::string* error = nullptr,
                                      const Placeholders& texts = {});

// The data tree's root: the compiled-in resources unless told otherwise.
std::string DataRoot();
void SetDataRoot(const std::string& root);

}  // namespace vuk::gui
