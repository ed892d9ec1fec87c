#include "app/rgw/desktop/messagedialogs.h"

#include <QMessageBox>
#include <QPointer>

#include "sdk/cinterface.h"

namespace vuk::app::desktop {

namespace {

namespace box = rgw::box;

std::int32_t Ask(QWidget* window, const std::string& text, const std::string& caption, std::int32_t style) {
  const std::int32_t buttons = style & 0xF;
  const std::int32_t icon = style & 0xF0;
  QMessageBox dialog(window);
  dialog.setWindowTitle(QString::fromStdString(caption));
  dialog.setText(QString::fromStdString(text));
  dialog.setIcon(icon == box::kCritical  ? QMessageBox::Critical
                 : icon == box::kWarning ? QMessageBox::Warning
                 : icon == box::kQuestion ? QMessageBox::Question
                                          : QMessageBox::Information);
  if (buttons == box::kYesNo) dialog.setStandardButtons(QMessageBox::Yes | QMessageBox::No);
  if (buttons == box::kYesNoCancel) dialog.setStandardButtons(QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
  if (buttons == box::kOkCancel) dialog.setStandardButtons(QMessageBox::Ok | QMessageBox::Cancel);
  switch (dialog.exec()) {
    case QMessageBox::Ok: return box::kOk;
    case QMessageBox::Yes: return box::kYes;
    case QMessageBox::No: return box::kNo;
    default: return box::kCancel;
  }
}

}  // namespace

rgw::core::MessageBoxSink DialogsOver(QWidget* window) {
  QPointer<QWidget> over(window);
  return [over](const std::string& text, const std::string& caption, std::int32_t style) {
    return Ask(over.data(), text, caption, style);
  };
}

}  // namespace vuk::app::desktop
