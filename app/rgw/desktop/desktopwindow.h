#pragma once
// The desktop app: the embedded host's parts (the 3D viewport, the timeline,
// the outliner, scene files, undo and a log pane) around the main window of
// the core. Each scene file gets a session of its own: the
// core started on a fresh host, as the command line starts it.

#include <QMainWindow>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "app/rgw/desktop/countdowndialog.h"
#include "app/rgw/desktop/logpane.h"
#include "app/rgw/desktop/outliner.h"
#include "app/rgw/desktop/recordingkeys.h"
#include "app/rgw/desktop/timeline.h"
#include "app/rgw/session.h"
#include "core/takejournal.h"
#include "core/window/maindlg.h"
#include "gui/viewport/viewport.h"

class QDockWidget;
class QLabel;
class QMenu;
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

  // Asks, in a dialog of the checked tools' channels, which channels the next
  // takes record anew over the kept take.
  void ChoosePunchIn();
  // The channels the next takes punch in; none, a take records them all.
  void PunchIn(const std::vector<std::string>& channels);
  // What the status bar says of them.
  QString PunchInStatus() const;

  // Looks through the camera node of that name, or from the orbit for an
  // empty name; false when the scene has no such camera.
  bool LookThrough(const std::string& camera);
  // The name of the camera looked through; empty for the orbit.
  std::string LookingThrough() const;
  // The scene's camera nodes, in scene order.
  std::vector<std::string> Cameras();

  Session& GetSession() { return *session_; }
  rgw::core::MainDlg& GetMainDlg() { return *dlg_; }
  Timeline& GetTimeline() { return *timeline_; }
  Outliner& GetOutliner() { return *outliner_; }
  gui::viewport::Viewport& GetViewport() { return *viewport_; }
  const CountdownDialog& GetCountdown() const { return *countdown_; }
  // Where a take recorded now leaves its journal.
  const std::string& JournalPath() const { return journal_->Path(); }
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
  // After each look at the clock: the viewport draws a time that moved, and
  // every frame while the recorder runs, with the countdown over it.
  void ShowTime();
  void FillLookThroughMenu(QMenu* menu);
  // The status bar's word on the punch-in of the session's recorder.
  void ShowPunchIn();
  // A journal for the takes of the scene file at hand, or of the user
  // folder's untitled scene for one never saved.
  void KeepJournal();
  // Opened, a scene whose journal holds an unfinished take offers it back.
  void OfferRecovery();

  std::string version_;
  std::string path_;
  QSplitter* split_;
  gui::viewport::Viewport* viewport_;
  CountdownDialog* countdown_;
  LogPane* log_;
  QLabel* punchInStatus_;
  QDockWidget* outlinerDock_;
  QDockWidget* timelineDock_;
  std::unique_ptr<Session> session_;
  std::unique_ptr<rgw::core::MainDlg> dlg_;
  Timeline* timeline_ = nullptr;
  Outliner* outliner_ = nullptr;
  std::unique_ptr<rgw::core::TakeJournal> journal_;
  RecordingKeys recordingKeys_;
  double drawnTime_ = 0;
  bool wasRecording_ = false;
};

}  // namespace vuk::app::desktop
