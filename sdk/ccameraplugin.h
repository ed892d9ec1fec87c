#pragma once
// A tool's class object: says what the tool is and makes its objects. One
// object of each concrete plugin class exists.

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "sdk/ccamera.h"

namespace vuk::rgw {

constexpr std::int32_t kSdkVersion = 20110;

class CCameraPlugin : public CExtendable {
 public:
  // The tool object and nothing else: no nodes, no interface calls. Null on failure.
  virtual CCamera* CreateObject(CCamera::CreateParam& param) = 0;
  // The saved type of the tool; never changes.
  virtual std::string GetName() = 0;
  // Data path below the data root, where profiles, images and help hang.
  virtual std::string GetPath() { return GetName(); }
  virtual std::string GetTitle() = 0;
  // Categories separated by ";".
  virtual std::string GetCategory() = 0;
  virtual std::string GetDescription() { return {}; }
  virtual std::string GetCredits() { return {}; }
  virtual std::string GetSubtitle() { return {}; }
  virtual std::vector<std::int32_t>* GetSupportedIds() { return new std::vector<std::int32_t>(); }
  // Frees what GetSupportedIds made, on the plugin's side of the boundary.
  virtual bool ReleaseIds(std::vector<std::int32_t>* ids) {
    delete ids;
    return true;
  }
  virtual std::int32_t GetSdkVersion() { return kSdkVersion; }
  virtual void Release() { delete this; }
  virtual ~CCameraPlugin() = default;

  // Fills in the plugin just before making the object.
  CCamera* Create(CCamera::CreateParam& param) {
    param.plugin = this;
    return CreateObject(param);
  }
};

// The tools compiled into the program: 41 plain factory functions in the
// system's fixed order; entries not written yet are null.
using PluginFactory = CCameraPlugin* (*)();
constexpr std::size_t kToolTableSize = 41;
using ToolTable = std::array<PluginFactory, kToolTableSize>;

}  // namespace vuk::rgw
