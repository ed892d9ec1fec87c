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
  static Quat<double> Initial() { return {}; }  // identity
};
template <>
struct AVarValueFormat<QTransform<double>> {
  static constexpr std::uint32_t kPaddedSize = 56;
  static QTransform<double> Initial() { return {}; }  // no translation, identity rotation
};

// How many more records a running take is expected to add to each history.
// Where a take begins (RemoveFrom), and whenever a history has to grow during
// it, room is made for that many at once: no frame of a take then waits while
// a long history is moved. Zero outside takes, for ordinary growth.
void SetHistoryHorizon(std::size_t records);
std::size_t HistoryHorizon();

// The abstract history; the derived kinds decide the value between records.
// The order of the virtual operations is part of the tools' binary layout:
// new ones go after the destructor, never between.
template <typename T>
class AVar {
 public:
  using Record = AVarRecord<T>;
  using Value = T;
  static constexpr std::uint32_t kHeaderSize = 16;
  static constexpr std::uint32_t kVersion = 100;
  static constexpr std::uint32_t kRecordSize = 8 + AVarValueFormat<T>::kPaddedSize;

  AVar() : defaultValue(AVarValueFormat<T>::Initial()) {}
  AVar(const AVar&) = default;
  AVar& operator=(const AVar&) = default;
  AVar(AVar&&) noexcept = default;
  AVar& operator=(AVar&&) noexcept = default;

  // A record for `time`, which lies between the two.
  virtual Record Interpolate(const Record& first, const Record& second, double time) const = 0;
  // 16 plus the records. A history too long for the block's 32-bit fields
  // (over 4 GiB) answers 0xFFFFFFFF, which no capacity can satisfy.
  virtual std::uint32_t GetSaveSize() const;
  // Writes the block and answers GetSaveSize(). With less capacity than that
  // only the header size, payload size and version are written (and nothing
  // at all below 12 bytes), so a caller can ask for the size first.
  virtual std::uint32_t Save(std::uint8_t* buffer, std::uint32_t capacity) const;
  // Reads a block whose length the caller doesn't know. The block is trusted
  // to be as long as its own payload field says, which is what Save wrote:
  // this reads the 16-byte header, then at most the payload bytes, and is
  // Load(buffer, 16 + payload). Callers that know the length use that form.
  virtual bool Load(const std::uint8_t* buffer);
  virtual ~AVar() = default;

  // Reads a block of `size` bytes and never reads past them. False, and the
  // variable unchanged, for a block shorter than its header, a header size
  // other than 16 or a version other than 100. True otherwise, with the
  // records replaced: read from the block when the payload field equals
  // count times the record size, else `count` default records. In both cases
  // the count must fit in the bytes after the header, else false: a damaged
  // count never makes a huge allocation. Records aren't checked for order.
  bool Load(const std::uint8_t* buffer, std::size_t size);

  // The value at t: the record at exactly t, else the interpolation between
  // the records around t; before the first and after the last record, the
  // value of that record; the default while empty. O(log n).
  T Get(double t) const;
  // Stores the value for exactly t, replacing a record of that time or
  // inserting one in order, and answers where the value now is (valid until
  // the records change). Appending after the last record is the per-frame
  // case and costs amortised constant time.
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
// An int truncates toward zero; a bool is false only where the line on 0 and
// 1 is exactly 0.
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
  Record Interpolate(const Record& first, const Record& second, double time) const override;
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
