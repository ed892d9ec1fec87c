#include "util/compressedblock.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <vector>

namespace vuk::util {

namespace {

constexpr std::int32_t kNone = -1;

struct SymbolCount {
  std::uint8_t symbol;
  std::uint32_t count;
};

// The code tree. Nodes are kept in building order with stable ids so that
// inserting a parent into the ordered array never renumbers the links.
class CodeTree {
 public:
  struct Node {
    std::int32_t first = kNone;
    std::int32_t second = kNone;
    std::int32_t parent = kNone;
    std::uint64_t count = 0;
    std::int32_t symbol = kNone;
  };

  explicit CodeTree(const std::vector<SymbolCount>& table) {
    nodes_.reserve(table.size() * 2);
    std::vector<std::int32_t> order;
    order.reserve(table.size() * 2);
    for (const SymbolCount& entry : table) {
      order.push_back(static_cast<std::int32_t>(nodes_.size()));
      nodes_.push_back(Node{kNone, kNone, kNone, entry.count, entry.symbol});
    }
    // Pair neighbours from the front; each parent goes before the first later
    // node that counts more than it, so after nodes of equal count.
    for (std::size_t i = 0; i + 1 < order.size(); i += 2) {
      const std::int32_t a = order[i];
      const std::int32_t b = order[i + 1];
      const std::int32_t parent = static_cast<std::int32_t>(nodes_.size());
      const std::uint64_t sum = nodes_[a].count + nodes_[b].count;
      nodes_.push_back(Node{a, b, kNone, sum, kNone});
      nodes_[a].parent = parent;
      nodes_[b].parent = parent;
      std::size_t at = i + 2;
      while (at < order.size() && nodes_[order[at]].count <= sum) ++at;
      order.insert(order.begin() + static_cast<std::ptrdiff_t>(at), parent);
    }
    root_ = order.empty() ? kNone : order.back();
  }

  const Node& operator[](std::int32_t id) const { return nodes_[static_cast<std::size_t>(id)]; }
  std::int32_t Root() const { return root_; }
  // Leaves come first, in table order.
  std::int32_t Leaf(std::size_t tableIndex) const { return static_cast<std::int32_t>(tableIndex); }
  // The bits of a table entry's code: the depth of its leaf.
  std::uint32_t CodeLength(std::size_t tableIndex) const {
    std::uint32_t length = 0;
    for (std::int32_t node = Leaf(tableIndex); nodes_[node].parent != kNone; node = nodes_[node].parent) ++length;
    return length;
  }

 private:
  std::vector<Node> nodes_;
  std::int32_t root_ = kNone;
};

// The exact length of the stream that codes every symbol as often as the
// table counts it.
std::uint64_t StreamBits(const std::vector<SymbolCount>& table, const CodeTree& tree) {
  std::uint64_t bits = 0;
  for (std::size_t t = 0; t < table.size(); ++t) bits += std::uint64_t{table[t].count} * tree.CodeLength(t);
  return bits;
}

// A code as the bits go out: bit k of `bits` is the k-th bit written.
struct Code {
  std::uint64_t bits = 0;
  std::uint32_t length = 0;
};

// Reads the stream bit 0 first; past the end it reads zeros, and Consume
// says whether the bits taken were really there.
class BitReader {
 public:
  BitReader(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}

  // The next 32 bits at least.
  std::uint32_t Peek() {
    if (pending_ < 32) Refill();
    return static_cast<std::uint32_t>(buffer_);
  }

  // False when the bits taken ran past the end of the stream.
  bool Consume(std::uint32_t count) {
    Drop(count);
    return static_cast<std::uint64_t>(next_) * 8 - pending_ <= static_cast<std::uint64_t>(size_) * 8;
  }
  // Takes bits that are known to be there.
  void Drop(std::uint32_t count) {
    buffer_ >>= count;
    pending_ -= count;
  }
  // Whether the buffer still fills from whole words of the stream: then
  // every bit a Peek answers is the stream's own.
  bool InsideStream() const { return next_ + 8 <= size_; }
  // Peek for InsideStream: the buffer is topped up every time, without a
  // branch that mispredicts every few codes.
  std::uint32_t PeekInside() {
    TakeWord();
    return static_cast<std::uint32_t>(buffer_);
  }

