// Reads arbitrary markup as a configuration profile into a page of every
// kind, then writes the page out and reads that back.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "core/configadaptor/elements.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace vuk::rgw::core::configadaptor::element;
  vuk::util::xml::Element profile;
  if (profile.ParseText(std::string(reinterpret_cast<const char*>(data), size)) != vuk::util::xml::kParsed) return 0;
  double stiffness = 1;
  std::int32_t gears = 4, mode = 0;
  bool hide = false;
  std::string note;
  Root root;
  auto* group = root.Add(new Group(-1, "Group", "", nullptr));
  group->Add(new Spinner(0, "Stiffness", "", nullptr, &stiffness, 0, 1, 1, 0));
  group->Add(new Spinner_Int(1, "Gears", "", nullptr, &gears, 0, 1, 1, 0));
  root.Add(new CheckBox(2, "Hide", "", nullptr, &hide));
  root.Add(new TextBox(3, "Note", "", nullptr, &note));
  root.Add(new ComboBox(4, "Mode", "", nullptr, &mode, {"a", "b"}));
  root.ReadAnyProfile(profile);
  vuk::util::xml::Element written = root.WriteNamedProfile("again");
  const double before = stiffness;
  root.ReadAnyProfile(written);
  // A double survives its own profile bit for bit (NaN payloads included).
  if (std::memcmp(&before, &stiffness, sizeof before) != 0) std::abort();
  root.BuildLayout();
  return 0;
}
