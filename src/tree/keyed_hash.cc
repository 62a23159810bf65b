#include "tree/keyed_hash.h"

#include <sys/random.h>

#include <array>
#include <cstring>

namespace Orvane {

namespace {

// Where the system has no random bytes yet, the key is always the same.
HashKey makeKey() {
  std::array<std::uint64_t, 2> random{};
  if (::getrandom(random.data(), sizeof(random), GRND_NONBLOCK) != sizeof(random)) random = {};
  HashKey key{0x9E3779B97F4A7C15 ^ random[0], 0xBF58476D1CE4E5B9 ^ random[1], 0};
  key.odd = foldedProduct(key.first ^ 0x94D049BB133111EB, key.second) | 1;
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