 private:
  // Tops the buffer up to at least 57 bits. Eight bytes at once where the
  // stream has them: the bits above those counted are the stream's own next
  // bits, so taking them again later changes nothing.
  void Refill() {
    if (InsideStream()) {
      TakeWord();
      return;
    }
    while (pending_ <= 56) {
      const std::uint64_t byte = next_ < size_ ? data_[next_] : 0;
      buffer_ |= byte << pending_;
      pending_ += 8;
      ++next_;
    }
  }

  void TakeWord() {
    const std::uint8_t* p = data_ + next_;
    const std::uint64_t word = std::uint64_t{p[0]} | std::uint64_t{p[1]} << 8 | std::uint64_t{p[2]} << 16 |
                               std::uint64_t{p[3]} << 24 | std::uint64_t{p[4]} << 32 | std::uint64_t{p[5]} << 40 |
                               std::uint64_t{p[6]} << 48 | std::uint64_t{p[7]} << 56;
    buffer_ |= word << pending_;
    next_ += (63 - pending_) >> 3;
    pending_ |= 56;
  }

  const std::uint8_t* data_;
  std::size_t size_;
  std::size_t next_ = 0;
  std::uint64_t buffer_ = 0;
  std::uint32_t pending_ = 0;
};

// For every pattern of the next kBits bits: the symbols whose whole codes
// stand in it, one after the other (two for most text), and the bits they
// take. A pattern that begins with a longer code holds no symbol, and the
// node where a walk from the root stops after kBits bits.
class ShortCodeTable {
 public:
  static constexpr std::uint32_t kBits = 12;
  static constexpr std::size_t kMaxSymbols = 4;
  struct Entry {
    std::array<std::uint8_t, kMaxSymbols> symbols;
    std::uint8_t count;
    std::uint8_t firstBitCount;  // of the first symbol alone
    std::uint8_t bitCount;       // of all symbols, or kBits when there is none
    std::int32_t node;           // where the walk goes on when there is none
  };

  explicit ShortCodeTable(const CodeTree& tree) {
    for (std::uint32_t pattern = 0; pattern < entries_.size(); ++pattern) {
      Entry entry{{}, 0, 0, 0, tree.Root()};
      std::uint32_t used = 0;
      while (entry.count < kMaxSymbols) {
        std::int32_t node = tree.Root();
        std::uint32_t bit = used;
        while (bit < kBits && tree[node].symbol == kNone) {
          node = (pattern >> bit) & 1u ? tree[node].second : tree[node].first;
          ++bit;
        }
        if (tree[node].symbol == kNone) {
          if (entry.count == 0) entry.node = node;
          if (entry.count == 0) entry.bitCount = static_cast<std::uint8_t>(bit);
          break;
        }
        entry.symbols[entry.count++] = static_cast<std::uint8_t>(tree[node].symbol);
        if (entry.count == 1) entry.firstBitCount = static_cast<std::uint8_t>(bit);
        entry.bitCount = static_cast<std::uint8_t>(bit);
        used = bit;
      }
      entries_[pattern] = entry;
    }
  }

  const Entry& operator[](std::uint32_t bits) const { return entries_[bits & ((1u << kBits) - 1)]; }

 private:
  std::array<Entry, 1u << kBits> entries_;
};

class BitWriter {
 public:
  explicit BitWriter(Bytes& out) : out_(out) {}

  void Put(const Code& code) {
    if (pending_ + code.length > 64) Drain();
    buffer_ |= code.bits << pending_;
    pending_ += code.length;
    if (pending_ >= 32) Drain();
  }

