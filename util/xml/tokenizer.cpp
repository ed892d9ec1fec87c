#include "util/xml/tokenizer.h"

#include "util/xml/chars.h"
#include "util/xml/entities.h"

namespace vuk::util::xml {
namespace {

class Scanner {
 public:
  // Scanning stops at a NUL as at the end.
  explicit Scanner(std::string_view markup) : markup_(markup.substr(0, markup.find('\0'))) {}

  std::vector<Token> Run() {
    while (!AtEnd()) {
      const std::size_t spaceBegin = pos_;
      while (!AtEnd() && chars::IsSpace(Peek())) ++pos_;
      if (AtEnd()) {
        AddText(spaceBegin);  // trailing white space is text too
      } else if (Peek() == '<') {
        ++pos_;
        AddTag();
      } else {
        pos_ = Find('<');
        AddText(spaceBegin);
      }
    }
    return std::move(tokens_);
  }

 private:
  bool AtEnd() const { return pos_ >= markup_.size(); }
  char Peek() const { return markup_[pos_]; }
  // The next `c` from the current position on, or the end.
  std::size_t Find(char c) const {
    const std::size_t found = markup_.find(c, pos_);
    return found == std::string_view::npos ? markup_.size() : found;
  }

  void AddText(std::size_t begin) {
    if (pos_ == begin) return;
    const std::string_view raw = markup_.substr(begin, pos_ - begin);
    const bool plain = raw.find('&') == std::string_view::npos;
    std::string text = plain ? std::string(raw) : Decode(std::string(raw));
    if (!text.empty()) tokens_.push_back({Token::kText, std::move(text), plain});
  }

  void AddTag() {
    Token::Kind kind = Token::kOpen;
    if (!AtEnd() && Peek() == '/') {
      kind = Token::kClose;
      ++pos_;
    } else if (!AtEnd() && Peek() == '!') {
      kind = Token::kComment;
      ++pos_;
    }
    const std::size_t begin = pos_;
    pos_ = Find('>');
    std::size_t end = pos_;
    const bool closed = !AtEnd();
    if (closed) ++pos_;
    if (closed && kind != Token::kComment && end > begin && markup_[end - 1] == '/') {
      kind = Token::kEmptyTag;
      --end;
    }
    tokens_.push_back({kind, std::string(markup_.substr(begin, end - begin)), false});
  }

  std::string_view markup_;
  std::size_t pos_ = 0;
  std::vector<Token> tokens_;
};

}  // namespace

std::vector<Token> Tokenize(std::string_view markup) { return Scanner(markup).Run(); }

}  // namespace vuk::util::xml
