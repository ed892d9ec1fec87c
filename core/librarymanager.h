#pragma once
// Every source of tools: the compiled-in table, and tool libraries (".so")
// found in the install's and the user's plugin folders. A library must
// export "getVersion" answering 20110 and "getPlugin"; others are skipped
// without a message, as are tools whose name is taken already.

#include <memory>
#include <string>
#include <vector>

#include "core/corelibrary.h"

namespace vuk::rgw::core {

// One loaded tool library and the tools it gave.
class Library {
 public:
  Library(void* libraryHandle, std::string libraryPath) : handle(libraryHandle), path(std::move(libraryPath)) {}
  ~Library();
  Library(const Library&) = delete;
  Library& operator=(const Library&) = delete;

  void* handle;
  std::string path;
  std::vector<std::unique_ptr<Plugin>> tools;
};

class LibraryManager {
 public:
  // The exports a tool library has.
  static constexpr const char* kVersionExport = "getVersion";
  static constexpr const char* kPluginExport = "getPlugin";

  // The compiled-in tools come from the table the program links.
  explicit LibraryManager(const ToolTable& builtInTools) : core_(builtInTools) {}

  const CoreLibrary& Core() const { return core_; }
  // Loads every ".so" of the folder; answers how many tools came in.
  int LoadFolder(const std::string& folder);
  // The install's plugin folder, then the user's.
  int ScanPluginFolders();
  // Through the compiled-in tools, then the libraries, old names included.
  Plugin* FindTool(const std::string& name) const;
  // The compiled-in tools, then each library's.
  std::vector<Plugin*> AllTools() const;
  const std::vector<std::unique_ptr<Library>>& Libraries() const { return libraries_; }

 private:
  bool Load(const std::string& path);

  CoreLibrary core_;
  std::vector<std::unique_ptr<Library>> libraries_;
};

}  // namespace vuk::rgw::core
