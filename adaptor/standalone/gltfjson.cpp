#include "adaptor/standalone/gltfjson.h"

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <limits>
#include <cmath>
#include <cstdlib>
#include <iterator>
#include <optional>

#include "util/parallel.h"

namespace vuk::rgw::adaptor::standalone {

namespace {

enum class Kind { kObject, kArray, kString, kNumber, kLiteral };

const char* Named(Kind kind) {
  switch (kind) {
    case Kind::kObject: return "an object";
    case Kind::kArray: return "an array";
    case Kind::kString: return "a string";
    default: return "a number";
  }
}

// Members the parser would drop silently when of another kind; the
// elements of those that are arrays are numbers.
struct MemberRule {
  const char* collection;
  const char* member;
  Kind kind;
};
constexpr MemberRule kRules[] = {
    {"nodes", "name", Kind::kString},        {"nodes", "mesh", Kind::kNumber},     {"nodes", "camera", Kind::kNumber},
    {"nodes", "skin", Kind::kNumber},        {"nodes", "children", Kind::kArray},  {"nodes", "translation", Kind::kArray},
    {"nodes", "rotation", Kind::kArray},     {"nodes", "scale", Kind::kArray},     {"nodes", "matrix", Kind::kArray},
    {"nodes", "weights", Kind::kArray},      {"nodes", "extensions", Kind::kObject}, {"scenes", "nodes", Kind::kArray},
    {"scenes", "name", Kind::kString},
};

const MemberRule* RuleFor(const std::string& collection, const std::string& member) {
  for (const MemberRule& rule : kRules) {
    if (collection == rule.collection && member == rule.member) return &rule;
  }
  return nullptr;
}

// Members the parser keeps, of the file and of the items of the lists a
// save keeps in their order; others are kept by us. Accessors, views,
// buffers and clips are renumbered by a save and left out.
constexpr const char* kFileMembers[] = {"asset",     "scene",     "scenes",   "nodes",      "meshes",         "accessors",
                                        "bufferViews", "buffers", "materials", "textures", "images",         "samplers",
                                        "animations", "skins",    "cameras",  "extensions", "extensionsUsed", "extensionsRequired",
                                        "extras"};
struct ListMembers {
  const char* list;
  std::vector<std::string_view> members;
};
const ListMembers kListMembers[] = {
    {"nodes", {"camera", "children", "skin", "matrix", "mesh", "rotation", "scale", "translation", "weights"}},
    {"scenes", {"nodes"}},
    {"meshes", {"primitives", "weights"}},
    {"materials", {"pbrMetallicRoughness", "normalTexture", "occlusionTexture", "emissiveTexture", "emissiveFactor",
                   "alphaMode", "alphaCutoff", "doubleSided"}},
    {"textures", {"sampler", "source"}},
    {"images", {"uri", "mimeType", "bufferView"}},
    {"samplers", {"magFilter", "minFilter", "wrapS", "wrapT"}},
    {"skins", {"inverseBindMatrices", "skeleton", "joints"}},
    {"cameras", {"orthographic", "perspective", "type"}},
};

bool KnownToFile(const std::string& key) {
  return std::any_of(std::begin(kFileMembers), std::end(kFileMembers), [&](const char* name) { return key == name; });
}

// Null for a list a save renumbers.
const ListMembers* ListOf(const std::string& list) {
  for (const ListMembers& kept : kListMembers) {
    if (list == kept.list) return &kept;
  }
  return nullptr;
}

bool KnownToList(const ListMembers& list, const std::string& key) {
  return key == "name" || key == "extensions" || key == "extras" ||
         std::find(list.members.begin(), list.members.end(), key) != list.members.end();
}

// Keys of a place are cut, so that a message never carries a stranger's essay.
constexpr std::size_t kKeyShown = 40;

class Scanner {
 public:
  Scanner(std::string_view text, JsonFacts& facts, std::string& problem, std::size_t longText)
      : text_(text), facts_(facts), problem_(problem), longText_(longText) {}

