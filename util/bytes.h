#pragma once
// Little-endian byte streams for the system's binary formats. Saved blocks must
// read the same on every installation, so nothing here depends on host order.

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace vuk::util {

using Bytes = std::vector<std::uint8_t>;

namespace detail {
inline bool IsBigEndian() {
  const std::uint16_t probe = 1;
  std::uint8_t first;
  std::memcpy(&first, &probe, 1);
  return first == 0;
}
}  // namespace detail

// Appends values to a byte vector, least significant byte first.
class ByteWriter {
 public:
  explicit ByteWriter(Bytes& out) : out_(out) {}

  template <typename T>
  void Put(T value) {
    static_assert(std::is_arithmetic_v<T>, "plain numbers only");
    std::uint8_t raw[sizeof(T)];
    std::memcpy(raw, &value, sizeof(T));
    // Bytes go out lowest first whatever the machine's order is.
    if (detail::IsBigEndian()) {
      for (std::size_t i = sizeof(T); i-- > 0;) out_.push_back(raw[i]);
    } else {
      const std::size_t at = out_.size();
      out_.resize(at + sizeof(T));
      std::memcpy(out_.data() + at, raw, sizeof(T));
    }
  }

  void PutBytes(const void* data, std::size_t size) {
    const auto* p = static_cast<const std::uint8_t*>(data);
    out_.insert(out_.end(), p, p + size);
  }

  void PutZeros(std::size_t count) { out_.insert(out_.end(), count, 0); }

 private:
  Bytes& out_;
};

// Reads values from a byte range; every read checks the bounds and a failed
// read leaves the position where it was.
class ByteReader {
 public:
  ByteReader(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}
  explicit ByteReader(const Bytes& bytes) : ByteReader(bytes.data(), bytes.size()) {}

  template <typename T>
  bool Get(T& value) {
    static_assert(std::is_arithmetic_v<T>, "plain numbers only");
    if (Remaining() < sizeof(T)) return false;
    std::uint8_t raw[sizeof(T)];
    for (std::size_t i = 0; i < sizeof(T); ++i) raw[i] = data_[pos_ + i];
    if (detail::IsBigEndian()) {
      for (std::size_t i = 0; i < sizeof(T) / 2; ++i) std::swap(raw[i], raw[sizeof(T) - 1 - i]);
    }
    std::memcpy(&value, raw, sizeof(T));
    pos_ += sizeof(T);
    return true;
  }

  bool GetBytes(void* out, std::size_t count) {
    if (Remaining() < count) return false;
    if (count) std::memcpy(out, data_ + pos_, count);
    pos_ += count;
    return true;
  }

  bool Skip(std::size_t count) {
    if (Remaining() < count) return false;
    pos_ += count;
    return true;
  }

  const std::uint8_t* Current() const { return data_ + pos_; }
  std::size_t Position() const { return pos_; }
  std::size_t Remaining() const { return size_ - pos_; }

 private:
  const std::uint8_t* data_;
  std::size_t size_;
  std::size_t pos_ = 0;
};

}  // namespace vuk::util
