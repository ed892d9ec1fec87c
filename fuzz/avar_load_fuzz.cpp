// Loads arbitrary bytes as a saved history of each record size; whatever
// loads must save back to exactly the bytes it was read from.
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "util/avar.h"

namespace {

// Values made of doubles come back bit for bit; small values are re-padded
// with zeros and so are only checked for safety.
template <typename Var, bool kExact = true>
void LoadAndSaveAgain(const std::uint8_t* data, std::size_t size) {
  Var history;
  if (!history.Load(data, size)) return;
  const std::uint32_t saveSize = history.GetSaveSize();
  if (saveSize > size) std::abort();  // a load never claims more than it was given
  std::uint8_t* block = new std::uint8_t[saveSize];
  history.Save(block, saveSize);
  // A block whose payload field disagreed loads default records instead.
  std::uint32_t payload = 0;
  std::memcpy(&payload, data + 4, 4);
  if (kExact && payload == saveSize - 16 && std::memcmp(block, data, saveSize) != 0) std::abort();
  delete[] block;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace vuk::util;
  LoadAndSaveAgain<AVar_Linear<double>>(data, size);
  LoadAndSaveAgain<AVar_Latest<int>, false>(data, size);
  LoadAndSaveAgain<AVar_Nearest<Vector3<double>>>(data, size);
  LoadAndSaveAgain<AVar_Nearest<Quat<double>>>(data, size);
  LoadAndSaveAgain<AVar_Nearest<QTransform<double>>>(data, size);
  return 0;
}
