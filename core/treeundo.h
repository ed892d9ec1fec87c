#pragma once
// Undo records of the tool tree: an item made or taken out can be put back
// and taken out again; what is out of the tree when the record goes is freed.

#include <cstddef>
#include <string>

#include "core/instancereference.h"
#include "sdk/cundo.h"

namespace vuk::rgw::core {

// Holds an item and its place: `out` tells whether it is out of the tree now.
class TreePlaceRestore : public CUndo {
 public:
  TreePlaceRestore(InstanceReference* item, TreeItem* parent, std::size_t index, bool outAfterDo)
      : item_(item), parent_(parent), index_(index), outAfterDo_(outAfterDo), out_(outAfterDo) {}
  ~TreePlaceRestore() override;
  void Undo(bool isRealUndo) override;
  void Redo() override;

 private:
  void Place(bool out);

  InstanceReference* item_;
  TreeItem* parent_;
  std::size_t index_;
  bool outAfterDo_;
  bool out_;
};

// A tool made: undo takes it out, redo puts it back.
class InstanceReferenceCreateRestore : public TreePlaceRestore {
 public:
  InstanceReferenceCreateRestore(InstanceReference* item, TreeItem* parent, std::size_t index)
      : TreePlaceRestore(item, parent, index, false) {}
};

// A tool deleted: undo puts it back, redo takes it out.
class InstanceReferenceDeleteRestore : public TreePlaceRestore {
 public:
  InstanceReferenceDeleteRestore(InstanceReference* item, TreeItem* parent, std::size_t index)
      : TreePlaceRestore(item, parent, index, true) {}
};

// A tool moved to another parent in the tree: undo puts it back in its old
// place, redo in its new one. The item is in the tree either way.
class InstanceReferenceMove : public CUndo {
 public:
  struct Place {
    TreeItem* parent;
    std::size_t index;
  };
  InstanceReferenceMove(InstanceReference* item, Place from, Place to) : item_(item), from_(from), to_(to) {}
  void Undo(bool) override { MoveTo(from_); }
  void Redo() override { MoveTo(to_); }

 private:
  void MoveTo(const Place& place);
  InstanceReference* item_;
  Place from_, to_;
};

class InstanceReferenceRename : public CUndo {
 public:
  InstanceReferenceRename(Instance* instance, std::string before, std::string after)
      : instance_(instance), before_(std::move(before)), after_(std::move(after)) {}
  void Undo(bool) override { Apply(before_); }
  void Redo() override { Apply(after_); }

 private:
  void Apply(const std::string& name);
  Instance* instance_;
  std::string before_, after_;
};

}  // namespace vuk::rgw::core