  bool Run() {
    while (at_ < text_.size()) {
      const char c = text_[at_];
      const std::size_t begin = at_;
      if (c == '"') {
        const bool key = InKey();
        if (!key && EmbeddedBufferAt(begin)) continue;
        if (!key && InNodeExtras()) {
          // A long text is only marked here; it is unescaped after the scan,
          // all of them at once.
          const std::size_t end = StringEnd(begin);
          if (end >= begin + 2 && text_[end - 1] == '"' && end - begin - 2 > longText_) {
            if (!Value(Kind::kString)) return false;
            facts_.longNodeTexts.push_back({levels_[1].index, levels_[3].key, {}, begin, end});
            at_ = end;
            continue;
          }
        }
        std::string string = String();
        if (key) {
          if (InChannelTarget() && string == "node") channel_.hasNode = true;
          levels_.back().key = std::move(string);
        } else if (!Value(Kind::kString, string)) {
          return false;
        } else if (const std::optional<KeptMember> member = MemberToKeep(string.empty())) {
          Keep(*member, begin, at_);
        }
      } else if (c == '{' || c == '[') {
        if (!Value(c == '{' ? Kind::kObject : Kind::kArray)) return false;
        if (const std::optional<KeptMember> member = MemberToKeep(false)) keeping_ = {*member, begin, levels_.size()};
        if (c == '{' && AtChannel()) channel_ = {begin, false, false};
        if (c == '{' && levels_.size() == 5 && AtChannel(levels_.size() - 1) && levels_[4].key == "target") channel_.hasTarget = true;
        levels_.push_back({c == '{', {}, 0, true, false});
        if (levels_.size() > kMaxJsonDepth) return Fail("the JSON nests deeper than " + std::to_string(kMaxJsonDepth) + " levels");
        ++at_;
      } else if (c == '-' || std::isdigit(static_cast<unsigned char>(c))) {
        if (!Number()) return false;
        if (const std::optional<KeptMember> member = MemberToKeep(false)) Keep(*member, begin, at_);
      } else if (std::isalpha(static_cast<unsigned char>(c))) {
        while (at_ < text_.size() && std::isalpha(static_cast<unsigned char>(text_[at_]))) ++at_;
        if (!Value(Kind::kLiteral) || !KeptInExtras(text_.substr(begin, at_ - begin) != "null", "null")) return false;
        if (const std::optional<KeptMember> member = MemberToKeep(false)) Keep(*member, begin, at_);
      } else {
        if (!Punctuation(c)) return false;
        ++at_;
      }
    }
    return true;
  }

 private:
  struct Level {
    bool object;
    std::string key;        // the member being read, in an object
    std::size_t index;      // the element being read, in an array
    bool expectKey;
    bool filled;            // holds a value
  };

  bool Fail(const std::string& text) {
    problem_ = text;
    return false;
  }

  bool InKey() const { return !levels_.empty() && levels_.back().object && levels_.back().expectKey; }

  // The member whose value starts here, when the parser won't keep it.
  std::optional<KeptMember> MemberToKeep(bool emptyString) const {
    if (levels_.size() == 1 && levels_[0].object && !KnownToFile(levels_[0].key)) {
      return KeptMember{{}, 0, levels_[0].key, {}};
    }
    const bool inItem = levels_.size() == 3 && levels_[0].object && !levels_[1].object && levels_[2].object;
    const ListMembers* list = inItem ? ListOf(levels_[0].key) : nullptr;
    if (!list) return std::nullopt;
    const std::string& key = levels_[2].key;
    if (KnownToList(*list, key) && !(key == "name" && emptyString)) return std::nullopt;
    return KeptMember{levels_[0].key, levels_[1].index, key, {}};
  }
  void Keep(KeptMember member, std::size_t begin, std::size_t end) {
    member.json = std::string(text_.substr(begin, end - begin));
    facts_.keptMembers.push_back(std::move(member));
  }
  // At an element of animations[i].channels, with `depth` levels open.
  bool AtChannel(std::size_t depth) const {
    return depth == 4 && levels_[0].object && levels_[0].key == "animations" && !levels_[1].object && levels_[2].object &&
           levels_[2].key == "channels" && !levels_[3].object;
  }
  bool AtChannel() const { return AtChannel(levels_.size()); }
  // In the object animations[i].channels[j].target.
  bool InChannelTarget() const {
    return levels_.size() == 6 && AtChannel(4) && levels_[4].object && levels_[4].key == "target" && levels_[5].object;
  }
  // At a member of a node's extras: nodes[i].extras.key.
  bool InNodeExtras() const {
    return levels_.size() == 4 && levels_[0].key == "nodes" && !levels_[1].object && levels_[2].key == "extras" &&
           levels_[3].object;
  }

  // A buffer's long Base64 data URI, noted and passed over without a copy.
  // One with escapes, or of a kind the parser decodes differently, is read
  // as any string.
  bool EmbeddedBufferAt(std::size_t begin) {
    const bool atUri = levels_.size() == 3 && levels_[0].object && levels_[0].key == "buffers" && !levels_[1].object &&
                       levels_[2].object && levels_[2].key == "uri";
    if (!atUri) return false;
    const std::size_t close = text_.find('"', begin + 1);
    if (close == std::string_view::npos || close - begin - 1 <= longText_) return false;
    const std::string_view uri = text_.substr(begin + 1, close - begin - 1);
    const std::size_t comma = uri.find(',');
    const std::string_view header = uri.substr(0, comma == std::string_view::npos ? 0 : comma + 1);
    if ((header != "data:application/octet-stream;base64," && header != "data:application/gltf-buffer;base64,") ||
        uri.find('\\') != std::string_view::npos || !Value(Kind::kString, "data:")) {
      return false;
    }
    facts_.embeddedBuffers.push_back({levels_[1].index, std::string(header), begin, close + 1});
    at_ = close + 1;
    return true;
  }

