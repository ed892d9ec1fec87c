#include "app/rgw/desktop/outliner.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QPushButton>
#include <QTreeWidget>
#include <QTreeWidgetItemIterator>
#include <QVBoxLayout>

#include "adaptor/standalone/standalonenode.h"

namespace vuk::app::desktop {

using rgw::adaptor::standalone::SceneNode;
using rgw::adaptor::standalone::StandaloneNode;

namespace {

constexpr int kHandleRole = Qt::UserRole;

// "Car_Body (4WheelerExt_01)" for a tool's node, the name alone otherwise.
QString Label(const SceneNode& node, const StandaloneNode* owned) {
  QString label = QString::fromStdString(node.hostName);
  if (owned && owned->owner) {
    label += " (" + QString::fromStdString(dynamic_cast<rgw::core::Instance*>(owned->owner)->InstanceName()) + ")";
  }
  return label;
}

}  // namespace

Outliner::Outliner(Session& session, QWidget* parent)
    : QWidget(parent), session_(session), tree_(new QTreeWidget(this)), targets_(new QComboBox(this)) {
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(4, 4, 4, 4);
  tree_->setHeaderLabel("Scene");
  column->addWidget(tree_, 1);
  auto* row = new QHBoxLayout();
  auto* link = new QPushButton("Link below", this);
  auto* unlink = new QPushButton("Unlink", this);
  link->setToolTip("Hang the chosen tool node below the node named beside, where it stands.");
  unlink->setToolTip("Put the chosen node back at the top of the scene, where it stands.");
  row->addWidget(link);
  row->addWidget(targets_, 1);
  row->addWidget(unlink);
  column->addLayout(row);
  connect(tree_, &QTreeWidget::currentItemChanged, this, [this](QTreeWidgetItem* item) {
    SceneNode* node = item ? session_.host.GetScene().Find(item->data(0, kHandleRole).value<quint64>()) : nullptr;
    session_.host.GetScene().ClearSelection();
    if (node) session_.host.GetScene().Select(node);
  });
  connect(link, &QPushButton::clicked, this, [this] { LinkBelow(targets_->currentText().toStdString()); });
  connect(unlink, &QPushButton::clicked, this, [this] { Unlink(); });
  Refresh();
}

void Outliner::AddBelow(SceneNode& node, QTreeWidgetItem* parent) {
  for (SceneNode* child : node.children) {
    auto* item = parent ? new QTreeWidgetItem(parent) : new QTreeWidgetItem(tree_);
    item->setText(0, Label(*child, session_.host.FindOwnedOver(child)));
    item->setData(0, kHandleRole, QVariant::fromValue<quint64>(child->handle));
    item->setExpanded(true);
    if (child->selected) tree_->setCurrentItem(item);
    targets_->addItem(QString::fromStdString(child->hostName));
    AddBelow(*child, item);
  }
}

std::string Outliner::Signature() {
  std::string signature;
  session_.host.GetScene().Walk([&](SceneNode& node) {
    signature += std::to_string(node.handle) + ":" + (node.parent ? std::to_string(node.parent->handle) : "-") + ":" +
                 Label(node, session_.host.FindOwnedOver(&node)).toStdString() + "\n";
  });
  return signature;
}

void Outliner::RefreshIfChanged() {
  if (Signature() != shown_) Refresh();
}

void Outliner::Refresh() {
  shown_ = Signature();
  const QSignalBlocker quiet(tree_);
  const QString target = targets_->currentText();
  tree_->clear();
  targets_->clear();
  AddBelow(session_.host.GetScene().Root(), nullptr);
  targets_->setCurrentText(target);
}

bool Outliner::Choose(const std::string& hostName) {
  for (QTreeWidgetItemIterator it(tree_); *it; ++it) {
    SceneNode* node = session_.host.GetScene().Find((*it)->data(0, kHandleRole).value<quint64>());
    if (node && node->hostName == hostName) {
      tree_->setCurrentItem(*it);
      return true;
    }
  }
  return false;
}

SceneNode* Outliner::Chosen() const {
  QTreeWidgetItem* item = tree_->currentItem();
  return item ? session_.host.GetScene().Find(item->data(0, kHandleRole).value<quint64>()) : nullptr;
}

bool Outliner::LinkBelow(const std::string& hostName) {
  SceneNode* chosen = Chosen();
  StandaloneNode* owned = chosen ? session_.host.FindOwnedOver(chosen) : nullptr;
  if (!owned || !owned->owner) {
    status_ = "Choose a tool's node to link.";
    return false;
  }
  auto* instance = dynamic_cast<rgw::core::Instance*>(owned->owner);
  session_.host.BeginUndo("Link node");
  const bool linked = session_.Link(*instance, owned->name, hostName, true, status_);
  session_.host.EndUndo();
  if (linked) status_ = chosen->hostName + " hangs below " + hostName + ".";
  Refresh();
  return linked;
}

bool Outliner::Unlink() {
  SceneNode* chosen = Chosen();
  if (!chosen || chosen->parent == &session_.host.GetScene().Root()) {
    status_ = "Choose a node that hangs below another.";
    return false;
  }
  auto& scene = session_.host.GetScene();
  session_.host.BeginUndo("Unlink node");
  scene.SetParent(chosen, &scene.Root(), scene.clock.TickOf(session_.host.GetTime()));
  session_.host.EndUndo();
  status_ = chosen->hostName + " is at the top of the scene.";
  Refresh();
  return true;
}

}  // namespace vuk::app::desktop