  // The last byte goes out as it stands; no byte when no bit is pending.
  void Flush() {
    Drain();
    if (pending_ > 0) out_.push_back(static_cast<std::uint8_t>(buffer_));
    buffer_ = 0;
    pending_ = 0;
  }

 private:
  void Drain() {
    while (pending_ >= 8) {
      out_.push_back(static_cast<std::uint8_t>(buffer_));
      buffer_ >>= 8;
      pending_ -= 8;
    }
  }

  Bytes& out_;
  std::uint64_t buffer_ = 0;
  std::uint32_t pending_ = 0;
};

void SetError(std::string* error, const std::string& text) {
  if (error) *error = text;
}

}  // namespace

Bytes CompressedBlock::Pack(const std::uint8_t* data, std::size_t size) {
  // The header holds 32-bit counts; anything longer stays as it is.
  if (size > std::numeric_limits<std::uint32_t>::max()) return Bytes(data, data + size);

  std::array<std::uint32_t, 256> counts{};
  for (std::size_t i = 0; i < size; ++i) ++counts[data[i]];

  std::vector<SymbolCount> table;
  for (int symbol = 255; symbol >= 0; --symbol) {
    if (counts[symbol]) table.push_back({static_cast<std::uint8_t>(symbol), counts[symbol]});
  }
  std::stable_sort(table.begin(), table.end(),
                   [](const SymbolCount& a, const SymbolCount& b) { return a.count < b.count; });

  Bytes out;
  ByteWriter writer(out);
  writer.Put(kMagic);
  writer.Put(kVersion);
  writer.Put(static_cast<std::uint32_t>(table.size()));
  writer.Put(static_cast<std::uint32_t>(size));
  for (const SymbolCount& entry : table) {
    writer.Put(entry.symbol);
    writer.Put(entry.count);
  }

  // Codes read from the root down; the second child is bit 1. Counts below
  // 2^32 keep every code well within 64 bits.
  const CodeTree tree(table);
  std::array<Code, 256> codes{};
  for (std::size_t t = 0; t < table.size(); ++t) {
    Code& code = codes[table[t].symbol];
    for (std::int32_t node = tree.Leaf(t); tree[node].parent != kNone; node = tree[node].parent) {
      const bool second = tree[tree[node].parent].second == node;
      code.bits = (code.bits << 1) | (second ? 1u : 0u);
      ++code.length;
    }
  }

  // The stream's exact length is known from the counts: one allocation.
  out.reserve(out.size() + static_cast<std::size_t>((StreamBits(table, tree) + 7) / 8));
  BitWriter bits(out);
  for (std::size_t i = 0; i < size; ++i) bits.Put(codes[data[i]]);
  bits.Flush();
  return out;
}

Bytes CompressedBlock::Pack(const std::string& text) {
  return Pack(reinterpret_cast<const std::uint8_t*>(text.data()), text.size());
}

CompressedBlock::Unpacked CompressedBlock::Unpack(const std::uint8_t* data, std::size_t size, Bytes& out,
                                                  std::string* error, std::size_t maxUnpackedSize) {
  out.clear();
  ByteReader reader(data, size);
  std::uint32_t magic = 0, version = 0, symbolCount = 0, unpackedSize = 0;
  const bool headerRead = reader.Get(magic) && reader.Get(version) && reader.Get(symbolCount) &&
                          reader.Get(unpackedSize);
  if (!headerRead || magic != kMagic || version != kVersion || symbolCount > 256) {
    out.assign(data, data + size);
    return Unpacked::kPlain;
  }

  std::vector<SymbolCount> table(symbolCount);
  for (std::uint32_t i = 0; i < symbolCount; ++i) {
    if (!reader.Get(table[i].symbol) || !reader.Get(table[i].count)) {
      SetError(error, "compressed block: symbol table of " + std::to_string(symbolCount) +
                          " entries runs past the end (" + std::to_string(size) + " bytes)");
      return Unpacked::kDamaged;
    }
  }
  if (unpackedSize > maxUnpackedSize) {
    SetError(error, "compressed block: unpacked size " + std::to_string(unpackedSize) + " bytes is above the limit of " +
                        std::to_string(maxUnpackedSize));
    return Unpacked::kDamaged;
  }
  // The coder counts every byte it codes, so the counts add up to the size:
  // a claim that they don't back is refused before anything is allocated.
  std::uint64_t counted = 0;
  for (const SymbolCount& entry : table) counted += entry.count;
  if (counted != unpackedSize) {
    SetError(error, "compressed block: the symbol counts add up to " + std::to_string(counted) + " bytes, not the " +
                        std::to_string(unpackedSize) + " claimed");
    return Unpacked::kDamaged;
  }
  if (unpackedSize == 0) return Unpacked::kUnpacked;

  const CodeTree tree(table);
  const std::int32_t root = tree.Root();
  if (tree[root].symbol != kNone) {
    // A single symbol is a leaf root and costs no bits.
    out.assign(unpackedSize, static_cast<std::uint8_t>(tree[root].symbol));
    return Unpacked::kUnpacked;
  }

  // The counts and the code lengths give the stream's length: a stream too
  // short for them is refused before allocating. So no block of two or more
  // symbols unpacks to more than eight bytes a byte of code.
  const std::uint64_t neededBits = StreamBits(table, tree);
  if (neededBits > static_cast<std::uint64_t>(reader.Remaining()) * 8) {
    SetError(error, "compressed block: code stream ends after " + std::to_string(reader.Remaining()) +
                        " bytes where its counts call for " + std::to_string((neededBits + 7) / 8));
    return Unpacked::kDamaged;
  }

  out.resize(unpackedSize);
  const ShortCodeTable shortCodes(tree);
  BitReader bits(reader.Current(), reader.Remaining());
  std::uint32_t produced = 0;
  while (produced < unpackedSize) {
    // Most codes are short: one table lookup answers them, often two at a
    // time. Far from both ends nothing needs checking, and the symbols go
    // out as one fixed-size store whose extra bytes the next ones overwrite.
    while (bits.InsideStream() && unpackedSize - produced >= ShortCodeTable::kMaxSymbols) {
      const ShortCodeTable::Entry& entry = shortCodes[bits.PeekInside()];
      if (entry.count == 0) break;
      std::memcpy(out.data() + produced, entry.symbols.data(), ShortCodeTable::kMaxSymbols);
      bits.Drop(entry.bitCount);
      produced += entry.count;
    }
    if (produced == unpackedSize) break;
    // Longer codes go on down the tree from where the table left off.
    const ShortCodeTable::Entry& entry = shortCodes[bits.Peek()];
    bool ok = true;
    std::uint32_t made = 1;
    if (entry.count > 0 && entry.count <= unpackedSize - produced) {
      ok = bits.Consume(entry.bitCount);
      std::copy_n(entry.symbols.begin(), entry.count, out.begin() + produced);
      made = entry.count;
    } else if (entry.count > 0) {
      // Near the end: the symbols after the last are only padding bits.
      ok = bits.Consume(entry.firstBitCount);
      out[produced] = entry.symbols[0];
    } else {
      ok = bits.Consume(entry.bitCount);
      std::int32_t node = entry.node;
      while (ok && tree[node].symbol == kNone) {
        const bool one = bits.Peek() & 1u;
        ok = bits.Consume(1);
        node = one ? tree[node].second : tree[node].first;
      }
      out[produced] = static_cast<std::uint8_t>(tree[node].symbol);
    }
    if (!ok) {
      out.clear();
      SetError(error, "compressed block: code stream ends after " + std::to_string(produced) + " of " +
                          std::to_string(unpackedSize) + " bytes");
      return Unpacked::kDamaged;
    }
    produced += made;
  }
  return Unpacked::kUnpacked;
}

}  // namespace vuk::util
