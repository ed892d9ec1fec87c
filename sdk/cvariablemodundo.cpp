#include "sdk/cvariablemodundo.h"

namespace vuk::rgw {

template class CVariableModUndo<bool>;
template class CVariableModUndo<std::int32_t>;
template class CVariableModUndo<double>;
template class CVariableModUndo<util::Vector3<double>>;
template class CVariableModUndo<util::AVar_Latest<bool>>;
template class CVariableModUndo<util::AVar_Latest<int>>;
template class CVariableModUndo<util::AVar_Latest<unsigned char>>;
template class CVariableModUndo<util::AVar_Linear<double>>;
template class CVariableModUndo<util::AVar_Nearest<bool>>;
template class CVariableModUndo<util::AVar_Nearest<double>>;
template class CVariableModUndo<util::AVar_Nearest<util::QTransform<double>>>;
template class CVariableModUndo<util::AVar_Nearest<util::Quat<double>>>;
template class CVariableModUndo<util::AVar_Nearest<util::Vector3<double>>>;
template class CVariableModUndo<std::vector<util::AVar_Linear<double>>>;

}  // namespace vuk::rgw
