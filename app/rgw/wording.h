#pragma once
// What the command line says to its user: counts with their nouns, lists of
// the names a command would have taken, and the problems of files read by
// the parsing libraries, in the user's terms and on one line.

#include <cstddef>
#include <string>
#include <vector>

#include "util/xml/element.h"

namespace vuk::app {

// "1 key", "2 keys", "0 tools".
std::string Counted(std::size_t count, const std::string& noun);

// The names joined by commas, or "none" for no names.
std::string Listed(const std::vector<std::string>& names);

// A glTF reader's complaint about a file as one line naming the file:
// "scene.gltf: not a glTF file". The reader's own text goes to the log.
std::string GltfProblem(const std::string& path, const std::string& readerMessage);

// What a failed XML parse means for the file, in the user's words.
std::string XmlProblem(util::xml::ParseResult result);

// A pre-rigged model reader's complaint as one line naming the file; the
// reader's own text goes to the log.
std::string ModelProblem(const std::string& path, const std::string& readerMessage);

}  // namespace vuk::app
