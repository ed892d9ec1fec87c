#pragma once
// What the scene commands share: reading their options, failing with a
// message, opening their scene and saving it with a line saying what was done.

#include <algorithm>
#include <cstdio>
#include <initializer_list>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "app/rgw/commands.h"
#include "app/rgw/session.h"

namespace vuk::app {

// The message on standard error after "rgw: "; answers the exit code 1.
int Fail(const std::string& message);

// A command's arguments: the scene file, then "--name value" pairs of the
// options the command knows and "--name" alone for its flags; repeated
// options are kept in order.
struct Options {
  explicit Options(std::initializer_list<const char*> knownOptions, std::initializer_list<const char*> knownFlags = {})
      : known(knownOptions.begin(), knownOptions.end()), flags(knownFlags.begin(), knownFlags.end()) {}

  // Nothing to go on; else the usage asked for, or what is wrong with the
  // arguments (exit 2): an unknown option, a value or a required option missing.
  std::optional<int> Read(const Arguments& args, const char* usage, std::initializer_list<const char*> required) {
    if (WantsHelp(args)) return Usage(args, usage);
    if (args.empty() || args[0].rfind("--", 0) == 0) return Misuse("the scene file comes first", usage);
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
  bool Has(const std::string& name) const { return values.count(name) != 0; }
  std::string Get(const std::string& name, const std::string& fallback = "") const {
    const auto found = values.find(name);
    return found == values.end() ? fallback : found->second;
  }

  std::vector<std::string> known;
  std::vector<std::string> flags;
  std::string file;
  std::multimap<std::string, std::string> values;

 private:
  static bool Knows(const std::vector<std::string>& names, const std::string& name) {
    return std::find(names.begin(), names.end(), name) != names.end();
  }
  static int Misuse(const std::string& problem, const char* usage) {
    std::fprintf(stderr, "rgw: %s\n%s", problem.c_str(), usage);
    return 2;
  }
};

// "2.5 s".
std::string Seconds(double seconds);
// The whole text as a number; false with the reason in `error`.
bool ReadNumber(const std::string& text, double& value, std::string& error);
// Opens the command's scene; --fps, when given, replaces the frame rate the
// file has, for the keys a run writes and for the file written.
std::optional<int> OpenScene(const Options& options, Session& session);
// Saves the command's scene and says what the command did.
int SaveAndSay(Session& session, const std::string& out, const std::string& done);

}  // namespace vuk::app
