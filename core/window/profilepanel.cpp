#include "core/window/profilepanel.h"

#include "core/messagebox.h"
#include "sdk/cinterface.h"

namespace vuk::rgw::core {

namespace {

constexpr const char* kCaption = "Quoll Rigworks";
constexpr const char* kFilter = "Profiles (*.ccp *.cip *.xml);;All files (*.*)";

}  // namespace

void ProfilePanel::Attach(gui::component::ComboBox* box, const std::string& current) {
  box_ = box;
  Fill(current);
}

void ProfilePanel::Fill(const std::string& chosen) {
  if (!box_) return;
  const std::vector<std::string> names = profiles_.Names();
  box_->SetItems(names);
  std::int32_t index = -1;
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (XMLFileManager::Lower(names[i]) == XMLFileManager::Lower(chosen)) index = static_cast<std::int32_t>(i);
  }
  box_->SetSelected(index);
}

std::string ProfilePanel::Selected() const {
  if (!box_ || box_->selected < 0 || box_->selected >= static_cast<std::int32_t>(box_->items.size())) return {};
  return box_->items[static_cast<std::size_t>(box_->selected)].label;
}

bool ProfilePanel::Done(const std::string& problem) {
  if (problem.empty()) return true;
  ShowMessageBox(problem, kCaption, box::kWarning);
  return false;
}

void ProfilePanel::Load() {
  const util::xml::Element* profile = profiles_.Find(Selected());
  if (!Done(profile ? "" : XMLFileManager::kSelect)) return;
  apply_(*profile);
}

void ProfilePanel::Save() {
  const std::string name = desktop_.askText ? desktop_.askText("Save profile as", Selected()) : "";
  if (!name.empty()) SaveAs(name);
}

bool ProfilePanel::SaveAs(const std::string& name) {
  if (!Done(profiles_.Store(present_(), name, true))) return false;
  Fill(name);
  return true;
}

void ProfilePanel::Rename() {
  const std::string from = Selected();
  if (!Done(from.empty() ? XMLFileManager::kSelect : "")) return;
  const std::string to = desktop_.askText ? desktop_.askText("Rename profile", from) : "";
  if (!to.empty() && Done(profiles_.Rename(from, to))) Fill(to);
}

void ProfilePanel::Delete() {
  const std::string name = Selected();
  if (Done(name.empty() ? XMLFileManager::kSelect : profiles_.Delete(name))) Fill("");
}

void ProfilePanel::Import() {
  const std::string path = desktop_.openFile ? desktop_.openFile("Import profile", kFilter) : "";
  if (!path.empty() && Done(profiles_.Import(path))) Fill(Selected());
}

void ProfilePanel::Export() {
  const std::string name = Selected();
  if (!Done(name.empty() ? XMLFileManager::kSelect : "")) return;
  const std::string path = desktop_.saveFile ? desktop_.saveFile("Export profile", kFilter) : "";
  if (!path.empty()) Done(profiles_.Export(name, path));
}

}  // namespace vuk::rgw::core