  bool Punctuation(char c) {
    if (levels_.empty()) return true;
    if (c == '}' || c == ']') {
      const bool filled = levels_.back().filled;
      levels_.pop_back();
      if (keeping_ && levels_.size() == keeping_->depth) {
        Keep(keeping_->member, keeping_->begin, at_ + 1);
        keeping_.reset();
      }
      if (c == '}' && AtChannel() && channel_.hasTarget && !channel_.hasNode) {
        facts_.nodelessChannels.push_back(
            {levels_[1].index, levels_[3].index, std::string(text_.substr(channel_.begin, at_ + 1 - channel_.begin))});
      }
      // Empty extras as a whole say nothing a file without them doesn't.
      return KeptInExtras(filled || ExtrasDepth() == 1, "nothing");
    }
    if (c == ',') {
      ++levels_.back().index;
      levels_.back().expectKey = true;
    }
    if (c == ':') levels_.back().expectKey = false;
    return true;
  }

  // The parser drops nulls and empty arrays and objects from extras, and
  // cuts whole numbers to 32 bits; a file that has them is refused rather
  // than written back without them.
  bool KeptInExtras(bool kept, const char* what) {
    return kept || ExtrasDepth() == 0 || Fail(Place() + " holds " + what + ", which extras can't keep");
  }
  // How many levels below the outermost "extras" the value being read is; 0 outside extras.
  std::size_t ExtrasDepth() const {
    const auto extras = std::find_if(levels_.begin(), levels_.end(),
                                     [](const Level& level) { return level.object && level.key == "extras"; });
    return static_cast<std::size_t>(levels_.end() - extras);
  }

  // Where the value being read stands, as "nodes[3].scale[1]".
  std::string Place() const {
    std::string place;
    for (std::size_t i = 0; i < levels_.size(); ++i) {
      const Level& level = levels_[i];
      if (!level.object) {
        place += "[" + std::to_string(level.index) + "]";
      } else {
        place += (i ? "." : "") + level.key.substr(0, kKeyShown);
      }
    }
    return place.empty() ? "the file" : place;
  }

  // A value of the kind at the current place: checked against the rules,
  // and a buffer's URI noted.
  bool Value(Kind kind, const std::string& string = {}) {
    const std::size_t depth = levels_.size();
    if (depth > 0) levels_.back().filled = true;
    if (depth == 1 && levels_[0].key == "scene" && kind != Kind::kNumber) {
      return Fail(Place() + " must be " + Named(Kind::kNumber));
    }
    if (depth < 3 || !levels_[0].object || levels_[1].object || !levels_[2].object) return true;
    if (depth == 3 && kind == Kind::kString && levels_[0].key == "buffers" && levels_[2].key == "uri") {
      if (facts_.bufferUris.size() <= levels_[1].index) facts_.bufferUris.resize(levels_[1].index + 1);
      facts_.bufferUris[levels_[1].index] = string.compare(0, 5, "data:") == 0 ? "data:" : string;
    }
    const MemberRule* rule = RuleFor(levels_[0].key, levels_[2].key);
    if (!rule) return true;
    if (depth == 3 && kind != rule->kind) return Fail(Place() + " must be " + Named(rule->kind));
    if (depth == 4 && rule->kind == Kind::kArray && kind != Kind::kNumber) {
      return Fail(Place() + " must be " + Named(Kind::kNumber));
    }
    return true;
  }

  bool Number() {
    const std::size_t start = at_;
    while (at_ < text_.size() && std::string_view("0123456789+-.eE").find(text_[at_]) != std::string_view::npos) ++at_;
    const std::string token(text_.substr(start, at_ - start));
    const double number = std::strtod(token.c_str(), nullptr);
    if (!std::isfinite(number)) return Fail(Place() + " holds a number too large for a double");
    const bool whole = token.find_first_of(".eE") == std::string::npos;
    const bool fits = !whole || (number >= std::numeric_limits<std::int32_t>::min() && number <= std::numeric_limits<std::int32_t>::max());
    return Value(Kind::kNumber) && KeptInExtras(fits, "a whole number beyond 32 bits");
  }

