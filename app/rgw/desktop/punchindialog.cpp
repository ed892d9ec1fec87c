#include "app/rgw/desktop/punchindialog.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QVBoxLayout>
#include <algorithm>

namespace vuk::app::desktop {

PunchInDialog::PunchInDialog(const std::vector<std::string>& channels, const std::vector<std::string>& chosen,
                             QWidget* parent)
    : QDialog(parent), channels_(channels) {
  setWindowTitle("Punch in");
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(new QLabel(channels.empty() ? "No checked tool has a channel."
                                                : "Record anew only these channels; the others play back the take:"));
  for (const std::string& channel : channels) {
    // A channel's "&" is shown, not a shortcut.
    auto* box = new QCheckBox(QString::fromStdString(channel).replace("&", "&&"), this);
    box->setChecked(std::find(chosen.begin(), chosen.end(), channel) != chosen.end());
    layout->addWidget(box);
    boxes_.push_back(box);
  }
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  layout->addWidget(buttons);
}

std::vector<std::string> PunchInDialog::Chosen() const {
  std::vector<std::string> chosen;
  for (std::size_t i = 0; i < boxes_.size(); ++i) {
    if (boxes_[i]->isChecked()) chosen.push_back(channels_[i]);
  }
  return chosen;
}

bool PunchInDialog::Check(const std::string& channel, bool checked) {
  const auto found = std::find(channels_.begin(), channels_.end(), channel);
  if (found == channels_.end()) return false;
  boxes_[found - channels_.begin()]->setChecked(checked);
  return true;
}

}  // namespace vuk::app::desktop
