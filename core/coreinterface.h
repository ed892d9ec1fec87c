#pragma once
// What adaptors and the GUI may ask of the core. Operations join here as the
// parts that carry them are built: the main window's (show, close, the
// window itself, image paths) come with it, in their places of the order.

#include <cstdint>
#include <string>

#include "core/additionalsetting.h"
#include "util/messagenode.h"
#include "util/xml/element.h"

namespace vuk::rgw::core {

class Instance;

class CoreInterface : public util::MessageNode {
 public:
  CoreInterface() : util::MessageNode("CORE") {}

  // The whole tool tree with its recorded data.
  virtual void SaveToolTree(util::xml::Element& out) = 0;
  // "RGT" with the top-level tools that have no nodes of their own.
  virtual void SaveToolTreeForScene(util::xml::Element& out) = 0;
  // Makes the tools of an "RGT" or "RGT_Plugin" element; answers how many.
  virtual std::int32_t LoadToolTree(const util::xml::Element& tree) = 0;
  // Every tool out, last first, without undo.
  virtual void RemoveAll() = 0;

  // A new tool at the top of the tree; null when unknown or refused.
  virtual Instance* CreateByName(const std::string& toolName, const std::string& instanceName) = 0;
  virtual void OnTimeChanged(double time) = 0;
  virtual bool IsRecording() = 0;
  virtual bool IsResimulating() = 0;
  // The tool of that instance name, or null.
  virtual Instance* FindToolByName(const std::string& instanceName) = 0;
  // Loads the tool's configuration profile of that name; false when either is missing.
  virtual bool SetToolProfile(const std::string& instanceName, const std::string& profileName) = 0;
  virtual void BeginRecording() = 0;
  virtual void StopRecording() = 0;
  virtual void StartResimulation(double from, double to) = 0;
  virtual std::int32_t GetSpeedStep() = 0;
  virtual void SetSpeedStep(std::int32_t step) = 0;
  // By instance name, with the host's undo; false when there is no such tool
  // (or, for a rename, the new name is taken).
  virtual bool Delete(const std::string& instanceName) = 0;
  virtual bool Rename(const std::string& instanceName, const std::string& newName) = 0;
  virtual Instance* Clone(const std::string& instanceName) = 0;

  // Each makes the entry when missing; the settings file is written at once.
  virtual void SetDouble(std::int32_t id, double value) = 0;
  virtual void SetString(std::int32_t id, const std::string& value) = 0;
  virtual void SetInt(std::int32_t id, std::int32_t value) = 0;
  virtual void SetBool(std::int32_t id, bool value) = 0;
  // Null for an unknown id.
  virtual Setting* GetSetting(std::int32_t id) = 0;
};

}  // namespace vuk::rgw::core