  // The string starting at the quote, its escapes decoded; the parser
  // decodes them too, so a key spelled with escapes is the same key.
  // Past the quote that closes the string opened at `open`: the first one
  // after an even number of backslashes. The end of the text if none does.
  std::size_t StringEnd(std::size_t open) const {
    for (std::size_t quote = open;;) {
      quote = text_.find('"', quote + 1);
      if (quote == std::string_view::npos) return text_.size();
      std::size_t slashes = 0;
      while (text_[quote - 1 - slashes] == '\\') ++slashes;  // the opening quote stops it
      if (slashes % 2 == 0) return quote + 1;
    }
  }

  std::string String() {
    const std::size_t end = StringEnd(at_);
    const std::size_t closed = end > at_ + 1 && text_[end - 1] == '"' ? 1 : 0;
    std::string text = Unescaped(text_.substr(at_ + 1, end - at_ - 1 - closed));
    at_ = end;
    return text;
  }

 public:
  // A string's characters without its quotes, escapes undone. Runs without
  // escapes go whole: a tool's state is megabytes of them.
  static std::string Unescaped(std::string_view inner) {
    std::string text;
    text.reserve(inner.size());
    for (std::size_t at = 0; at < inner.size();) {
      const std::size_t slash = std::min(inner.find('\\', at), inner.size());
      text.append(inner.substr(at, slash - at));
      if (slash + 1 >= inner.size()) {
        if (slash < inner.size()) text += '\\';
        break;
      }
      const char escaped = inner[slash + 1];
      at = slash + 2;
      const std::string_view plain("\"\\/bfnrt"), meant("\"\\/\b\f\n\r\t");
      if (plain.find(escaped) != std::string_view::npos) {
        text += meant[plain.find(escaped)];
      } else if (escaped == 'u' && at + 4 <= inner.size()) {
        AppendUtf8(std::strtoul(std::string(inner.substr(at, 4)).c_str(), nullptr, 16), text);
        at += 4;
      }
    }
    return text;
  }

 private:
  static void AppendUtf8(unsigned long code, std::string& text) {
    if (code < 0x80) {
      text += static_cast<char>(code);
    } else if (code < 0x800) {
      text += static_cast<char>(0xC0 | (code >> 6));
      text += static_cast<char>(0x80 | (code & 0x3F));
    } else {
      text += static_cast<char>(0xE0 | (code >> 12));
      text += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
      text += static_cast<char>(0x80 | (code & 0x3F));
    }
  }

  std::string_view text_;
  JsonFacts& facts_;
  std::string& problem_;
  std::size_t longText_;
  // A member being kept whose value is an object or array: where it began,
  // and the depth it returns to when it ends.
  struct Keeping {
    KeptMember member;
    std::size_t begin, depth;
  };
  std::optional<Keeping> keeping_;
  // The channel being read: where it began, and what its target has.
  struct Channel {
    std::size_t begin;
    bool hasTarget, hasNode;
  };
  Channel channel_{0, false, false};
  std::size_t at_ = 0;
  std::vector<Level> levels_;
};

}  // namespace

bool ScanJson(std::string_view text, JsonFacts& facts, std::string& problem, std::size_t longText) {
  if (!Scanner(text, facts, problem, longText).Run()) return false;
  util::ForEachInParallel(facts.longNodeTexts.size(), [&](std::size_t i) {
    LongNodeText& long_ = facts.longNodeTexts[i];
    long_.text = Scanner::Unescaped(text.substr(long_.begin + 1, long_.end - long_.begin - 2));
  });
  return true;
}

std::string WithoutLongValues(std::string_view text, const JsonFacts& facts) {
  struct Cut {
    std::size_t begin, end;
    std::string instead;
  };
  std::vector<Cut> cuts;
  for (const LongNodeText& long_ : facts.longNodeTexts) cuts.push_back({long_.begin, long_.end, "\"\""});
  for (const EmbeddedBuffer& embedded : facts.embeddedBuffers) {
    cuts.push_back({embedded.begin, embedded.end, "\"" + EmbeddedBufferUri(embedded.buffer) + "\""});
  }
  std::sort(cuts.begin(), cuts.end(), [](const Cut& a, const Cut& b) { return a.begin < b.begin; });
  std::string kept;
  std::size_t from = 0;
  for (const Cut& cut : cuts) {
    kept.append(text.substr(from, cut.begin - from));
    kept += cut.instead;
    from = cut.end;
  }
  kept.append(text.substr(from));
  return kept;
}

std::string EmbeddedBufferUri(std::size_t buffer) { return "#rgw-embedded-buffer-" + std::to_string(buffer); }

}  // namespace vuk::rgw::adaptor::standalone
