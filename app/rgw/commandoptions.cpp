#include "app/rgw/commandoptions.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "app/rgw/wording.h"

namespace vuk::app {

namespace {

bool Knows(const std::vector<std::string>& names, const std::string& name) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

int Misuse(const std::string& problem, const char* usage) {
  std::fprintf(stderr, "rgw: %s\n%s", problem.c_str(), usage);
  return 2;
}

}  // namespace

int Fail(const std::string& message) {
  std::fprintf(stderr, "rgw: %s\n", message.c_str());
  return 1;
}

std::optional<int> Options::Read(const Arguments& args, const char* usage, std::initializer_list<const char*> required) {
  if (WantsHelp(args)) return Usage(args, usage);
  if (args.empty() || args[0].rfind("--", 0) == 0) return Misuse(firstArgument + " comes first", usage);
  file = args[0];
  for (std::size_t i = 1; i < args.size(); ++i) {
    if (args[i].rfind("--", 0) != 0) return Misuse("\"" + args[i] + "\" is not an option", usage);
    const std::string name = args[i].substr(2);
    if (Knows(flags, name)) {
      values.emplace(name, "");
      continue;
    }
    if (!Knows(known, name)) return Misuse("unknown option " + args[i], usage);
    if (i + 1 >= args.size()) return Misuse(args[i] + " wants a value", usage);
    values.emplace(name, args[++i]);
  }
  for (const char* name : required) {
    if (!Has(name)) return Misuse(std::string("--") + name + " is missing", usage);
  }
  return std::nullopt;
}

std::string Options::Get(const std::string& name, const std::string& fallback) const {
  const auto found = values.find(name);
  return found == values.end() ? fallback : found->second;
}

std::string Seconds(double seconds) {
  char text[32];
  std::snprintf(text, sizeof text, "%g s", seconds);
  return text;
}

bool ReadNumber(const std::string& text, double& value, std::string& error) {
  char* end = nullptr;
  value = std::strtod(text.c_str(), &end);
  if (!text.empty() && *end == '\0' && std::isfinite(value)) return true;
  error = "\"" + text + "\" is not a number";
  return false;
}

rgw::adaptor::standalone::SceneNode* FindNode(Session& session, const std::string& file, const std::string& name,
                                              std::string& error) {
  using rgw::adaptor::standalone::SceneNode;
  SceneNode* found = nullptr;
  std::vector<std::string> names;
  session.host.GetScene().Walk([&](SceneNode& node) {
    if (node.isRoot) return;
    names.push_back(node.hostName);
    if (!found && node.hostName == name) found = &node;
  });
  if (!found) error = file + ": no node \"" + name + "\"; its nodes are " + Listed(names);
  return found;
}

std::optional<int> OpenScene(const Options& options, Session& session) {
  std::string error;
  if (!session.Open(options.file, error)) return Fail(error);
  if (!options.values.count("fps")) return std::nullopt;
  double fps = 0;
  if (!ReadNumber(options.Get("fps"), fps, error)) return Fail("--fps: " + error);
  if (fps < 1 || fps > 4800 || fps != std::floor(fps)) return Fail("--fps " + options.Get("fps") + ": a whole number of frames per second from 1 to 4800");
  session.host.GetScene().clock.SetFrameRate(static_cast<std::int32_t>(fps));
  return std::nullopt;
}

int SaveAndSay(Session& session, const std::string& out, const std::string& done) {
  std::string error;
  if (!session.Save(out, error)) return Fail(error);
  std::printf("%s, written to %s\n", done.c_str(), out.c_str());
  return 0;
}

}  // namespace vuk::app
