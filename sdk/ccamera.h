#pragma once
// The base of every tool object: the lifecycle calls the core makes, in the
// order of its virtual table.

#include <cstdint>
#include <string>

#include "sdk/cextendable.h"

namespace vuk::rgw {

class CCameraPlugin;
class CInterface;

class CCamera : public CExtendable {
 public:
  // Built on the stack by the core for one tool object.
  class CreateParam : public CExtendable {
   public:
    explicit CreateParam(std::string instanceName) : name(std::move(instanceName)) {}

    std::int32_t version = 100;
    CCameraPlugin* plugin = nullptr;  // set by CCameraPlugin::Create
    std::string name;
  };

  explicit CCamera(const CreateParam& param) : plugin(param.plugin), name(param.name) {}
  CCamera(const CCamera&) = delete;
  CCamera& operator=(const CCamera&) = delete;

  virtual void Start(double time) { (void)time; }
  virtual void Stop(double time) { (void)time; }
  virtual void Step(double time) { (void)time; }
  virtual void TimeChanged(double time) { (void)time; }
  // Inputs, configuration page and gauges, once, before Create or Load.
  virtual std::int32_t BuildConfig() { return 0; }
  // A new tool makes its nodes here.
  virtual std::int32_t Create() { return 0; }
  // A tool from saved data finds its nodes and reads its bytes here.
  virtual std::int32_t Load() { return 0; }
  // Non-zero: the instance is saved without its bytes.
  virtual std::int32_t Save() { return 0; }
  virtual void Release() { delete this; }
  virtual ~CCamera() = default;

  CCameraPlugin* plugin;
  std::string name;
  // Set by the core before any of the operations above runs; a tool must not
  // use it in its own constructor.
  CInterface* iface = nullptr;
};

}  // namespace vuk::rgw
