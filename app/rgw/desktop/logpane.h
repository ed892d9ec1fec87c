#pragma once
// The core's log as it grows: the entries written since the pane opened.

#include <QPlainTextEdit>
#include <QTimer>
#include <string>

namespace vuk::app::desktop {

class LogPane : public QPlainTextEdit {
 public:
  static constexpr int kRefreshMs = 250;
  // At most this many lines stay shown.
  static constexpr int kMaxLines = 5000;
  // How much of the log's end the pane shows when it opens.
  static constexpr qint64 kStartBytes = 8192;

  explicit LogPane(QWidget* parent = nullptr);
  // Reads what was written to the log since the last look.
  void ReadNew();

 private:
  std::string path_;
  qint64 readTo_ = 0;
  QTimer refresh_;
};

}  // namespace vuk::app::desktop
