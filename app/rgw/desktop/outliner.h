#pragma once
// The scene's nodes as a tree: choosing one selects it in the scene; a
// tool's node can be linked below another node and unlinked again, each
// undoable.

#include <QWidget>
#include <string>

#include "app/rgw/session.h"

class QComboBox;
class QTreeWidget;
class QTreeWidgetItem;

namespace vuk::app::desktop {

class Outliner : public QWidget {
 public:
  Outliner(Session& session, QWidget* parent = nullptr);

  // Shows the scene's nodes again, and the nodes a tool's node can go below.
  void Refresh();
  // The same, only when nodes came, went, moved or were renamed since.
  void RefreshIfChanged();
  // The node chosen, by its name in the scene; false when there is none.
  bool Choose(const std::string& hostName);
  // Links the chosen tool node below the scene node of that name, where it
  // stands; false with the reason in the status when it can't.
  bool LinkBelow(const std::string& hostName);
  // Puts the chosen node back at the top of the scene, where it stands.
  bool Unlink();
  const std::string& Status() const { return status_; }

 private:
  rgw::adaptor::standalone::SceneNode* Chosen() const;
  // What the tree shows, in short: each node's handle, parent and label.
  std::string Signature();
  void AddBelow(rgw::adaptor::standalone::SceneNode& node, QTreeWidgetItem* parent);

  Session& session_;
  QTreeWidget* tree_;
  QComboBox* targets_;
  std::string status_;
  std::string shown_;
};

}  // namespace vuk::app::desktop
