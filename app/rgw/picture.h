#pragma once
// What the commands that draw share: drawing offscreen when there is no
// display, and writing a picture as a PNG file, whole or not at all.

#include <QImage>
#include <string>

namespace vuk::app {

// Before the application starts: without a display, Qt draws offscreen.
void DrawOffscreenWithoutDisplay();

// False with the reason, naming the file, in `error`.
bool SavePng(const QImage& picture, const std::string& path, std::string& error);

}  // namespace vuk::app
