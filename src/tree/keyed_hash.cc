#include "tree/keyed_hash.h"

#include <sys/auxv.h>

#include <cstddef>
#include <cstring>

namespace Orvane {

namespace {

// The system gives every process sixteen random bytes.
HashKey makeKey() {
  HashKey key{0x9E3779B97F4A7C15, 0xBF58476D1CE4E5B9, 0x94D049BB133111EB};
  if (const auto* const random = reinterpret_cast<const unsigned char*>(::getauxval(AT_RANDOM))) {
    std::uint64_t bytes = 0;
    std::memcpy(&bytes, random, sizeof(bytes));
    key.first ^= bytes;
    std::memcpy(&bytes, random + sizeof(bytes), sizeof(bytes));
    key.second ^= bytes;
    key.odd = foldedProduct(key.odd ^ key.first, key.second) | 1;
  }
  return key;
}

}  // namespace

const HashKey kHashKey = makeKey();

// Eight bytes at a time; the length tells a name from one with zero bytes at its end.
std::uint64_t hashOfName(std::string_view name) {
  std::uint64_t hash = kHashKey.second ^ name.size();
  for (; name.size() > sizeof(hash); name.remove_prefix(sizeof(hash))) {
    std::uint64_t bytes = 0;
    std::memcpy(&bytes, name.data(), sizeof(bytes));
    hash = foldedProduct(hash ^ kHashKey.first, bytes ^ kHashKey.odd);
  }
  std::uint64_t rest = 0;
  if (!name.empty()) std::memcpy(&rest, name.data(), name.size());
  return foldedProduct(hash ^ kHashKey.first, rest ^ kHashKey.odd);
}

}  // namespace Orvane
