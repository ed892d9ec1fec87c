#include "core/treeundo.h"

namespace vuk::rgw::core {

TreePlaceRestore::~TreePlaceRestore() {
  // An item that ends its life out of the tree has no other owner.
  if (out_) delete item_;
}

void TreePlaceRestore::Place(bool out) {
  if (out == out_) return;
  if (out) {
    parent_->TakeChild(item_);
    item_->parent = nullptr;
  } else {
    parent_->InsertChild(index_, item_);
    item_->parent = parent_;
  }
  out_ = out;
}

void TreePlaceRestore::Undo(bool) { Place(!outAfterDo_); }

void TreePlaceRestore::Redo() { Place(outAfterDo_); }

void InstanceReferenceRename::Apply(const std::string& name) {
  instance_->Rename(name);
}

}  // namespace vuk::rgw::core
