#include "util/xml/tokenizer.h"

#include "util/xml/chars.h"
#include "util/xml/entities.h"

namespace vuk::util::xml {
namespace {

class Scanner {
 public:
  explicit Scanner(const std::string& markup) : markup_(markup) {}

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
        while (!AtEnd() && Peek() != '<') ++pos_;
        AddText(spaceBegin);
      }
    }
    return std::move(tokens_);
  }

 private:
  bool AtEnd() const { return pos_ >= markup_.size() || markup_[pos_] == '\0'; }
  char Peek() const { return markup_[pos_]; }

  void AddText(std::size_t begin) {
    if (pos_ == begin) return;
    std::string text = Decode(markup_.substr(begin, pos_ - begin));
    if (!text.empty()) tokens_.push_back({Token::kText, std::move(text)});
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
    while (!AtEnd() && Peek() != '>') ++pos_;
    std::size_t end = pos_;
    const bool closed = !AtEnd();
    if (closed) ++pos_;
    if (closed && kind != Token::kComment && end > begin && markup_[end - 1] == '/') {
      kind = Token::kEmptyTag;
      --end;
    }
    tokens_.push_back({kind, markup_.substr(begin, end - begin)});
  }

  const std::string& markup_;
  std::size_t pos_ = 0;
  std::vector<Token> tokens_;
};

}  // namespace

std::vector<Token> Tokenize(const std::string& markup) { return Scanner(markup).Run(); }

}  // namespace vuk::util::xml
