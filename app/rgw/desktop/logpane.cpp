#include "app/rgw/desktop/logpane.h"

#include <QFile>
#include <QFontDatabase>

#include "core/corelog.h"

namespace vuk::app::desktop {

LogPane::LogPane(QWidget* parent) : QPlainTextEdit(parent) {
  setReadOnly(true);
  setMaximumBlockCount(kMaxLines);
  setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  setPlaceholderText("The log of this session");
  // The file holds every run before this one: the pane starts near its end,
  // at the beginning of an entry.
  path_ = rgw::core::CoreLog::Instance().GetPath();
  QFile file(QString::fromStdString(path_));
  if (file.open(QIODevice::ReadOnly) && file.size() > kStartBytes && file.seek(file.size() - kStartBytes)) {
    file.readLine();
    readTo_ = file.pos();
  }
  refresh_.setInterval(kRefreshMs);
  connect(&refresh_, &QTimer::timeout, this, [this] { ReadNew(); });
  refresh_.start();
}

void LogPane::ReadNew() {
  QFile file(QString::fromStdString(path_));
  if (path_.empty() || !file.open(QIODevice::ReadOnly)) return;
  // A log started afresh is read from its beginning.
  if (file.size() < readTo_) readTo_ = 0;
  if (!file.seek(readTo_)) return;
  const QByteArray text = file.readAll();
  readTo_ += text.size();
  if (text.isEmpty()) return;
  moveCursor(QTextCursor::End);
  insertPlainText(QString::fromUtf8(text));
  moveCursor(QTextCursor::End);
}

}  // namespace vuk::app::desktop
