#include "core/paths.h"

#include <cstdlib>
#include <filesystem>

namespace vuk::rgw::core {

namespace {

std::string ExecutableFolder() {
  std::error_code error;
  const std::filesystem::path self = std::filesystem::read_symlink("/proc/self/exe", error);
  return error ? std::string() : self.parent_path().string();
}

}  // namespace

std::string GetInstallRoot() {
  if (const char* root = std::getenv("RIGWORKS_ROOT")) return root;
  const std::string folder = ExecutableFolder();
  return folder.empty() ? std::string() : std::filesystem::path(folder).parent_path().string();
}

std::string GetPath(const std::string& kind) {
  const std::string root = GetInstallRoot();
  if (root.empty()) return {};
  if (kind == "data") return root + "/rigworks/data";
  if (kind == "plugin") return root + "/rigworks/plugins/linux/x64";
  if (kind == "doc") return root + "/rigworks/doc";
  if (kind == "prm") return root + "/rigworks/prm";
  if (kind.empty() || kind == "rgw") return root + "/rigworks";
  return root;
}

std::string GetUserFolder() {
  const char* dataHome = std::getenv("XDG_DATA_HOME");
  if (dataHome && *dataHome) return std::string(dataHome) + "/rigworks";
  const char* home = std::getenv("HOME");
  // Without a home the current folder has to do.
  return std::string(home && *home ? home : ".") + "/.local/share/rigworks";
}

std::string GetCoreDataFolder() { return GetUserFolder() + "/data/core"; }

}  // namespace vuk::rgw::core
