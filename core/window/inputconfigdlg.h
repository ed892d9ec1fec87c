#pragma once
// The input window of a tool: its channels, each bound to a control by
// moving it, with the channel's response (multiplier, exponent, dead zone,
// offset) and its curve; and the tool's input profiles.

#include <QTimer>
#include <cstdint>

#include "core/instance.h"
#include "core/plugin.h"
#include "core/window/profilepanel.h"
#include "core/window/windowbase.h"

namespace vuk::rgw::core {

class InputConfigDlg : public WindowBase {
 public:
  static constexpr const char* kLayout = "/core/layout/rgw_inputs.xml";
  // How long a detection waits for a control to move.
  static constexpr int kDetectMs = 10000;
  static constexpr int kDetectPollMs = 30;

  InputConfigDlg(Instance& instance, Plugin& plugin, const Desktop& desktop);
  Instance& GetInstance() const { return instance_; }
  ProfilePanel& Profiles() { return profiles_; }
  // The channel chosen in the list; null when none is.
  unidevice::Property* Channel() const;
  bool IsDetecting() const { return detectTimer_.isActive(); }
  // One look at every device during a detection: the control that moved
  // binds the chosen channel. True when one did.
  bool PollDetection();

 private:
  // The list of channels, the chosen one's binding, numbers and curve.
  void ShowChannels();
  void ShowChannel();
  void StartDetection();
  void StopDetection(const std::string& status);
  // A spinner changed the number it stands for.
  void SetNumber(double unidevice::Property::*number, std::int32_t spinner);

  Instance& instance_;
  ProfilePanel profiles_;
  QTimer detectTimer_;
  std::int64_t detectLeftMs_ = 0;
};

}  // namespace vuk::rgw::core
