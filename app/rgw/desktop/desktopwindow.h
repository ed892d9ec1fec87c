#pragma once
// The desktop app: the embedded host's parts (a place for the 3D viewport,
// the timeline, the outliner, scene files, undo and a log pane) around the
// main window of the core. Each scene file gets a session of its own: the
// core started on a fresh host, as the command line starts it.

#include <QMainWindow>
#include <functional>
#include <memory>
#include <string>

#include "app/rgw/desktop/logpane.h"
#include "app/rgw/desktop/outliner.h"
#include "app/rgw/desktop/timeline.h"
#include "app/rgw/session.h"
#include "core/window/maindlg.h"

class QDockWidget;
class QSplitter;

namespace vuk::app::desktop {

class DesktopWindow : public QMainWindow {
 public:
  static constexpr const char* kSceneFilter = "glTF scenes (*.gltf *.glb);;All files (*.*)";

  explicit DesktopWindow(const std::string& version);
  ~DesktopWindow() override;

  // An empty scene with no tools.
  void NewScene();
  // The scene of the file with its tools; false, after a box, when it can't be read.
  bool OpenScene(const std::string& path);
  // To the file it came from, or to one the user names.
  bool SaveScene();
  // Writes the scene with its tools' tags; false after a box.
  bool SaveSceneAs(const std::string& path);
  // The host's undo and redo; during a recording, undo throws the take away
  // and records it again.
  void Undo();
  void Redo();

  // The viewport takes the place kept for it; the window owns it.
  void SetViewport(QWidget* viewport);
  // Told when a new session replaces the scene, so that a viewport shows it.
  std::function<void(Session&)> onSceneChanged;

  Session& GetSession() { return *session_; }
  rgw::core::MainDlg& GetMainDlg() { return *dlg_; }
  Timeline& GetTimeline() { return *timeline_; }
  Outliner& GetOutliner() { return *outliner_; }
  const std::string& ScenePath() const { return path_; }
  // The dialogs the windows use; tests answer them.
  rgw::core::Desktop desktop;

 private:
  // Takes down the session's parts and makes them anew on a new session.
  void StartSession();
  void EndSession();
  void MakeMenus();
  void ShowTitle();
  // The parts that show the scene and its tools, after it changed.
  void FollowScene();

  std::string version_;
  std::string path_;
  QSplitter* split_;
  QWidget* viewport_;
  LogPane* log_;
  QDockWidget* outlinerDock_;
  QDockWidget* timelineDock_;
  std::unique_ptr<Session> session_;
  std::unique_ptr<rgw::core::MainDlg> dlg_;
  Timeline* timeline_ = nullptr;
  Outliner* outliner_ = nullptr;
};

}  // namespace vuk::app::desktop
