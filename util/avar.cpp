#include "util/avar.h"

#include "util/bytes.h"

namespace vuk::util {

namespace {

// The value fields of a saved record, in order, little-endian, padded to the
// record's eight-byte grid with zeros.
void PutValue(ByteWriter& out, double v) { out.Put(v); }
void PutValue(ByteWriter& out, int v) {
  out.Put(static_cast<std::int32_t>(v));
  out.PutZeros(4);
}
void PutValue(ByteWriter& out, bool v) {
  out.Put(static_cast<std::uint8_t>(v ? 1 : 0));
  out.PutZeros(7);
}
void PutValue(ByteWriter& out, unsigned char v) {
  out.Put(static_cast<std::uint8_t>(v));
  out.PutZeros(7);
}
void PutValue(ByteWriter& out, const Vector3<double>& v) {
  out.Put(v.x);
  out.Put(v.y);
  out.Put(v.z);
}
void PutValue(ByteWriter& out, const Quat<double>& q) {
  out.Put(q.x);
  out.Put(q.y);
  out.Put(q.z);
  out.Put(q.w);
}
void PutValue(ByteWriter& out, const QTransform<double>& t) {
  PutValue(out, t.translation);
  PutValue(out, t.rotation);
}

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
  in.Get(v);
  in.Skip(7);
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

// value = (second - first) x (t - t1) / (t2 - t1) + first, in that order of
// operations, so that every installation gets the same bits.
double Line(double first, double second, double elapsed, double span) {
  return (second - first) * elapsed / span + first;
}

double LinearValue(double first, double second, double elapsed, double span) {
  return Line(first, second, elapsed, span);
}
int LinearValue(int first, int second, double elapsed, double span) {
  return static_cast<int>(Line(first, second, elapsed, span));
}
// False only where the line is exactly 0: at a false record itself.
bool LinearValue(bool first, bool second, double elapsed, double span) {
  return Line(first ? 1.0 : 0.0, second ? 1.0 : 0.0, elapsed, span) != 0.0;
}
Vector3<double> LinearValue(const Vector3<double>& first, const Vector3<double>& second, double elapsed,
                            double span) {
  return {Line(first.x, second.x, elapsed, span), Line(first.y, second.y, elapsed, span),
          Line(first.z, second.z, elapsed, span)};
}

}  // namespace

template <typename T>
std::uint32_t AVar<T>::GetSaveSize() const {
  return kHeaderSize + static_cast<std::uint32_t>(records.size()) * kRecordSize;
}

template <typename T>
std::uint32_t AVar<T>::Save(std::uint8_t* buffer, std::uint32_t capacity) const {
  const std::uint32_t size = GetSaveSize();
  Bytes block;
  block.reserve(capacity < size ? 12 : size);
  ByteWriter out(block);
  out.Put(kHeaderSize);
  out.Put(size - kHeaderSize);
  out.Put(kVersion);
  if (capacity >= size) {
    out.Put(static_cast<std::uint32_t>(records.size()));
    for (const Record& record : records) {
      out.Put(record.time);
      PutValue(out, record.value);
    }
  }
  if (capacity >= block.size()) std::copy(block.begin(), block.end(), buffer);
  return size;
}

template <typename T>
bool AVar<T>::Load(const std::uint8_t* buffer, std::size_t size) {
  ByteReader in(buffer, size);
  std::uint32_t headerSize = 0, payload = 0, version = 0, count = 0;
  if (!in.Get(headerSize) || !in.Get(payload) || !in.Get(version) || !in.Get(count)) return false;
  if (headerSize != kHeaderSize || version != kVersion) return false;
  if (static_cast<std::uint64_t>(count) * kRecordSize > in.Remaining()) return false;
  records.assign(count, Record{0.0, T{}});
  if (static_cast<std::uint64_t>(payload) != static_cast<std::uint64_t>(count) * kRecordSize) return true;
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
  if (records.empty() || t > records.back().time) {
    records.push_back(Record{t, value});
    return &records.back().value;
  }
  const std::int64_t found = FindNearest(t);
  if (records[static_cast<std::size_t>(found)].time == t) {
    records[static_cast<std::size_t>(found)].value = value;
    return &records[static_cast<std::size_t>(found)].value;
  }
  // Before the last record: insert after the last record earlier than t.
  std::size_t at = records.size();
  while (at > 0 && records[at - 1].time > t) --at;
  const auto inserted = records.insert(records.begin() + static_cast<std::ptrdiff_t>(at), Record{t, value});
  return &inserted->value;
}

template <typename T>
void AVar<T>::RemoveFrom(double t) {
  if (records.empty()) return;
  auto i = static_cast<std::size_t>(FindNearest(t));
  if (t > records[i].time) ++i;
  if (i < records.size()) records.resize(i);
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
