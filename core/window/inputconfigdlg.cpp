#include "core/window/inputconfigdlg.h"

#include "gui/component/controls.h"
#include "unidevice/driver.h"
#include "unidevice/driverlist.h"

namespace vuk::rgw::core {

namespace {

constexpr std::int32_t kChannels = 310;
constexpr std::int32_t kBinding = 311;
constexpr std::int32_t kCurve = 318;
// The curve is drawn through this many points from -1 to 1.
constexpr int kCurvePoints = 41;

util::xml::Element TitledLayout(const Instance& instance) {
  util::xml::Element layout = ReadLayout(InputConfigDlg::kLayout);
  layout.SetAttribute("label") = "Input Settings - " + instance.InstanceName();
  return layout;
}

std::string BindingText(const unidevice::Property& channel) {
  const std::string bound = channel.config.GetChild("description").GetText();
  if (!bound.empty()) return bound + (channel.source ? "" : " (not connected)");
  return channel.config.IsEmpty() ? "No control bound" : "A control without a name";
}

}  // namespace

InputConfigDlg::InputConfigDlg(Instance& instance, Plugin& plugin, const Desktop& desktop)
    : WindowBase("InputConfigDlg", TitledLayout(instance)),
      instance_(instance),
      profiles_(
          plugin.InputProfiles(), desktop, [&instance] { return instance.InputProfile(); },
          [this](const util::xml::Element& profile) {
            instance_.ApplyInputProfile(profile);
            ShowChannel();
          }) {
  detectTimer_.setInterval(kDetectPollMs);
  QObject::connect(&detectTimer_, &QTimer::timeout, [this] {
    detectLeftMs_ -= kDetectPollMs;
    if (!PollDetection() && detectLeftMs_ <= 0) StopDetection("No control moved. Press Detect... and move one.");
  });
  if (!IsBuilt()) return;
  profiles_.Attach(ControlOf<gui::component::ComboBox>(301), instance.InputProfile().GetAttribute("name"));
  On(302, [this](std::int32_t) { profiles_.Load(); });
  On(303, [this](std::int32_t) { profiles_.Save(); });
  On(304, [this](std::int32_t) { profiles_.Delete(); });
  On(kChannels, [this](std::int32_t) { ShowChannel(); });
  On(312, [this](std::int32_t) { StartDetection(); });
  On(313, [this](std::int32_t) {
    if (unidevice::Property* channel = Channel()) channel->Bind(nullptr);
    ShowChannel();
  });
  On(314, [this](std::int32_t id) { SetNumber(&unidevice::Property::multiplier, id); });
  On(315, [this](std::int32_t id) { SetNumber(&unidevice::Property::exponent, id); });
  On(316, [this](std::int32_t id) { SetNumber(&unidevice::Property::deadzone, id); });
  On(317, [this](std::int32_t id) { SetNumber(&unidevice::Property::offset, id); });
  On(320, [this](std::int32_t) {
    StopDetection("");
    Close();
  });
  ShowChannels();
}

unidevice::Property* InputConfigDlg::Channel() const {
  const auto* list = ControlOf<gui::component::ListBox>(kChannels);
  return list && list->selected >= 0 ? instance_.Inputs().Get(static_cast<std::size_t>(list->selected)) : nullptr;
}

void InputConfigDlg::ShowChannels() {
  auto* list = ControlOf<gui::component::ListBox>(kChannels);
  std::vector<std::string> names;
  for (std::size_t i = 0; i < instance_.Inputs().Count(); ++i) {
    const unidevice::Property& channel = *instance_.Inputs().Get(i);
    names.push_back(channel.displayName.empty() ? channel.name : channel.displayName);
  }
  list->SetItems(names);
  list->SetSelected(names.empty() ? -1 : 0);
  ShowChannel();
}

void InputConfigDlg::ShowChannel() {
  const unidevice::Property* channel = Channel();
  ControlOf<gui::component::Label>(kBinding)->SetText(channel ? BindingText(*channel) : "No channel chosen");
  if (!channel) return;
  ControlOf<gui::component::Spinner>(314)->SetValue(channel->multiplier);
  ControlOf<gui::component::Spinner>(315)->SetValue(channel->exponent);
  ControlOf<gui::component::Spinner>(316)->SetValue(channel->deadzone);
  ControlOf<gui::component::Spinner>(317)->SetValue(channel->offset);
  std::vector<std::pair<double, double>> curve;
  for (int i = 0; i < kCurvePoints; ++i) {
    const double x = -1.0 + 2.0 * i / (kCurvePoints - 1);
    curve.emplace_back(x, channel->Response(x));
  }
  ControlOf<gui::component::Graph>(kCurve)->SetCurve(curve);
}

void InputConfigDlg::SetNumber(double unidevice::Property::*number, std::int32_t spinner) {
  unidevice::Property* channel = Channel();
  if (!channel) return;
  channel->*number = ControlOf<gui::component::Spinner>(spinner)->GetValue();
  ShowChannel();
}

void InputConfigDlg::StartDetection() {
  if (!Channel()) return;
  // A first look takes the controls' present values, so that only a move counts.
  for (unidevice::Driver* driver : unidevice::DriverList::Instance().All()) driver->DetectControl({});
  detectLeftMs_ = kDetectMs;
  detectTimer_.start();
  ControlOf<gui::component::Label>(kBinding)->SetText("Move the control that should drive this channel...");
}

bool InputConfigDlg::PollDetection() {
  unidevice::Property* channel = Channel();
  if (!channel || !IsDetecting()) return false;
  for (unidevice::Driver* driver : unidevice::DriverList::Instance().All()) {
    if (unidevice::Control* moved = driver->DetectControl({})) {
      channel->Bind(moved);
      StopDetection("");
      return true;
    }
  }
  return false;
}

void InputConfigDlg::StopDetection(const std::string& status) {
  detectTimer_.stop();
  ShowChannel();
  if (!status.empty()) ControlOf<gui::component::Label>(kBinding)->SetText(status);
}

}  // namespace vuk::rgw::core
