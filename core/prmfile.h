#pragma once
// Pre-rigged model files (".prm"): a saved tool tree as XML text inside a
// data chunk. The root of the text must be "RGT", "rgw" or "RGT_Plugin".

#include <string>

#include "util/xml/element.h"

namespace vuk::rgw::core {

// Writes beside the target first, then over it.
bool SavePrmFile(const std::string& path, const util::xml::Element& tree, std::string* error = nullptr);
// On failure `tree` is left empty and `error` names the file and the problem.
bool LoadPrmFile(const std::string& path, util::xml::Element& tree, std::string* error = nullptr);

}  // namespace vuk::rgw::core
