#pragma once
// Chooses the channels the next takes record anew over the kept take: a box
// for each channel of the checked tools. None checked, a take records them all.

#include <QDialog>
#include <string>
#include <vector>

class QCheckBox;

namespace vuk::app::desktop {

class PunchInDialog : public QDialog {
 public:
  // `channels` listed in order; those in `chosen` start checked.
  PunchInDialog(const std::vector<std::string>& channels, const std::vector<std::string>& chosen,
                QWidget* parent = nullptr);

  // The checked channels, in the order listed.
  std::vector<std::string> Chosen() const;
  // Checks or clears the box of a channel; false when none is listed by that name.
  bool Check(const std::string& channel, bool checked);

 private:
  std::vector<std::string> channels_;
  // One a channel, in the same order.
  std::vector<QCheckBox*> boxes_;
};

}  // namespace vuk::app::desktop
