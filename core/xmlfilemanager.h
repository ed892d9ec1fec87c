#pragma once
// A tool's named profiles, merged from files and folders in a fixed order
// (later sources override earlier names, compared without case), with the
// read-only names and the operations of the profile windows.

#include <set>
#include <string>
#include <vector>

#include "util/xml/element.h"

namespace vuk::rgw::core {

class XMLFileManager {
 public:
  enum class Kind { kConfig, kInput };

  // Messages of the profile windows.
  static constexpr const char* kCouldNotImport = "The profile could not be imported. ";
  static constexpr const char* kCouldNotSave = "The profile could not be saved";
  static constexpr const char* kExists = "The profile already exists and cannot be overwritten.";
  static constexpr const char* kReadOnly = "The specified profile is considered read-only and cannot be overwritten.";
  static constexpr const char* kSelect = "Please select or specify a profile";
  static constexpr const char* kExampleRename = "Cannot rename example profiles.";
  static constexpr const char* kCannotRename = "Cannot rename this profile.";
  static constexpr const char* kRenameFailed =
      "The specified profile could not be renamed, please try with another name.";
  static constexpr const char* kNameExists = " - name already exists.";
  static constexpr const char* kForbidden =
      " - name contains forbidden characters. \n The following characters are not allowed: \\ / : * ? \" < > | ";

  XMLFileManager(Kind kind, std::string userFolder);

  // Sources in the order they are read: single files ("configprofile.xml",
  // "inputprofile.xml", or one profile file) and folders of profile files.
  void AddFile(const std::string& path) { files.push_back(path); }
  void AddFolder(const std::string& path) { files.push_back(path + "/"); }
  // Reads every source; what can't be read is passed over.
  void Load();

  // The profile of that name, compared without case; null if none.
  const util::xml::Element* Find(const std::string& name) const;
  std::vector<std::string> Names() const;
  void SetReadOnly(const std::string& name) { readOnly.insert(Lower(name)); }
  bool IsReadOnly(const std::string& name) const { return readOnly.count(Lower(name)) != 0; }
  // A profile that came from a collection of examples.
  bool IsExample(const std::string& name) const { return examples_.count(Lower(name)) != 0; }

  // Keeps a profile in memory only, under its own name: the tool's compiled
  // defaults, which no file holds.
  void Keep(const util::xml::Element& profile) { Add(profile, false); }

  // Each answers "" on success or the message the window shows.
  // Keeps a profile in memory and writes it to the user folder.
  std::string Store(const util::xml::Element& profile, const std::string& name, bool overwrite);
  std::string Import(const std::string& path);
  std::string Export(const std::string& name, const std::string& path) const;
  std::string Rename(const std::string& from, const std::string& to);
  std::string Delete(const std::string& name);

  // The element a profile file holds, for a profile element.
  util::xml::Element FileFormOf(const util::xml::Element& profile) const;
  // A profile's file in the user folder.
  std::string UserFileOf(const std::string& name) const;

  static std::string Lower(const std::string& text);
  // Empty when the name is fine, else the message.
  static std::string CheckName(const std::string& name);

  std::vector<std::string> files;
  std::string userFolder;
  std::vector<util::xml::Element> profiles;
  std::set<std::string> readOnly;
  std::string startProfile;

 private:
  void Add(const util::xml::Element& profile, bool example);
  void ReadSource(const std::string& path);
  std::string Extension() const { return kind_ == Kind::kConfig ? ".ccp" : ".cip"; }

  Kind kind_;
  std::set<std::string> examples_;
};

}  // namespace vuk::rgw::core
