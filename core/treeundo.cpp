#include "core/treeundo.h"

#include <algorithm>

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

void InstanceReferenceMove::MoveTo(const Place& place) {
  if (item_->parent) item_->parent->TakeChild(item_);
  place.parent->InsertChild(std::min(place.index, place.parent->GetChildCount()), item_);
  item_->parent = place.parent;
}

void InstanceReferenceRename::Apply(const std::string& name) {
  instance_->Rename(name);
}

}  // namespace vuk::rgw::core
