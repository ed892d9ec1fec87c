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
#include <QUrl>

#include "app/rgw/desktop/messagedialogs.h"
#include "core/messagebox.h"
#include "sdk/cinterface.h"

namespace vuk::app::desktop {

namespace {

constexpr const char* kCaption = "Quoll Rigworks";

// Where the 3D viewport goes until one is set.
QWidget* ViewportPlace(QWidget* parent) {
  auto* place = new QLabel("3D viewport", parent);
  place->setAlignment(Qt::AlignCenter);
  place->setMinimumSize(480, 360);
  place->setAutoFillBackground(true);
  place->setStyleSheet("QLabel { background: #3a3f47; color: #9aa3ad; font-size: 16px; }");
  return place;
}

}  // namespace

DesktopWindow::DesktopWindow(const std::string& version)
    : version_(version), split_(new QSplitter(Qt::Horizontal, this)), viewport_(ViewportPlace(split_)),
      log_(nullptr), outlinerDock_(new QDockWidget("Outliner", this)), timelineDock_(new QDockWidget("Timeline", this)) {
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
  split_->addWidget(viewport_);
  split_->setStretchFactor(0, 1);
  setCentralWidget(split_);
  outlinerDock_->setObjectName("outliner");
  timelineDock_->setObjectName("timeline");
  timelineDock_->setFeatures(QDockWidget::NoDockWidgetFeatures);
  addDockWidget(Qt::LeftDockWidgetArea, outlinerDock_);
  addDockWidget(Qt::BottomDockWidgetArea, timelineDock_);
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
  };
  ShowTitle();
  if (onSceneChanged) onSceneChanged(*session_);
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
  QMenu* view = menuBar()->addMenu("&View");
  view->addAction("&Rigworks panel", this, [this] { dlg_->Show(); });
  view->addAction(outlinerDock_->toggleViewAction());
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
  ShowTitle();
  FollowScene();
  if (onSceneChanged) onSceneChanged(*session_);
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
  ShowTitle();
  return true;
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

void DesktopWindow::SetViewport(QWidget* viewport) {
  if (!viewport) return;
  QWidget* old = split_->replaceWidget(0, viewport);
  viewport_ = viewport;
  delete old;
}

}  // namespace vuk::app::desktop
