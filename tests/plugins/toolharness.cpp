#include "tests/plugins/toolharness.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <stdexcept>

#include "adaptor/standalone/standalonenode.h"
#include "core/resimulator.h"
#include "plugins/tools.h"

namespace vuk::rgw::testing_support {

using adaptor::standalone::SceneNode;
using adaptor::standalone::StandaloneNode;

std::uint64_t HashOf(const Keys& keys, std::uint64_t hash) {
  for (const auto& key : keys) {
    const auto* bytes = reinterpret_cast<const unsigned char*>(&key);
    for (std::size_t i = 0; i < sizeof key; ++i) hash = (hash ^ bytes[i]) * 1099511628211ull;
  }
  return hash;
}

Bytes ReadFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

ToolHarness::ToolHarness(const std::string& toolName) : library(addon::BuiltInTools()) {
  host.GetScene().animate = true;
  core::Plugin* tool = library.FindTool(toolName);
  EXPECT_NE(tool, nullptr) << toolName;
  if (tool) instance_ = tool->CreateInstance("", &host);
  if (!instance_) throw std::runtime_error("no instance of " + toolName);
}

SceneNode* ToolHarness::AddSceneNode(const std::string& hostName) {
  return host.GetScene().CreateNode(adaptor::standalone::ObjectKind::kMesh, hostName);
}

void ToolHarness::Link(CNode* toolNode, SceneNode* parent) {
  StandaloneNode wrapper(&host, parent);
  static_cast<core::CoreNode*>(toolNode)->SetParent(&wrapper);
}

double ToolHarness::TimeOf(int frame) { return core::TimeBase(host.GetFrameRate()).TimeOf(frame); }

void ToolHarness::Record(int first, int last, const Signal& raw) {
  unidevice::PropertyHandler& inputs = instance_->Inputs();
  // A recording reads devices: each channel gets a control of its own for the run.
  while (controls_.size() < inputs.Count()) controls_.push_back(std::make_unique<unidevice::Control>());
  for (std::size_t i = 0; i < inputs.Count(); ++i) inputs.Get(i)->source = controls_[i].get();
  host.BeginUndo("Record");
  host.BeginRecording();
  instance_->Start(TimeOf(first), core::Instance::Run::kRecording);
  for (int k = first + 1; k <= last; ++k) {
    for (std::size_t i = 0; i < inputs.Count(); ++i) controls_[i]->Update(raw(i, k));
    instance_->Step(TimeOf(k));
  }
  instance_->Stop(TimeOf(last));
  host.EndRecording();
  host.EndUndo();
  for (std::size_t i = 0; i < inputs.Count(); ++i) inputs.Get(i)->source = nullptr;
}

void ToolHarness::Resimulate(int first, int last) {
  core::Resimulator resimulator(&host);
  resimulator.Start({instance_.get()}, TimeOf(first), TimeOf(last), core::TimeBase(host.GetFrameRate()));
  resimulator.RunToEnd();
  resimulator.Finish();
}

std::vector<CNode*> ToolHarness::ToolNodes() {
  core::NodeVector list;
  host.GetInstanceNodes(instance_.get(), list);
  return {list.nodes.begin(), list.nodes.end()};
}

const Keys& ToolHarness::KeysOf(CNode* node) { return static_cast<StandaloneNode*>(node)->GetHostNode()->track.Keys(); }

std::uint64_t ToolHarness::HashOfKeys() {
  std::uint64_t hash = HashOf({});
  for (CNode* node : ToolNodes()) hash = HashOf(KeysOf(node), hash);
  return hash;
}

void ToolHarness::ExpectUndoableHide(CInterface::Callback& tool, const std::string& label, bool& flag, CNode* node) {
  host.BeginUndo(label);
  flag = true;
  tool.Changed(label);
  host.EndUndo();
  EXPECT_FALSE(node->IsVisible()) << label;
  host.Undo();
  EXPECT_TRUE(node->IsVisible()) << label;
  EXPECT_TRUE(flag) << label;
  host.Redo();
  EXPECT_FALSE(node->IsVisible()) << label;
}

Bytes ToolHarness::Save() {
  EXPECT_EQ(instance_->GetTool()->Save(), 0);
  std::int32_t length = 0;
  const std::uint8_t* bytes = instance_->GetSaveData(&length);
  return bytes ? Bytes(bytes, bytes + length) : Bytes();
}

void ToolHarness::SetSaveData(const Bytes& bytes) {
  instance_->SetSaveData(bytes.data(), static_cast<std::int32_t>(bytes.size()));
}

}  // namespace vuk::rgw::testing_support
