#include "adaptor/standalone/gltfuris.h"

#include <cctype>
#include <cstdio>
#include <string>

namespace vuk::rgw::adaptor::standalone {

namespace {

bool HasScheme(const std::string& uri) {
  const std::size_t colon = uri.find(':');
  if (colon == std::string::npos || colon == 0) return false;
  for (std::size_t i = 0; i < colon; ++i) {
    const auto c = static_cast<unsigned char>(uri[i]);
    if (!std::isalnum(c) && c != '+' && c != '-' && c != '.') return false;
  }
  return std::isalpha(static_cast<unsigned char>(uri[0])) != 0;
}

std::string Encoded(const std::string& path) {
  static const std::string kKept = "-._~/!$&'()*+,;=:@";
  std::string uri;
  for (char c : path) {
    if (std::isalnum(static_cast<unsigned char>(c)) || kKept.find(c) != std::string::npos) {
      uri += c;
    } else {
      char escaped[4];
      std::snprintf(escaped, sizeof escaped, "%%%02X", static_cast<unsigned char>(c));
      uri += escaped;
    }
  }
  return uri;
}

}  // namespace

bool IsDataUri(const std::string& uri) { return uri.rfind("data:", 0) == 0; }

std::string DecodedUri(const std::string& uri) {
  std::string text;
  for (std::size_t i = 0; i < uri.size(); ++i) {
    auto hex = [&](std::size_t at) { return at < uri.size() && std::isxdigit(static_cast<unsigned char>(uri[at])); };
    if (uri[i] == '%' && hex(i + 1) && hex(i + 2)) {
      text += static_cast<char>(std::stoi(uri.substr(i + 1, 2), nullptr, 16));
      i += 2;
    } else {
      text += uri[i];
    }
  }
  return text;
}

std::string RebaseUri(const std::string& uri, const std::filesystem::path& from, const std::filesystem::path& to) {
  const std::filesystem::path target(DecodedUri(uri));
  if (uri.empty() || HasScheme(uri) || target.is_absolute()) return uri;
  const std::filesystem::path base = std::filesystem::absolute(from).lexically_normal();
  const std::filesystem::path destination = std::filesystem::absolute(to).lexically_normal();
  if (base == destination) return uri;
  const std::filesystem::path file = (base / target).lexically_normal();
  const std::filesystem::path relative = file.lexically_relative(destination);
  return Encoded((relative.empty() ? file : relative).generic_string());
}

}  // namespace vuk::rgw::adaptor::standalone
