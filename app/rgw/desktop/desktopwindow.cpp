#include "app/rgw/desktop/desktopwindow.h"

#include <QAction>
#include <QDesktopServices>
#include <QDockWidget>
#include <QFileDialog>
#include <QFileInfo>
#include <QInputDialog>
#include <QLabel>
#include <QMenuBar>
#include <QSplitter>
#include <QStatusBar>
#include <QUrl>
#include <filesystem>

#include "app/rgw/desktop/messagedialogs.h"
#include "app/rgw/desktop/punchindialog.h"
#include "app/rgw/takerecovery.h"
#include "app/rgw/wording.h"
#include "core/corelog.h"
#include "core/messagebox.h"
#include "core/paths.h"
#include "sdk/cinterface.h"

namespace vuk::app::desktop {

namespace {

constexpr const char* kCaption = "Quoll Rigworks";
constexpr int kOutlinerWidth = 260;

// A scene never saved keeps its takes' journal in the user folder.
std::string UntitledScene() {
  const std::filesystem::path folder = rgw::core::GetUserFolder();
  std::error_code ignored;
  std::filesystem::create_directories(folder, ignored);
  return (folder / "untitled.gltf").string();
}

}  // namespace

DesktopWindow::DesktopWindow(const std::string& version)
    : version_(version), split_(new QSplitter(Qt::Horizontal, this)),
      viewport_(new gui::viewport::Viewport(split_)),
      countdown_(new CountdownDialog(viewport_)),
      log_(nullptr),
      punchInStatus_(new QLabel(this)),
      outlinerDock_(new QDockWidget("Outliner", this)),
      timelineDock_(new QDockWidget("Timeline", this)),
      recordingKeys_([this] {
        return session_ && session_->core.IsRecording() && !session_->core.GetRecorder()->IsResimulating();
      }) {
  desktop.openFile = [this](const std::string& caption, const std::string& filter) {
    return QFileDialog::getOpenFileName(this, QString::fromStdString(caption), QString(), QString::fromStdString(filter))
        .toStdString();
  };
  desktop.saveFile = [this](const std::string& caption, const std::string& filter) {
    return QFileDialog::getSaveFileName(this, QString::fromStdString(caption), QString(), QString::fromStdString(filter))
        .toStdString();
  };
  desktop.askText = [this](const std::string& caption, const std::string& initial) {
    return QInputDialog::getText(this, QString::fromStdString(caption), "Name:", QLineEdit::Normal,
                                 QString::fromStdString(initial))
        .toStdString();
  };
  desktop.openAddress = [](const std::string& address) {
    QDesktopServices::openUrl(QUrl(QString::fromStdString(address)));
  };
  rgw::core::SetMessageBoxSink(DialogsOver(this));
  viewport_->setMinimumSize(320, 240);
  // Clicked, the viewport holds the focus, so that keys go to the inputs.
  viewport_->setFocusPolicy(Qt::ClickFocus);
  split_->addWidget(viewport_);
  split_->setStretchFactor(0, 1);
  setCentralWidget(split_);
  outlinerDock_->setObjectName("outliner");
  timelineDock_->setObjectName("timeline");
  timelineDock_->setFeatures(QDockWidget::NoDockWidgetFeatures);
  addDockWidget(Qt::LeftDockWidgetArea, outlinerDock_);
  addDockWidget(Qt::BottomDockWidgetArea, timelineDock_);
  statusBar()->addPermanentWidget(punchInStatus_);
  StartSession();
  // The log is the process's: it outlives the sessions.
  auto* logDock = new QDockWidget("Log", this);
  logDock->setObjectName("log");
  log_ = new LogPane(logDock);
  logDock->setWidget(log_);
  addDockWidget(Qt::BottomDockWidgetArea, logDock);
  splitDockWidget(timelineDock_, logDock, Qt::Vertical);
  MakeMenus();
  resize(1280, 800);
  // Long node names would take the viewport's room.
  resizeDocks({outlinerDock_}, {kOutlinerWidth}, Qt::Horizontal);
}

DesktopWindow::~DesktopWindow() {
  EndSession();
  rgw::core::SetMessageBoxSink(nullptr);
}

void DesktopWindow::EndSession() {
  // The parts that look at the host go before it.
  delete timeline_;
  delete outliner_;
  timeline_ = nullptr;
  outliner_ = nullptr;
  viewport_->SetScene(nullptr);
  countdown_->hide();
  dlg_.reset();
  session_.reset();
}

void DesktopWindow::StartSession() {
  EndSession();
  session_ = std::make_unique<Session>();
  session_->host.SetMessageBoxSink(DialogsOver(this));
  session_->host.SetMainWindow(reinterpret_cast<rgw::core::WindowHandle>(winId()));
  dlg_ = std::make_unique<rgw::core::MainDlg>(session_->core, desktop, version_);
  // Without its layout (a broken install) the panel stays away; the log says why.
  if (QWidget* panel = dlg_->Widget()) {
    panel->setWindowFlags(Qt::Widget);
    split_->addWidget(panel);
    panel->show();
    // The viewport takes the room; the panel what it needs.
    split_->setCollapsible(1, false);
    split_->setSizes({split_->width(), panel->minimumSizeHint().width()});
  }
  outliner_ = new Outliner(*session_, outlinerDock_);
  outlinerDock_->setWidget(outliner_);
  timeline_ = new Timeline(session_->host, timelineDock_);
  timelineDock_->setWidget(timeline_);
  timeline_->onTick = [this] {
    // A recording moves the clock itself.
    if (session_->core.IsRecording() && timeline_->IsPlaying()) timeline_->Stop();
    dlg_->Update();
    outliner_->RefreshIfChanged();
    ShowTime();
  };
  viewport_->SetScene(&session_->host.GetScene());
  drawnTime_ = session_->host.GetTime();
  wasRecording_ = false;
  KeepJournal();
  ShowTitle();
  ShowPunchIn();
}

void DesktopWindow::KeepJournal() {
  const std::string scene = path_.empty() ? UntitledScene() : path_;
  journal_ = std::make_unique<rgw::core::TakeJournal>(rgw::core::JournalPathOf(scene));
  session_->core.GetRecorder()->journal = journal_.get();
}

void DesktopWindow::ShowTime() {
  const rgw::core::RecordManager& recorder = *session_->core.GetRecorder();
  const bool recording = recorder.IsRecording();
  const double now = session_->host.GetTime();
  // The tick after a recording ends draws its last keys too.
  if (now != drawnTime_ || recording || wasRecording_) {
    viewport_->SetTime(now);
    drawnTime_ = now;
  }
  if (recorder.countdownShown) {
    countdown_->ShowCount(recorder.countdownShownSeconds, recorder.countdownFraction);
  } else {
    countdown_->hide();
  }
  if (wasRecording_ && !recording && !journal_->Error().empty()) {
    rgw::core::CoreLog::Instance().Warning(journal_->Error() + "; the take went on without a journal");
  }
  wasRecording_ = recording;
}

void DesktopWindow::MakeMenus() {
  QMenu* file = menuBar()->addMenu("&File");
  file->addAction("&New", this, [this] { NewScene(); }, QKeySequence::New);
  file->addAction("&Open...", this, [this] {
    const std::string path = desktop.openFile("Open scene", kSceneFilter);
    if (!path.empty()) OpenScene(path);
  }, QKeySequence::Open);
  file->addAction("&Save", this, [this] { SaveScene(); }, QKeySequence::Save);
  file->addAction("Save &As...", this, [this] {
    const std::string path = desktop.saveFile("Save scene as", kSceneFilter);
    if (!path.empty()) SaveSceneAs(path);
  }, QKeySequence::SaveAs);
  file->addSeparator();
  file->addAction("&Quit", this, [this] { close(); }, QKeySequence::Quit);
  QMenu* edit = menuBar()->addMenu("&Edit");
  edit->addAction("&Undo", this, [this] { Undo(); }, QKeySequence::Undo);
  edit->addAction("&Redo", this, [this] { Redo(); }, QKeySequence::Redo);
  QMenu* record = menuBar()->addMenu("&Record");
  QAction* punchIn = record->addAction("&Punch in...", this, [this] { ChoosePunchIn(); });
  punchIn->setObjectName("punchIn");
  // A take under way keeps the channels it started with.
  connect(record, &QMenu::aboutToShow, this, [this, punchIn] { punchIn->setEnabled(!session_->core.IsRecording()); });
  QMenu* view = menuBar()->addMenu("&View");
  view->addAction("&Rigworks panel", this, [this] { dlg_->Show(); });
  view->addAction(outlinerDock_->toggleViewAction());
  view->addAction("&Frame all", this, [this] { viewport_->FrameNodes({}); }, Qt::Key_Home);
  view->addAction("Frame &selected", this, [this] { viewport_->FrameNodes(session_->host.GetScene().Selection()); },
                  Qt::Key_F);
  QMenu* look = view->addMenu("&Look through");
  connect(look, &QMenu::aboutToShow, this, [this, look] { FillLookThroughMenu(look); });
}

void DesktopWindow::ChoosePunchIn() {
  PunchInDialog dialog(session_->CheckedChannels(), session_->core.GetRecorder()->punchIn.channels, this);
  if (dialog.exec() == QDialog::Accepted) PunchIn(dialog.Chosen());
}

void DesktopWindow::PunchIn(const std::vector<std::string>& channels) {
  session_->core.GetRecorder()->punchIn.channels = channels;
  rgw::core::CoreLog::Instance().Info(channels.empty() ? "the next takes record every channel"
                                                       : "the next takes punch in " + Listed(channels));
  ShowPunchIn();
}

QString DesktopWindow::PunchInStatus() const { return punchInStatus_->text(); }

void DesktopWindow::ShowPunchIn() {
  const std::vector<std::string>& channels = session_->core.GetRecorder()->punchIn.channels;
  punchInStatus_->setText(channels.empty() ? QString() : QString::fromStdString("Punching in " + Listed(channels)));
}

void DesktopWindow::FillLookThroughMenu(QMenu* menu) {
  menu->clear();
  const std::string current = LookingThrough();
  const auto add = [this, menu, &current](const QString& label, const std::string& camera) {
    QAction* choice = menu->addAction(label, this, [this, camera] { LookThrough(camera); });
    choice->setCheckable(true);
    choice->setChecked(camera == current);
  };
  add("&Orbit", "");
  menu->addSeparator();
  for (const std::string& camera : Cameras()) add(QString::fromStdString(camera), camera);
}

std::vector<std::string> DesktopWindow::Cameras() {
  std::vector<std::string> names;
  session_->host.GetScene().Walk([&names](rgw::adaptor::standalone::SceneNode& node) {
    if (node.kind == rgw::adaptor::standalone::ObjectKind::kCamera) names.push_back(node.hostName);
  });
  return names;
}

bool DesktopWindow::LookThrough(const std::string& camera) {
  const rgw::adaptor::standalone::SceneNode* found = nullptr;
  session_->host.GetScene().Walk([&](rgw::adaptor::standalone::SceneNode& node) {
    if (node.kind == rgw::adaptor::standalone::ObjectKind::kCamera && node.hostName == camera) found = &node;
  });
  if (!found && !camera.empty()) return false;
  viewport_->LookThrough(found);
  return true;
}

std::string DesktopWindow::LookingThrough() const {
  const rgw::adaptor::standalone::SceneNode* camera = viewport_->View().Camera();
  return camera ? camera->hostName : std::string();
}

void DesktopWindow::ShowTitle() {
  const std::string scene = path_.empty() ? "untitled" : QFileInfo(QString::fromStdString(path_)).fileName().toStdString();
  const QString title = dlg_->Widget() ? dlg_->Widget()->windowTitle() + " - " : QString();
  setWindowTitle(title + QString::fromStdString(scene));
}

void DesktopWindow::FollowScene() {
  dlg_->RefreshTree();
  outliner_->Refresh();
  timeline_->Follow();
  viewport_->Redraw();
}

void DesktopWindow::NewScene() {
  path_.clear();
  StartSession();
}

bool DesktopWindow::OpenScene(const std::string& path) {
  StartSession();
  std::string error;
  if (!session_->Open(path, error)) {
    rgw::core::ShowMessageBox(error, kCaption, rgw::box::kWarning, true);
    path_.clear();
    StartSession();
    return false;
  }
  path_ = path;
  KeepJournal();
  ShowTitle();
  viewport_->SetScene(&session_->host.GetScene());
  FollowScene();
  OfferRecovery();
  return true;
}

bool DesktopWindow::SaveScene() {
  if (!path_.empty()) return SaveSceneAs(path_);
  const std::string path = desktop.saveFile ? desktop.saveFile("Save scene as", kSceneFilter) : "";
  return !path.empty() && SaveSceneAs(path);
}

bool DesktopWindow::SaveSceneAs(const std::string& path) {
  std::string error;
  if (!session_->Save(path, error)) {
    rgw::core::ShowMessageBox(error, kCaption, rgw::box::kWarning, true);
    return false;
  }
  path_ = path;
  // The take is in the file now; a recording under way keeps its journal.
  if (!session_->core.IsRecording()) {
    journal_->Remove();
    KeepJournal();
  }
  ShowTitle();
  return true;
}

void DesktopWindow::OfferRecovery() {
  const UnfinishedTake unfinished = FindUnfinishedTake(path_);
  if (!unfinished.found) return;
  if (!unfinished.Recoverable()) {
    rgw::core::CoreLog::Instance().Warning(unfinished.Problem() + "; no take to recover from it");
    return;
  }
  const std::string question =
      unfinished.path + " holds an unfinished take of " + unfinished.Description() + ". Recover it?";
  if (rgw::core::ShowMessageBox(question, kCaption, rgw::box::kYesNo | rgw::box::kQuestion, true) != rgw::box::kYes) {
    return;
  }
  std::string error;
  if (!RecoverTake(unfinished.reading.take, *session_, path_, error)) {
    rgw::core::ShowMessageBox(error, kCaption, rgw::box::kWarning, true);
    return;
  }
  rgw::core::CoreLog::Instance().Info("recovered the take of " + journal_->Path() + "; save to keep it");
  FollowScene();
}

void DesktopWindow::Undo() {
  rgw::core::RecordManager& recorder = *session_->core.GetRecorder();
  if (recorder.IsRecording() && !recorder.IsResimulating()) {
    recorder.RetakeAfterUndo();
  } else {
    session_->host.Undo();
  }
  FollowScene();
}

void DesktopWindow::Redo() {
  session_->host.Redo();
  FollowScene();
}

}  // namespace vuk::app::desktop
