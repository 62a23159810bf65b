#pragma once

#include <cstdint>
#include <string_view>

#include "tree/named_id.h"

namespace Orvane {

// An album with the artist and the genre that its tracks have: one of several artists, or genres,
// is several of these. Most tracks share theirs.
//
// The artist, the genre and all names' bytes belong to somebody else and must outlive it.
class Album : public NamedId {
 public:
  constexpr Album(std::uint32_t id, std::string_view name, const NamedId& artist,
                  const NamedId& genre)
      : NamedId(id, name), artist_(&artist), genre_(&genre) {}

  const NamedId& artist() const { return *artist_; }
  const NamedId& genre() const { return *genre_; }

 private:
  const NamedId* artist_;
  const NamedId* genre_;
};

}  // namespace Orvane
