#pragma once
// A variable with a past: (time, value) records sorted by time, answering
// what the value was at any time. Tools keep the state that must survive a
// jump in time in these, so a simulation can restart from any earlier frame.

#include <cstddef>
#include <cstdint>
#include <vector>

#include "util/qtransform.h"
#include "util/quat.h"
#include "util/vector3.h"

namespace vuk::util {

template <typename T>
struct AVarRecord {
  double time = 0;
  T value{};
};

// How a value is laid out in a saved record: its fields in order, the whole
// padded to a multiple of eight bytes.
template <typename T>
struct AVarValueFormat;

template <typename T>
class AVar {
 public:
  using Record = AVarRecord<T>;
  static constexpr std::uint32_t kHeaderSize = 16;
  static constexpr std::uint32_t kVersion = 100;
  static constexpr std::uint32_t kRecordSize = 8 + AVarValueFormat<T>::kPaddedSize;

  AVar() : defaultValue(AVarValueFormat<T>::Initial()) {}
  AVar(const AVar&) = default;
  AVar& operator=(const AVar&) = default;
  AVar(AVar&&) noexcept = default;
  AVar& operator=(AVar&&) noexcept = default;

  // A record for `time` between the two.
  virtual Record Interpolate(const Record& first, const Record& second, double time) const = 0;
  // 16 plus the records.
  virtual std::uint32_t GetSaveSize() const;
  // Writes the block; with too little capacity only the first three header
  // fields are written and the needed size is answered.
  virtual std::uint32_t Save(std::uint8_t* buffer, std::uint32_t capacity) const;
  // Reads a block of `size` bytes. A wrong header size or version is ignored
  // (false). A block whose payload field disagrees with its count gets that
  // many default records. A count that cannot fit in the block is refused, so
  // a damaged block never makes a huge allocation.
  virtual bool Load(const std::uint8_t* buffer, std::size_t size);
  virtual ~AVar() = default;

  // The value at t: exact record, interpolated between two, held outside.
  T Get(double t) const;
  // Stores the value for exactly t and answers the stored value. Appending at
  // the end is the per-frame case and costs amortised constant time.
  T* Set(double t, const T& value);
  // Index of the nearest record, the later one on a tie; -1 when empty.
  std::int64_t FindNearest(double t) const;
  // Drops every record at or after t.
  void RemoveFrom(double t);

  std::vector<Record> records;
  T defaultValue;
};

// Between two records: the nearer one, the later on a tie.
template <typename T>
class AVar_Nearest : public AVar<T> {
 public:
  using Record = typename AVar<T>::Record;
  Record Interpolate(const Record& first, const Record& second, double time) const override;
};

// Between two records: the straight line, component by component, in doubles.
template <typename T>
class AVar_Linear : public AVar<T> {
 public:
  using Record = typename AVar<T>::Record;
  Record Interpolate(const Record& first, const Record& second, double time) const override;
};

// Between two records: the earlier one, which holds until the next.
template <typename T>
class AVar_Latest : public AVar<T> {
 public:
  using Record = typename AVar<T>::Record;
  Record Interpolate(const Record& first, const Record&, double) const override { return first; }
};

template <>
struct AVarValueFormat<double> {
  static constexpr std::uint32_t kPaddedSize = 8;
  static double Initial() { return 0; }
};
template <>
struct AVarValueFormat<int> {
  static constexpr std::uint32_t kPaddedSize = 8;
  static int Initial() { return 0; }
};
template <>
struct AVarValueFormat<bool> {
  static constexpr std::uint32_t kPaddedSize = 8;
  static bool Initial() { return false; }
};
template <>
struct AVarValueFormat<unsigned char> {
  static constexpr std::uint32_t kPaddedSize = 8;
  static unsigned char Initial() { return 0; }
};
template <>
struct AVarValueFormat<Vector3<double>> {
  static constexpr std::uint32_t kPaddedSize = 24;
  static Vector3<double> Initial() { return {}; }
};
template <>
struct AVarValueFormat<Quat<double>> {
  static constexpr std::uint32_t kPaddedSize = 32;
  static Quat<double> Initial() { return {}; }
};
template <>
struct AVarValueFormat<QTransform<double>> {
  static constexpr std::uint32_t kPaddedSize = 56;
  static QTransform<double> Initial() { return {}; }
};

extern template class AVar<double>;
extern template class AVar<int>;
extern template class AVar<bool>;
extern template class AVar<unsigned char>;
extern template class AVar<Vector3<double>>;
extern template class AVar<Quat<double>>;
extern template class AVar<QTransform<double>>;
extern template class AVar_Nearest<double>;
extern template class AVar_Nearest<bool>;
extern template class AVar_Nearest<Vector3<double>>;
extern template class AVar_Nearest<Quat<double>>;
extern template class AVar_Nearest<QTransform<double>>;
extern template class AVar_Linear<double>;
extern template class AVar_Linear<int>;
extern template class AVar_Linear<bool>;
extern template class AVar_Linear<Vector3<double>>;
extern template class AVar_Latest<int>;
extern template class AVar_Latest<bool>;
extern template class AVar_Latest<unsigned char>;

}  // namespace vuk::util
