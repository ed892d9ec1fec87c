#include "app/rgw/picture.h"

#include <QBuffer>
#include <QByteArray>
#include <cstdlib>
#include <string_view>

#include "util/atomicfile.h"

namespace vuk::app {

void DrawOffscreenWithoutDisplay() {
  if (!std::getenv("DISPLAY") && !std::getenv("WAYLAND_DISPLAY") && !std::getenv("QT_QPA_PLATFORM")) {
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
  }
}

bool SavePng(const QImage& picture, const std::string& path, std::string& error) {
  QByteArray bytes;
  QBuffer encoded(&bytes);
  if (!encoded.open(QIODevice::WriteOnly) || !picture.save(&encoded, "PNG")) {
    error = path + ": the picture can't be written";
    return false;
  }
  return vuk::util::AtomicFile::Replace(path, std::string_view(bytes.constData(), static_cast<std::size_t>(bytes.size())),
                                        &error);
}

}  // namespace vuk::app
