#include "core/xmlfilemanager.h"

#include <algorithm>
#include <cctype>
#include <filesystem>

#include "util/atomicfile.h"
#include "util/xml/tag.h"

namespace vuk::rgw::core {

namespace {

bool WriteFile(const std::string& path, const std::string& text) {
  std::error_code ignored;
  std::filesystem::create_directories(std::filesystem::path(path).parent_path(), ignored);
  return util::AtomicFile::Replace(path, text);
}

}  // namespace

XMLFileManager::XMLFileManager(Kind kind, std::string folder) : userFolder(std::move(folder)), kind_(kind) {}

std::string XMLFileManager::Lower(const std::string& text) {
  std::string lower = text;
  std::transform(lower.begin(), lower.end(), lower.begin(), [](unsigned char c) { return std::tolower(c); });
  return lower;
}

std::string XMLFileManager::CheckName(const std::string& name) {
  if (name.empty()) return kSelect;
  if (name.find_first_of("\\/:*?\"<>|") != std::string::npos) return name + kForbidden;
  return {};
}

void XMLFileManager::Add(const util::xml::Element& profile, bool example) {
  const std::string name = profile.GetAttribute("name");
  if (name.empty()) return;
  const std::string key = Lower(name);
  const auto same = std::find_if(profiles.begin(), profiles.end(),
                                 [&](const util::xml::Element& p) { return Lower(p.GetAttribute("name")) == key; });
  if (same != profiles.end()) {
    *same = profile;
  } else {
    profiles.push_back(profile);
  }
  if (example) {
    examples_.insert(key);
  } else {
    examples_.erase(key);
  }
}

void XMLFileManager::ReadSource(const std::string& path) {
  util::xml::Element root;
  if (root.Parse(path) != util::xml::kParsed) return;
  if (kind_ == Kind::kConfig) {
    if (root.name == "configprofile") {
      Add(root, false);
      return;
    }
    // A collection of examples.
    for (const auto& child : root.children) {
      if (child->name == "configprofile" || child->name == "profile") Add(*child, true);
    }
    return;
  }
  // Input: "unidevice" holding one "profile" (a file) or several (a collection).
  if (root.name != "unidevice") return;
  const bool collection = root.CountChildren("profile") > 1 || std::filesystem::path(path).extension() == ".xml";
  for (std::size_t i = 0, n = root.CountChildren("profile"); i < n; ++i) Add(root.GetChild("profile", i), collection);
}

void XMLFileManager::Load() {
  for (const std::string& source : files) {
    if (source.empty() || source.back() != '/') {
      ReadSource(source);
      continue;
    }
    std::error_code error;
    std::vector<std::string> found;
    for (const auto& entry : std::filesystem::directory_iterator(source, error)) {
      if (entry.path().extension() == Extension()) found.push_back(entry.path().string());
    }
    // Several user files of one name: the last in name order stands.
    std::sort(found.begin(), found.end());
    for (const std::string& file : found) ReadSource(file);
  }
}

const util::xml::Element* XMLFileManager::Find(const std::string& name) const {
  const std::string key = Lower(name);
  for (const util::xml::Element& profile : profiles) {
    if (Lower(profile.GetAttribute("name")) == key) return &profile;
  }
  return nullptr;
}

std::vector<std::string> XMLFileManager::Names() const {
  std::vector<std::string> names;
  for (const util::xml::Element& profile : profiles) names.push_back(profile.GetAttribute("name"));
  return names;
}

util::xml::Element XMLFileManager::FileFormOf(const util::xml::Element& profile) const {
  if (kind_ == Kind::kConfig) return profile;
  util::xml::Tag root("unidevice");
  root.AddChild(profile);
  return std::move(root);
}

std::string XMLFileManager::UserFileOf(const std::string& name) const { return userFolder + "/" + name + Extension(); }

std::string XMLFileManager::Store(const util::xml::Element& given, const std::string& name, bool overwrite) {
  if (const std::string problem = CheckName(name); !problem.empty()) return problem;
  if (IsReadOnly(name)) return kReadOnly;
  if (Find(name) && !overwrite) return kExists;
  util::xml::Element profile = given;
  profile.SetAttribute("name") = name;
  if (!WriteFile(UserFileOf(name), FileFormOf(profile).Write())) return kCouldNotSave;
  Add(profile, false);
  return {};
}

std::string XMLFileManager::Import(const std::string& path) {
  XMLFileManager read(kind_, userFolder);
  read.ReadSource(path);
  if (read.profiles.empty()) return kCouldNotImport;
  for (const util::xml::Element& profile : read.profiles) {
    const std::string name = profile.GetAttribute("name");
    if (IsReadOnly(name)) return kReadOnly;
    if (!WriteFile(UserFileOf(name), FileFormOf(profile).Write())) return kCouldNotSave;
    Add(profile, false);
  }
  return {};
}

std::string XMLFileManager::Export(const std::string& name, const std::string& path) const {
  const util::xml::Element* profile = Find(name);
  if (!profile) return kSelect;
  return WriteFile(path, FileFormOf(*profile).Write()) ? std::string() : kCouldNotSave;
}

std::string XMLFileManager::Rename(const std::string& from, const std::string& to) {
  const util::xml::Element* profile = Find(from);
  if (!profile) return kSelect;
  if (IsExample(from)) return kExampleRename;
  if (IsReadOnly(from)) return kCannotRename;
  if (const std::string problem = CheckName(to); !problem.empty()) return problem;
  if (Find(to) && Lower(to) != Lower(from)) return to + kNameExists;
  util::xml::Element renamed = *profile;
  renamed.SetAttribute("name") = to;
  if (!WriteFile(UserFileOf(to), FileFormOf(renamed).Write())) return kRenameFailed;
  std::error_code ignored;
  if (Lower(to) != Lower(from)) std::filesystem::remove(UserFileOf(from), ignored);
  profiles.erase(std::remove_if(profiles.begin(), profiles.end(),
                                [&](const util::xml::Element& p) { return Lower(p.GetAttribute("name")) == Lower(from); }),
                 profiles.end());
  Add(renamed, false);
  return {};
}

std::string XMLFileManager::Delete(const std::string& name) {
  if (!Find(name)) return kSelect;
  if (IsReadOnly(name) || IsExample(name)) return kReadOnly;
  std::error_code ignored;
  std::filesystem::remove(UserFileOf(name), ignored);
  profiles.erase(std::remove_if(profiles.begin(), profiles.end(),
                                [&](const util::xml::Element& p) { return Lower(p.GetAttribute("name")) == Lower(name); }),
                 profiles.end());
  return {};
}

}  // namespace vuk::rgw::core
