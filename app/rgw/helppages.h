#pragma once
// The help pages that the desktop app's Help menu opens: a guide to the app
// with a table of the tools, and a page per tool from its gathered facts.
// Plain HTML with its style inline, nothing fetched from elsewhere.

#include <string>
#include <vector>

#include "app/rgw/toolfacts.h"

namespace vuk::app {

// The text with "&", "<", ">" and '"' written as HTML entities, safe in
// element text and in attribute values alike.
std::string EscapeHtml(const std::string& text);

// The page of one tool, at `tool.helpFileName`.
std::string ToolPage(const ToolFacts& tool);
// "index.html": the guide, then the tools, each linked to its page.
std::string IndexPage(const std::vector<ToolFacts>& tools, const std::string& version);

}  // namespace vuk::app
