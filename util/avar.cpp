#include "util/avar.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <limits>

#include "util/bytes.h"

namespace vuk::util {

static_assert(sizeof(int) == 4, "int records hold a 32-bit value");

namespace {

std::size_t historyHorizon = 0;

// Writes straight into the caller's buffer, lowest byte first, one field at a
// time, so the block is the same on every machine and needs no allocation.
class BlockWriter {
 public:
  explicit BlockWriter(std::uint8_t* at) : at_(at) {}

  void U32(std::uint32_t v) {
    for (int i = 0; i < 4; ++i) *at_++ = static_cast<std::uint8_t>(v >> (8 * i));
  }
  void F64(double v) {
    std::uint64_t bits = 0;
    std::memcpy(&bits, &v, sizeof bits);
    for (int i = 0; i < 8; ++i) *at_++ = static_cast<std::uint8_t>(bits >> (8 * i));
  }
  void U8(std::uint8_t v) { *at_++ = v; }
  void Zeros(std::size_t count) {
    std::memset(at_, 0, count);
    at_ += count;
  }

 private:
  std::uint8_t* at_;
};

// The value fields of a saved record, in order, padded to the record's
// eight-byte grid with zeros.
void PutValue(BlockWriter& out, double v) { out.F64(v); }
void PutValue(BlockWriter& out, int v) {
  out.U32(static_cast<std::uint32_t>(v));
  out.Zeros(4);
}
void PutValue(BlockWriter& out, bool v) {
  out.U8(v ? 1 : 0);
  out.Zeros(7);
}
void PutValue(BlockWriter& out, unsigned char v) {
  out.U8(v);
  out.Zeros(7);
}
void PutValue(BlockWriter& out, const Vector3<double>& v) {
  out.F64(v.x);
  out.F64(v.y);
  out.F64(v.z);
}
void PutValue(BlockWriter& out, const Quat<double>& q) {
  out.F64(q.x);
  out.F64(q.y);
  out.F64(q.z);
  out.F64(q.w);
}
void PutValue(BlockWriter& out, const QTransform<double>& t) {
  PutValue(out, t.translation);
  PutValue(out, t.rotation);
}

// Readers are only called once the whole record is known to be there, so
// the individual reads cannot fail. Padding bytes are not looked at.
void GetValue(ByteReader& in, double& v) { in.Get(v); }
void GetValue(ByteReader& in, int& v) {
  std::int32_t raw = 0;
  in.Get(raw);
  in.Skip(4);
  v = raw;
}
void GetValue(ByteReader& in, bool& v) {
  std::uint8_t raw = 0;
  in.Get(raw);
  in.Skip(7);
  v = raw != 0;
}
void GetValue(ByteReader& in, unsigned char& v) {
  std::uint8_t raw = 0;
  in.Get(raw);
  in.Skip(7);
  v = raw;
}
void GetValue(ByteReader& in, Vector3<double>& v) {
  in.Get(v.x);
  in.Get(v.y);
  in.Get(v.z);
}
void GetValue(ByteReader& in, Quat<double>& q) {
  in.Get(q.x);
  in.Get(q.y);
  in.Get(q.z);
  in.Get(q.w);
}
void GetValue(ByteReader& in, QTransform<double>& t) {
  GetValue(in, t.translation);
  GetValue(in, t.rotation);
}

// value = (second - first) x (t - t1) / (t2 - t1) + first, in exactly that
// order of operations, so that a resimulation reads the same bits.
double Line(double first, double second, double elapsed, double span) {
  return (second - first) * elapsed / span + first;
}

// Truncation toward zero. Between two records of a sorted history the line
// stays between two ints; only a damaged history (two records of one time,
// records out of order) can leave that range or give NaN, and that must not
// become undefined behaviour.
int TruncateToInt(double v) {
  if (v >= -2147483648.0 && v < 2147483648.0) return static_cast<int>(v);
  if (v > 0) return INT_MAX;
  if (v < 0) return INT_MIN;
  return 0;  // NaN
}

double LinearValue(double first, double second, double elapsed, double span) {
  return Line(first, second, elapsed, span);
}
int LinearValue(int first, int second, double elapsed, double span) {
  return TruncateToInt(Line(first, second, elapsed, span));
}
// False only where the line is exactly 0: at a false record itself, so any
// time strictly between a false and a true record reads true.
bool LinearValue(bool first, bool second, double elapsed, double span) {
  return Line(first ? 1.0 : 0.0, second ? 1.0 : 0.0, elapsed, span) != 0.0;
}
Vector3<double> LinearValue(const Vector3<double>& first, const Vector3<double>& second, double elapsed,
                            double span) {
  Vector3<double> v;
  v.x = Line(first.x, second.x, elapsed, span);
  v.y = Line(first.y, second.y, elapsed, span);
  v.z = Line(first.z, second.z, elapsed, span);
  return v;
}

}  // namespace

template <typename T>
std::uint32_t AVar<T>::GetSaveSize() const {
  const std::uint64_t size = kHeaderSize + static_cast<std::uint64_t>(records.size()) * kRecordSize;
  constexpr std::uint64_t kMax = std::numeric_limits<std::uint32_t>::max();
  return static_cast<std::uint32_t>(size < kMax ? size : kMax);
}

template <typename T>
std::uint32_t AVar<T>::Save(std::uint8_t* buffer, std::uint32_t capacity) const {
  const std::uint32_t size = GetSaveSize();
  // A saturated size is never exact, so such a history writes no records.
  const bool fits = capacity >= size && size != std::numeric_limits<std::uint32_t>::max();
  if (!fits && capacity < 12) return size;
  BlockWriter out(buffer);
  out.U32(kHeaderSize);
  out.U32(size - kHeaderSize);
  out.U32(kVersion);
  if (!fits) return size;
  out.U32(static_cast<std::uint32_t>(records.size()));
  for (const Record& record : records) {
    out.F64(record.time);
    PutValue(out, record.value);
  }
  return size;
}

template <typename T>
bool AVar<T>::Load(const std::uint8_t* buffer) {
  ByteReader header(buffer, kHeaderSize);
  std::uint32_t headerSize = 0, payload = 0;
  header.Get(headerSize);
  header.Get(payload);
  // The payload field of a foreign block means nothing; stop at its header.
  if (headerSize != kHeaderSize) return false;
  return Load(buffer, std::size_t{kHeaderSize} + payload);
}

template <typename T>
bool AVar<T>::Load(const std::uint8_t* buffer, std::size_t size) {
  ByteReader in(buffer, size);
  std::uint32_t headerSize = 0, payload = 0, version = 0, count = 0;
  if (!in.Get(headerSize) || !in.Get(payload) || !in.Get(version) || !in.Get(count)) return false;
  if (headerSize != kHeaderSize || version != kVersion) return false;
  // In 64 bits: a count whose 32-bit product wraps around to the payload
  // field must not pass for a consistent block.
  const std::uint64_t recordBytes = static_cast<std::uint64_t>(count) * kRecordSize;
  if (recordBytes > in.Remaining()) return false;
  records.assign(count, Record{});
  if (recordBytes != payload) return true;  // default records, as the block's fields disagree
  for (Record& record : records) {
    in.Get(record.time);
    GetValue(in, record.value);
  }
  return true;
}

template <typename T>
std::int64_t AVar<T>::FindNearest(double t) const {
  if (records.empty()) return -1;
  if (records.front().time > t) return 0;
  std::int64_t low = 0, high = static_cast<std::int64_t>(records.size()) - 1;
  while (low <= high) {
    const std::int64_t middle = (low + high) / 2;
    const double time = records[static_cast<std::size_t>(middle)].time;
    if (time == t) return middle;
    if (time < t) {
      low = middle + 1;
    } else {
      high = middle - 1;
    }
  }
  // high is now the last record before t.
  const std::int64_t last = static_cast<std::int64_t>(records.size()) - 1;
  if (high >= last) return last;
  if (high < 0) return 0;
  const double before = t - records[static_cast<std::size_t>(high)].time;
  const double after = records[static_cast<std::size_t>(high + 1)].time - t;
  return after <= before ? high + 1 : high;
}

template <typename T>
T AVar<T>::Get(double t) const {
  const std::int64_t found = FindNearest(t);
  if (found < 0) return defaultValue;
  const auto i = static_cast<std::size_t>(found);
  const Record& record = records[i];
  if (record.time == t) return record.value;
  if (t > record.time) {
    if (i + 1 == records.size()) return record.value;
    return Interpolate(record, records[i + 1], t).value;
  }
  if (i == 0) return record.value;
  return Interpolate(records[i - 1], record, t).value;
}

template <typename T>
T* AVar<T>::Set(double t, const T& value) {
  // In a sorted history nothing can have a time after the last record's, so
  // the per-frame append skips the search.
  if (records.empty() || t > records.back().time) {
    if (records.size() == records.capacity() && HistoryHorizon() > 0) {
      records.reserve(records.size() + std::max(records.size(), HistoryHorizon()));
    }
    records.push_back(Record{t, value});
    return &records.back().value;
  }
  const auto found = static_cast<std::size_t>(FindNearest(t));
  if (records[found].time == t) {
    records[found].value = value;
    return &records[found].value;
  }
  // Inserting: walk back from the end, where a tool usually rewrites.
  for (std::size_t i = records.size(); i-- > 0;) {
    if (records[i].time == t) {
      records[i].value = value;
      return &records[i].value;
    }
    if (records[i].time < t) {
      return &records.insert(records.begin() + static_cast<std::ptrdiff_t>(i + 1), Record{t, value})->value;
    }
  }
  return &records.insert(records.begin(), Record{t, value})->value;
}

template <typename T>
void AVar<T>::RemoveFrom(double t) {
  if (!records.empty()) {
    auto i = static_cast<std::size_t>(FindNearest(t));
    if (t > records[i].time) ++i;
    if (i < records.size()) records.resize(i);
  }
  if (records.capacity() < records.size() + HistoryHorizon()) records.reserve(records.size() + HistoryHorizon());
}

template <typename T>
typename AVar_Nearest<T>::Record AVar_Nearest<T>::Interpolate(const Record& first, const Record& second,
                                                              double time) const {
  const double sinceFirst = time - first.time;
  const double untilSecond = second.time - time;
  return untilSecond > sinceFirst ? first : second;
}

template <typename T>
typename AVar_Linear<T>::Record AVar_Linear<T>::Interpolate(const Record& first, const Record& second,
                                                            double time) const {
  return Record{time, LinearValue(first.value, second.value, time - first.time, second.time - first.time)};
}

template <typename T>
typename AVar_Latest<T>::Record AVar_Latest<T>::Interpolate(const Record& first, const Record&, double) const {
  return first;
}

void SetHistoryHorizon(std::size_t records) { historyHorizon = records; }
std::size_t HistoryHorizon() { return historyHorizon; }

template class AVar<double>;
template class AVar<int>;
template class AVar<bool>;
template class AVar<unsigned char>;
template class AVar<Vector3<double>>;
template class AVar<Quat<double>>;
template class AVar<QTransform<double>>;
template class AVar_Nearest<double>;
template class AVar_Nearest<bool>;
template class AVar_Nearest<Vector3<double>>;
template class AVar_Nearest<Quat<double>>;
template class AVar_Nearest<QTransform<double>>;
template class AVar_Linear<double>;
template class AVar_Linear<int>;
template class AVar_Linear<bool>;
template class AVar_Linear<Vector3<double>>;
template class AVar_Latest<int>;
template class AVar_Latest<bool>;
template class AVar_Latest<unsigned char>;

}  // namespace vuk::util
