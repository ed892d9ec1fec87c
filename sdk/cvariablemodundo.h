#pragma once
// Undo of a whole variable: a copy of the value it had when the record was
// made. Tools push one for each history at the start of a recording, so that
// one undo takes the curves back together with the keys.

#include <cstdint>
#include <utility>
#include <vector>

#include "sdk/cundo.h"
#include "util/avar.h"
#include "util/qtransform.h"
#include "util/quat.h"
#include "util/vector3.h"

namespace vuk::rgw {

template <typename T>
class CVariableModUndo : public CUndo {
 public:
  explicit CVariableModUndo(T* target) : variable(target), saved(*target) {}

  void Undo(bool isRealUndo) override {
    if (!isRealUndo) {
      *variable = saved;
      return;
    }
    if (swapped) return;
    std::swap(*variable, saved);
    swapped = true;
  }

  void Redo() override {
    if (!swapped) return;
    std::swap(*variable, saved);
    swapped = false;
  }

  T* variable;
  T saved;
  bool swapped = false;
};

extern template class CVariableModUndo<bool>;
extern template class CVariableModUndo<std::int32_t>;
extern template class CVariableModUndo<double>;
extern template class CVariableModUndo<util::Vector3<double>>;
extern template class CVariableModUndo<util::AVar_Latest<bool>>;
extern template class CVariableModUndo<util::AVar_Latest<int>>;
extern template class CVariableModUndo<util::AVar_Latest<unsigned char>>;
extern template class CVariableModUndo<util::AVar_Linear<double>>;
extern template class CVariableModUndo<util::AVar_Nearest<bool>>;
extern template class CVariableModUndo<util::AVar_Nearest<double>>;
extern template class CVariableModUndo<util::AVar_Nearest<util::QTransform<double>>>;
extern template class CVariableModUndo<util::AVar_Nearest<util::Quat<double>>>;
extern template class CVariableModUndo<util::AVar_Nearest<util::Vector3<double>>>;
extern template class CVariableModUndo<std::vector<util::AVar_Linear<double>>>;

}  // namespace vuk::rgw
