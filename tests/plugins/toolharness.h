#pragma once
// What the tool tests share: a tool made by name on a fresh embedded host,
// scene nodes to place and link it to, runs over a range of frames, and the
// keys the run wrote, compared bit for bit through a hash.

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "adaptor/standalone/standaloneadaptorinterface.h"
#include "adaptor/standalone/transformtrack.h"
#include "core/corelibrary.h"
#include "core/instance.h"
#include "plugins/common/scopedsnapshot.h"
#include "unidevice/control.h"

namespace vuk::rgw::testing_support {

using Keys = std::vector<adaptor::standalone::TransformKey>;
using Bytes = std::vector<std::uint8_t>;

// FNV-1a over the bytes of every key, going on from `hash`: any change to a
// number shows.
std::uint64_t HashOf(const Keys& keys, std::uint64_t hash = 14695981039346656037ull);

// A file's bytes; empty when it can't be read.
Bytes ReadFile(const std::string& path);

class ToolHarness {
 public:
  // The raw value of a channel, by its index among the instance's inputs, at a frame.
  using Signal = std::function<double(std::size_t channel, int frame)>;

  // Key recording is on, so that every write at a time is a key there.
  explicit ToolHarness(const std::string& toolName);

  core::Instance& Instance() { return *instance_; }
  template <typename Object>
  Object& Tool() {
    return *static_cast<Object*>(instance_->GetTool());
  }
  double Frame() { return host.GetFrameDuration(); }
  // Frame k's time, as the recorder and the resimulator give it.
  double TimeOf(int frame);

  // A node's pose at a time, read or written as a tool does.
  addon::TransformSnapshot Transform(CNode* node, double time) { return {instance_.get(), node, time}; }
  // A plain scene node, and a tool node linked below it.
  adaptor::standalone::SceneNode* AddSceneNode(const std::string& hostName);
  void Link(CNode* toolNode, adaptor::standalone::SceneNode* parent);

  // A recording from frame `first` to `last`, each channel fed by the signal.
  // As in the system's runs, the start frame is not stepped.
  void Record(int first, int last, const Signal& raw);
  // The same range again from the recorded take, without devices, through
  // the core's resimulator.
  void Resimulate(int first, int last);

  // The tool's nodes, in the order the tool made them.
  std::vector<CNode*> ToolNodes();
  static const Keys& KeysOf(CNode* node);
  // Over the keys of all the tool's nodes, in their order.
  std::uint64_t HashOfKeys();
  // Sets a hide switch's flag and sends its label as the page does: the node
  // hides, an undo shows it and leaves the flag, a redo hides it again.
  void ExpectUndoableHide(CInterface::Callback& tool, const std::string& label, bool& flag, CNode* node);
  // The bytes a Save hands the instance.
  Bytes Save();
  void SetSaveData(const Bytes& bytes);

  adaptor::standalone::StandaloneAdaptorInterface host;
  core::CoreLibrary library;

 private:
  std::unique_ptr<core::Instance> instance_;
  std::vector<std::unique_ptr<unidevice::Control>> controls_;
};

}  // namespace vuk::rgw::testing_support
