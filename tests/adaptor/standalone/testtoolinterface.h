#pragma once
// The system as a test tool sees it: a CInterface that hands node, snapshot,
// undo and clock calls straight to an adaptor, keeps the channels in a
// handler and writes the configuration page down as an element.

#include <functional>
#include <string>
#include <vector>

#include "core/adaptorinterface.h"
#include "sdk/cinterface.h"
#include "unidevice/propertyhandler.h"
#include "util/bytes.h"
#include "util/messagenode.h"
#include "util/xml/element.h"

namespace vuk::rgw::testing_support {

class TestToolInterface : public CInterface, public util::MessageNode {
 public:
  TestToolInterface(core::AdaptorInterface* adaptor, const std::string& instanceName);

  void PushUndo(CUndo* record) override { adaptor_->PutUndo(record); }
  Property* AddInputWithFactory(std::string name, std::int32_t, Property::Factory* factory) override {
    return inputs_.Add(name, factory);
  }
  Property* AddInput(std::string name, std::int32_t) override { return inputs_.Add(name); }
  Property* FindInput(std::string name) override { return inputs_.Find(name); }

  void BeginConfig() override;
  void EndConfig() override {}
  void BeginGroup(std::string label, std::string tooltip) override;
  void EndGroup() override;
  void AddIntSpinner(std::string label, std::string tooltip, std::int32_t*, std::int32_t, std::int32_t, std::int32_t,
                     std::int32_t, bool, std::int32_t, Callback*) override {
    AddControl("spinner", label, tooltip);
  }
  void AddSpinner(std::string label, std::string tooltip, double*, double, double, double, std::int32_t, bool,
                  std::int32_t, Callback*) override {
    AddControl("spinner", label, tooltip);
  }
  void AddCheckBox(std::string label, std::string tooltip, bool*, Callback*) override {
    AddControl("checkbox", label, tooltip);
  }
  void AddTextBox(std::string label, std::string tooltip, std::string*, Callback*) override {
    AddControl("textbox", label, tooltip);
  }
  ComboUpdater* AddComboBox(std::string label, std::string tooltip, std::vector<std::string>, std::int32_t*,
                            Callback*) override {
    AddControl("combobox", label, tooltip);
    return nullptr;
  }
  void AddButton(std::string label, std::string tooltip, Callback*) override { AddControl("button", label, tooltip); }
  void ConfigReserved() override {}
  void UpdateConfig() override {}
  void ShowInputSettings() override {}

  std::string GetDataPath() override { return {}; }
  void SetSaveData(const void* bytes, std::int32_t length) override;
  const std::uint8_t* GetSaveData(std::int32_t* length) override;
  std::int32_t ClearSaveData() override;

  void DeleteNode(CNode* node) override;
  CNode* FindNode(std::string name) override { return adaptor_->FindNode(this, name); }
  CNode* CreateCameraNode(std::string name, CNode* parent, Callback* callback) override;
  CNode* CreateMeshNode(std::string name, CNode* parent, const util::CMesh& mesh, Callback* callback) override;
  void CreateOtherNode(std::string, const util::CMesh&) override {}

  CSnapshot* GetTransformSnapshot(CNode* node, double time) override;
  CSnapshot_Helper* GetHelperSnapshot(CNode* node, double time) override;
  CSnapshot_Mesh* GetMeshSnapshot(CNode* node, double time) override;
  CSnapshot_Lens* GetLensSnapshot(CNode* node, double time) override;
  void ReleaseNode(CNode* node) override;
  void ReleaseLensSnapshot(CSnapshot_Lens* snapshot) override;
  void ReleaseMeshSnapshot(CSnapshot_Mesh* snapshot) override;
  void ReleaseHelperSnapshot(CSnapshot_Helper* snapshot) override;
  void ReleaseTransformSnapshot(CSnapshot* snapshot) override;

  double GetTime() override { return adaptor_->GetTime(); }
  double GetFrameRate() override { return adaptor_->GetFrameRate(); }
  double GetFrameDuration() override { return adaptor_->GetFrameDuration(); }
  void Redraw() override { adaptor_->RedrawScene(); }
  std::int32_t MessageBox(std::string, std::string, std::int32_t) override { return box::kOk; }

  // The page as built: "config" with "group" and control elements.
  const util::xml::Element& Page() const { return page_; }

 private:
  void AddControl(const std::string& kind, const std::string& label, const std::string& tooltip);
  void ForEachNode(const std::function<void(core::CoreNode*)>& act);
  static core::CoreNode* Core(CNode* node) { return static_cast<core::CoreNode*>(node); }

  core::AdaptorInterface* adaptor_;
  unidevice::PropertyHandler inputs_;
  util::xml::Element page_;
  std::vector<std::size_t> groupPath_;  // child indices from the page down to the current group
  util::Bytes saveData_;
  bool hasSaveData_ = false;
};

}  // namespace vuk::rgw::testing_support
