#include "tree/name_ranks.h"

#include <algorithm>
#include <array>
#include <vector>

#include "tree/arena.h"
#include "tree/key_sort.h"
#include "tree/name_bytes.h"
#include "tree/parallel.h"

namespace Orvane {

namespace {

constexpr std::size_t kBytes = 256;  // values of a byte

// So many keys are made at a time, or half of all, or all that begin with one byte, whichever is
// most: they take several times the memory of the ranks.
constexpr std::size_t kManyKeys = 100'000;

}  // namespace

// The names in parts by their first bytes, which come in the order of those bytes.
class NameRanks::Parts {
 public:
  Parts(std::size_t count, const NameOf& nameOf)
      : nameOf_(nameOf), slices_(workersFor(count)), firstBytes_(count) {
    forEachSlice([&](std::size_t begin, std::size_t end, Places& places) {
      for (std::size_t i = begin; i < end; ++i) {
        firstBytes_[i] = static_cast<std::uint8_t>(nameBytesAt(nameOf_(i), 0) >> 56);
        ++places[firstBytes_[i]];
      }
    });
    std::size_t begin = 0;
    for (std::size_t byte = 0; byte < kBytes; ++byte) {
      begins_[byte] = begin;
      for (Places& places : slices_) {
        const std::size_t size = places[byte];
        places[byte] = begin;
        begin += size;
      }
    }
    begins_[kBytes] = begin;
  }

  std::size_t count() const { return firstBytes_.size(); }
  std::size_t workers() const { return slices_.size(); }

  // How many names come before those that begin with `byte`.
  std::size_t begin(std::size_t byte) const { return begins_[byte]; }

  // Makes the keys of the names that begin with bytes from `firstByte` on and below `endByte`, in
  // parts.
  void makeKeys(std::size_t firstByte, std::size_t endByte, Key* keys) {
    const std::size_t before = begins_[firstByte];
    forEachSlice([&](std::size_t begin, std::size_t end, Places& places) {
      for (std::size_t i = begin; i < end; ++i) {
        const std::size_t byte = firstBytes_[i];
        if (byte - firstByte >= endByte - firstByte) continue;  // large where it is below
        const std::string_view name = nameOf_(i);
        keys[places[byte]++ - before] = {nameBytesAt(name, 0), name.data(),
                                         static_cast<std::uint32_t>(name.size()),
                                         static_cast<std::uint32_t>(i)};
      }
    });
  }

 private:
  // Where the next name that begins with each byte goes.
  using Places = std::array<std::size_t, kBytes>;

  template <typename Use>
  void forEachSlice(Use use) {
    const std::size_t size = count() / slices_.size() + 1;
    forEachInParallel(slices_.size(), slices_.size(), [&](std::size_t i, std::size_t /*worker*/) {
      use(std::min(i * size, count()), std::min((i + 1) * size, count()), slices_[i]);
    });
  }

  const NameOf& nameOf_;
  std::vector<Places> slices_;  // of the names, a thread each
  LargeVector<std::uint8_t> firstBytes_;
  std::array<std::size_t, kBytes + 1> begins_;
};

void NameRanks::rank(std::size_t count, const NameOf& nameOf) {
  ranks_.resize(count);
  Parts parts(count, nameOf);
  const std::size_t most = std::max(count / 2, kManyKeys);
  for (std::size_t first = 0, end = 0; first < kBytes; first = end) {
    const std::size_t before = parts.begin(first);
    do {
      ++end;
    } while (end < kBytes && parts.begin(end + 1) - before <= most);
    Arena memory;
    auto* const keys =
        static_cast<Key*>(memory.allocate((parts.begin(end) - before) * sizeof(Key), alignof(Key)));
    parts.makeKeys(first, end, keys);
    // The largest first, so that no worker is left with one at the end.
    const auto size = [&](std::size_t byte) { return parts.begin(byte + 1) - parts.begin(byte); };
    std::vector<std::size_t> bytes;
    for (std::size_t byte = first; byte < end; ++byte) {
      if (size(byte) > 0) bytes.push_back(byte);
    }
    std::sort(bytes.begin(), bytes.end(),
              [&](std::size_t a, std::size_t b) { return size(a) > size(b); });
    forEachInParallel(bytes.size(), parts.workers(), [&](std::size_t i, std::size_t /*worker*/) {
      const std::size_t begin = parts.begin(bytes[i]);
      rankPart({keys + (begin - before), size(bytes[i])}, static_cast<std::uint32_t>(begin));
    });
  }
}

void NameRanks::prefetchByte(const Key& key, std::size_t offset) {
  if (offset < key.size) prefetch(key.name + offset);
}

// Gives all keys of a part their ranks, of which `firstRank` is the first.
void NameRanks::rankPart(std::span<Key> all, std::uint32_t firstRank) {
  // Keys that agree in all bytes before `offset` and are still to be told apart.
  struct Part {
    std::size_t begin;
    std::size_t end;
    std::size_t offset;
  };
  std::vector<Part> parts = {{0, all.size(), 0}};
  while (!parts.empty()) {
    const Part part = parts.back();
    parts.pop_back();
    const std::span<Key> keys = all.subspan(part.begin, part.end - part.begin);
    const bool byLength = std::all_of(keys.begin(), keys.end(),
                                      [&](const Key& key) { return key.size <= part.offset; });
    if (part.offset > 0) {
      for (std::size_t i = 0; i < keys.size(); ++i) {
        constexpr std::size_t kDistance = 16;
        if (keys.size() - i > kDistance) prefetchByte(keys[i + kDistance], part.offset);
        Key& key = keys[i];
        key.bytes = byLength ? key.size : nameBytesAt({key.name, key.size}, part.offset);
      }
    }
    sortByKey<Ties::kInAnyOrder>(keys, [](const Key& key) { return key.bytes; });
    for (std::size_t i = part.begin; i < part.end;) {
      const std::size_t first = i;
      while (i < part.end && all[i].bytes == all[first].bytes) ++i;
      if (i - first > 1 && !byLength) {
        parts.push_back({first, i, part.offset + sizeof(Key::bytes)});
      } else {
        for (std::size_t same = first; same < i; ++same) {
          ranks_[all[same].number] = firstRank + static_cast<std::uint32_t>(first);
        }
      }
    }
  }
}

}  // namespace Orvane
