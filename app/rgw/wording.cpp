#include "app/rgw/wording.h"

#include "core/corelog.h"

namespace vuk::app {

namespace {

// A fragment of a reader's message and what it means for the user; the
// first fragment found wins, so the more telling ones come first.
struct Meaning {
  const char* fragment;
  const char* words;
};

constexpr Meaning kGltfMeanings[] = {
    {"unexpected end of input", "the file ends too early"},
    {"Too short data size", "the file ends too early"},
    {"Insufficient", "the file ends too early"},
    {"exceeds the GLB size", "the file ends too early"},
    {"Empty file", "the file is empty"},
    {"File is empty", "the file is empty"},
    {"File not found", "a file it refers to is missing"},
    {"Failed to read file", "can't be read"},
    {"File open error", "can't be read"},
    {"json.exception", "not a glTF file"},
    {"JSON string too short", "not a glTF file"},
    {"Failed to parse JSON", "not a glTF file"},
    {"not a JSON object", "not a glTF file"},
    {"Invalid magic", "not a glTF file"},
    {"property is missing", "the file lacks a part that glTF requires"},
    {"not found in .gltf", "the file lacks a part that glTF requires"},
};

constexpr Meaning kModelMeanings[] = {
    {"parse result", "the model's tool description is damaged"},
    {"can't be read", "can't be read"},
    {"run past the end", "the file ends too early"},
    {"cut short", "the file ends too early"},
    {"can't fit in the rest", "the file ends too early"},
    {"not a pre-rigged model", "not a pre-rigged model"},
    {"is not a tool tree", "not a pre-rigged model"},
};

// The reader's message without the file name it may start with.
std::string WithoutPath(const std::string& path, const std::string& message) {
  const std::string prefix = path + ": ";
  return message.rfind(prefix, 0) == 0 ? message.substr(prefix.size()) : message;
}

template <std::size_t N>
const char* MeaningOf(const std::string& message, const Meaning (&meanings)[N]) {
  for (const Meaning& meaning : meanings) {
    if (message.find(meaning.fragment) != std::string::npos) return meaning.words;
  }
  return nullptr;
}

// The reader's own text is kept for whoever looks into the problem.
void Log(const std::string& path, const std::string& message) {
  rgw::core::CoreLog::Instance().Warning(path + ": " + message);
}

}  // namespace

std::string Counted(std::size_t count, const std::string& noun) {
  return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

std::string Listed(const std::vector<std::string>& names) {
  std::string text;
  for (const std::string& name : names) text += (text.empty() ? "" : ", ") + name;
  return text.empty() ? "none" : text;
}

std::string GltfProblem(const std::string& path, const std::string& readerMessage) {
  const std::string message = WithoutPath(path, readerMessage);
  Log(path, message);
  if (const char* words = MeaningOf(message, kGltfMeanings)) return path + ": " + words;
  // The host's own checks of what it read speak plainly already; the
  // library's other complaints span lines and name its internals.
  const bool plain = message.find('\n') == std::string::npos && message.find('`') == std::string::npos &&
                     message.find('[') == std::string::npos && !message.empty() && message.back() != '.';
  return path + ": " + (plain ? message : "a damaged glTF file (the log has the details)");
}

std::string XmlProblem(util::xml::ParseResult result) {
  switch (result) {
    case util::xml::kUnreadable: return "can't be read";
    case util::xml::kMissingClose: return "the file ends too early";
    case util::xml::kCloseMismatch: return "a closing tag doesn't match the element it closes";
    case util::xml::kParsed:
    case util::xml::kNoRoot:
    case util::xml::kBadPosition: break;
  }
  return "not an XML file";
}

std::string ModelProblem(const std::string& path, const std::string& readerMessage) {
  const std::string message = WithoutPath(path, readerMessage);
  Log(path, message);
  const char* words = MeaningOf(message, kModelMeanings);
  return path + ": " + (words ? words : "a damaged pre-rigged model (the log has the details)");
}

}  // namespace vuk::app
