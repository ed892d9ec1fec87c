#pragma once
// What adaptors and the GUI may ask of the core. Operations join here as the
// parts that carry them are built.

#include <cstdint>
#include <string>

#include "core/additionalsetting.h"
#include "util/messagenode.h"

namespace vuk::rgw::core {

class CoreInterface : public util::MessageNode {
 public:
  CoreInterface() : util::MessageNode("CORE") {}

  // Each makes the entry when missing; the settings file is written at once.
  virtual void SetDouble(std::int32_t id, double value) = 0;
  virtual void SetString(std::int32_t id, const std::string& value) = 0;
  virtual void SetInt(std::int32_t id, std::int32_t value) = 0;
  virtual void SetBool(std::int32_t id, bool value) = 0;
  // Null for an unknown id.
  virtual Setting* GetSetting(std::int32_t id) = 0;
};

}  // namespace vuk::rgw::core
