#include "util/xml/chars.h"
#include "util/xml/element.h"
#include "util/xml/entities.h"
#include "util/xml/tokenizer.h"

namespace vuk::util::xml {
namespace {

// Name and attributes of a tag token: the name runs to the first white space;
// attributes are name="value" or name='value', values decoded once.
class TagReader {
 public:
  explicit TagReader(const std::string& token) : token_(token) {}

  bool Read(Element& element) {
    element.kind = Element::kTag;
    while (pos_ < token_.size() && !chars::IsSpace(token_[pos_])) ++pos_;
    element.name = Decode(token_.substr(0, pos_));
    return ReadAttributes(element);
  }

 private:
  bool ReadAttributes(Element& element) {
    for (;;) {
      SkipSpace();
      if (pos_ >= token_.size() || token_[pos_] == '?') return true;
      const std::size_t nameBegin = pos_;
      while (pos_ < token_.size() && token_[pos_] != '=' && !chars::IsSpace(token_[pos_])) ++pos_;
      std::string attributeName = token_.substr(nameBegin, pos_ - nameBegin);
      SkipSpace();
      if (pos_ >= token_.size() || token_[pos_] != '=') return false;
      ++pos_;
      SkipSpace();
      if (pos_ >= token_.size() || (token_[pos_] != '"' && token_[pos_] != '\'')) return false;
      const char quote = token_[pos_++];
      const std::size_t valueEnd = token_.find(quote, pos_);
      if (valueEnd == std::string::npos) return false;
      element.attributes.emplace_back(std::move(attributeName), Decode(token_.substr(pos_, valueEnd - pos_)));
      pos_ = valueEnd + 1;
    }
  }

  void SkipSpace() {
    while (pos_ < token_.size() && chars::IsSpace(token_[pos_])) ++pos_;
  }

  const std::string& token_;
  std::size_t pos_ = 0;
};

std::string CloseName(const std::string& token) {
  std::size_t end = 0;
  while (end < token.size() && !chars::IsSpace(token[end])) ++end;
  return Decode(token.substr(0, end));
}

// Builds the tree from the tokens without recursion: the open elements are a
// stack, so that nesting depth is limited by memory alone.
class Builder {
 public:
  explicit Builder(std::vector<Token>& tokens) : tokens_(tokens) {}

  ParseResult Build(Element& root, std::size_t pos) {
    if (pos >= tokens_.size()) return kBadPosition;
    Token& first = tokens_[pos++];
    if (first.kind == Token::kClose) return kNoRoot;
    if (!Fill(root, first)) return kNoRoot;
    if (first.kind != Token::kOpen) return kParsed;
    std::vector<Element*> open{&root};
    while (!open.empty()) {
      if (pos >= tokens_.size()) return kMissingClose;
      Token& token = tokens_[pos++];
      Element& parent = *open.back();
      if (token.kind == Token::kClose) {
        if (CloseName(token.text) != parent.name) return kCloseMismatch;
        open.pop_back();
        continue;
      }
      parent.children.push_back(std::make_unique<Element>());
      Element& child = *parent.children.back();
      if (!Fill(child, token)) return kNoRoot;
      if (token.kind == Token::kOpen) open.push_back(&child);
    }
    return kParsed;
  }

 private:
  // An element from one token, without children; false for a malformed tag.
  static bool Fill(Element& element, Token& token) {
    switch (token.kind) {
      case Token::kText:
        // Text was decoded when it was read and is decoded once more here, as
        // saved files expect: "&#38;#60;" reads as "<".
        element.kind = Element::kText;
        element.name = token.plain ? std::move(token.text) : Decode(std::move(token.text));
        return true;
      case Token::kComment:
        element.kind = Element::kComment;
        element.name = Decode(std::move(token.text));
        return true;
      default:
        return TagReader(token.text).Read(element);
    }
  }

  std::vector<Token>& tokens_;
};

}  // namespace

ParseResult Element::ParseText(std::string_view markup) {
  Clear();
  std::vector<Token> tokens = Tokenize(markup);
  if (tokens.empty() || (tokens[0].kind != Token::kOpen && tokens[0].kind != Token::kEmptyTag)) return kNoRoot;
  // A declaration such as "<?xml ...?>" may stand first, and only there.
  const std::size_t rootPos = tokens[0].text.rfind('?', 0) == 0 ? 1 : 0;
  Element root;
  const ParseResult result = Builder(tokens).Build(root, rootPos);
  if (result == kParsed) *this = std::move(root);
  return result;
}

}  // namespace vuk::util::xml
