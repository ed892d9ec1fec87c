// Loads arbitrary bytes as a saved history of each record size (16, 32, 40
// and 64 bytes) through the size-checked Load. Whatever loads must save back
// to the bytes it was read from (small values modulo their padding), and the
// unsized Load must agree with the sized one over the block's own length.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <type_traits>
#include <vector>

#include "util/avar.h"

namespace {

using namespace vuk::util;

std::uint32_t U32At(const std::uint8_t* p) {
  return static_cast<std::uint32_t>(p[0]) | static_cast<std::uint32_t>(p[1]) << 8 |
         static_cast<std::uint32_t>(p[2]) << 16 | static_cast<std::uint32_t>(p[3]) << 24;
}

void Check(bool ok) {
  if (!ok) std::abort();
}

template <typename Var>
std::vector<std::uint8_t> SaveAll(const Var& history) {
  std::vector<std::uint8_t> block(history.GetSaveSize());
  Check(history.Save(block.data(), static_cast<std::uint32_t>(block.size())) == block.size());
  return block;
}

// How the value part of a re-saved record must relate to the loaded one.
template <typename T>
bool ValueBytesMatch(const std::uint8_t* saved, const std::uint8_t* loaded) {
  constexpr std::size_t kValue = AVar<T>::kRecordSize - 8;
  std::size_t meaningful = kValue;
  if constexpr (std::is_same_v<T, int>) meaningful = 4;
  if constexpr (std::is_same_v<T, bool> || std::is_same_v<T, unsigned char>) meaningful = 1;
  if constexpr (std::is_same_v<T, bool>) {
    if (saved[0] != (loaded[0] != 0 ? 1 : 0)) return false;
  } else if (std::memcmp(saved, loaded, meaningful) != 0) {
    return false;
  }
  for (std::size_t i = meaningful; i < kValue; ++i) {
    if (saved[i] != 0) return false;  // padding goes out as zeros
  }
  return true;
}

template <typename Var>
void LoadAndSaveAgain(const std::uint8_t* data, std::size_t size) {
  using T = typename Var::Value;
  constexpr std::uint32_t kRecord = Var::kRecordSize;

  Var history;
  const bool loaded = history.Load(data, size);

  // The unsized form over the block's own length must do the same.
  if (size >= 16 && U32At(data) == 16 && 16 + static_cast<std::uint64_t>(U32At(data + 4)) <= size) {
    Var unsized;
    const bool alsoLoaded = unsized.Load(data);
    Var sized;
    const bool sizedLoaded = sized.Load(data, 16 + static_cast<std::size_t>(U32At(data + 4)));
    Check(alsoLoaded == sizedLoaded);
    if (alsoLoaded) Check(SaveAll(unsized) == SaveAll(sized));
  }

  if (!loaded) {
    Check(history.records.empty());
    return;
  }
  const std::uint32_t count = U32At(data + 12);
  Check(history.records.size() == count);
  const std::uint32_t saveSize = history.GetSaveSize();
  Check(saveSize == 16 + static_cast<std::uint64_t>(count) * kRecord);
  Check(saveSize <= size);  // a load never claims more than it was given

  const std::vector<std::uint8_t> block = SaveAll(history);
  Check(std::memcmp(block.data(), data, 4) == 0);          // header size
  Check(U32At(block.data() + 4) == saveSize - 16);         // payload
  Check(std::memcmp(block.data() + 8, data + 8, 8) == 0);  // version, count
  const bool recordsRead = U32At(data + 4) == saveSize - 16;
  // A default record: time 0 and the type's default value.
  Var one;
  one.records.emplace_back();
  const std::vector<std::uint8_t> defaultRecord = SaveAll(one);
  for (std::uint32_t i = 0; i < count; ++i) {
    const std::size_t at = 16 + static_cast<std::size_t>(i) * kRecord;
    if (recordsRead) {
      Check(std::memcmp(block.data() + at, data + at, 8) == 0);
      Check(ValueBytesMatch<T>(block.data() + at + 8, data + at + 8));
    } else {
      Check(std::memcmp(block.data() + at, defaultRecord.data() + 16, kRecord) == 0);
    }
  }

  // Loading what was saved gives the same block again.
  Var again;
  Check(again.Load(block.data(), block.size()));
  Check(SaveAll(again) == block);

  // Loaded records may be out of order, duplicated or NaN: reading and
  // trimming them must stay defined.
  if (count > 0) {
    const double first = history.records.front().time;
    const double last = history.records.back().time;
    (void)history.Get(first);
    (void)history.Get(last);
    (void)history.Get((first + last) / 2);
    (void)history.FindNearest(last - 1);
    history.Set(last, history.defaultValue);
    history.RemoveFrom((first + last) / 2);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  LoadAndSaveAgain<AVar_Linear<double>>(data, size);               // 16, doubles come back bit for bit
  LoadAndSaveAgain<AVar_Linear<int>>(data, size);                  // 16, padded
  LoadAndSaveAgain<AVar_Latest<bool>>(data, size);                 // 16, padded
  LoadAndSaveAgain<AVar_Latest<unsigned char>>(data, size);        // 16, padded
  LoadAndSaveAgain<AVar_Linear<Vector3<double>>>(data, size);      // 32
  LoadAndSaveAgain<AVar_Nearest<Quat<double>>>(data, size);        // 40
  LoadAndSaveAgain<AVar_Nearest<QTransform<double>>>(data, size);  // 64
  return 0;
}
