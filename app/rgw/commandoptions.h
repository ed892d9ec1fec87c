#pragma once
// What the commands on a scene file share: their arguments, their refusals,
// numbers read from text and nodes found by name.

#include <initializer_list>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "app/rgw/commands.h"
#include "app/rgw/session.h"

namespace vuk::app {

// Says the message on standard error after "rgw: "; answers 1.
int Fail(const std::string& message);

// A command's arguments: the scene file, then "--name value" pairs of the
// options the command knows and "--name" alone for its flags; repeated
// options are kept in order.
struct Options {
  explicit Options(std::initializer_list<const char*> knownOptions, std::initializer_list<const char*> knownFlags = {})
      : known(knownOptions.begin(), knownOptions.end()), flags(knownFlags.begin(), knownFlags.end()) {}

  // Nothing to go on; else the usage asked for, or what is wrong with the
  // arguments (exit 2): an unknown option, a value or a required option missing.
  std::optional<int> Read(const Arguments& args, const char* usage, std::initializer_list<const char*> required);
  bool Has(const std::string& name) const { return values.count(name) != 0; }
  std::string Get(const std::string& name, const std::string& fallback = "") const;

  std::vector<std::string> known;
  std::vector<std::string> flags;
  // What the one argument before the options is, for the refusal without it.
  std::string firstArgument = "the scene file";
  std::string file;
  std::multimap<std::string, std::string> values;
};

// The whole text as a number; false with the reason in `error`.
bool ReadNumber(const std::string& text, double& value, std::string& error);

// The scene's node of that name, or null with the names it has in `error`.
rgw::adaptor::standalone::SceneNode* FindNode(Session& session, const std::string& file, const std::string& name,
                                              std::string& error);

// "2.5 s".
std::string Seconds(double seconds);
// Opens the command's scene; --fps, when given, replaces the frame rate the
// file has, for the keys a run writes and for the file written.
std::optional<int> OpenScene(const Options& options, Session& session);
// Saves the command's scene and says what the command did.
int SaveAndSay(Session& session, const std::string& out, const std::string& done);

}  // namespace vuk::app
