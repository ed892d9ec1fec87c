#pragma once
// The profile row of the configuration and input windows: a drop list of a
// tool's profiles and the operations on them. Each failure is a box with the
// message of the profile manager.

#include <functional>
#include <string>

#include "core/window/windowbase.h"
#include "core/xmlfilemanager.h"
#include "gui/component/choices.h"

namespace vuk::rgw::core {

class ProfilePanel {
 public:
  // `present` gives the tool's running values as a profile, `apply` loads one into the tool.
  ProfilePanel(XMLFileManager& profiles, const Desktop& desktop, std::function<util::xml::Element()> present,
               std::function<void(const util::xml::Element&)> apply)
      : profiles_(profiles), desktop_(desktop), present_(std::move(present)), apply_(std::move(apply)) {}

  // The list to fill, and the name to select in it.
  void Attach(gui::component::ComboBox* box, const std::string& current);
  // The chosen profile's name; empty when none is.
  std::string Selected() const;

  void Load();
  // Asks for a name, the chosen one offered; an existing name is overwritten
  // unless it is read-only.
  void Save();
  // False, after a box, when it can't be stored.
  bool SaveAs(const std::string& name);
  void Rename();
  void Delete();
  void Import();
  void Export();

 private:
  // Shows the names again, with that one chosen.
  void Fill(const std::string& chosen);
  // A box for a failure; true when there was none.
  static bool Done(const std::string& problem);

  XMLFileManager& profiles_;
  const Desktop& desktop_;
  std::function<util::xml::Element()> present_;
  std::function<void(const util::xml::Element&)> apply_;
  gui::component::ComboBox* box_ = nullptr;
};

}  // namespace vuk::rgw::core
