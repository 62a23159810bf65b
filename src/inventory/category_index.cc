#include "inventory/category_index.h"

#include <algorithm>
#include <new>
#include <string>
#include <utility>

#include "inventory/name_folding.h"
#include "tree/name_bytes.h"

namespace Orvane {

bool CategoryIndex::orders(std::uint32_t a, std::uint32_t b) const {
  const Name& one = names_[a];
  const Name& other = names_[b];
  if (one.firstBytes != other.firstBytes) return one.firstBytes < other.firstBytes;
  return one.folded() < other.folded();
}

CategoryIndex::Id& CategoryIndex::enterId(std::uint32_t id) {
  if (Id* const known = ids_.find(id, hintOf(id))) return *known;
  const auto position = static_cast<std::uint32_t>(ids_.size());
  // These have that many where there was no memory for what follows.
  haveSeveral_.resize(position + std::size_t{1});
  names_.resize(position + std::size_t{1});
  names_[position].id = id;
  return ids_.enter({id, position, nullptr});
}

// Tracks that have the same name share what it is in: then there is nothing to be looked at.
void CategoryIndex::rename(Id& known, const NamedId& entry) {
  if (known.named == &entry) return;
  const bool isNew = known.named == nullptr;
  if (!isNew) haveSeveral_[known.position] = anyHasSeveral_ = true;
  if (isNew || known.named->name() != entry.name()) {
    const std::string folded = foldName(entry.name());
    Name& name = names_[known.position];
    if (isNew || folded != name.folded()) {
      if (!isNew) placeEntries();
      name.foldedBytes = foldedNames_.keep(folded).data();
      name.size = static_cast<std::uint32_t>(folded.size());
      name.firstBytes = nameBytesAt(folded, 0);
    }
  }
  known.named = &entry;
}

// Calls use(key, position) with each key of entries here, in order.
template <typename Use>
void CategoryIndex::forEachKey(Use use) const {
  if (combined_ == nullptr) {
    for (std::uint32_t position = 0; position < names_.size(); ++position) use(position, position);
    return;
  }
  std::uint32_t key = 0;
  combined_->combinations().forEach([&](const CombinedEntries::Positions& positions) {
    const std::uint32_t position = positions.at(category_);
    if (position != CombinedEntries::kNone) use(key, position);
    ++key;
  });
}

// Calls use(position, track) with each entry, as long as they are kept as they came.
template <typename Use>
void CategoryIndex::forEachEntry(Use use) const {
  if (combined_ == nullptr) {
    entries_.forEach(use);
    return;
  }
  combined_->tracks().forEach([&](std::uint32_t combination, std::uint32_t track) {
    const std::uint32_t position = combined_->combinations()[combination].at(category_);
    if (position != CombinedEntries::kNone) use(position, track);
  });
}

void CategoryIndex::placeEntries() {
  if (placed_) return;
  const ArenaAllocator<Placed::value_type> allocator(placedEntries_);
  void* const place = placedEntries_.allocate(sizeof(Placed), alignof(Placed));
  auto* const placed = new (place) Placed(ByLiveName{this}, allocator);
  forEachEntry([&](std::uint32_t name, std::uint32_t track) { placed->emplace(name, track); });
  placed_ = placed;
  entries_.clear();
}

void CategoryIndex::add(std::uint32_t position, std::uint32_t track) {
  if (placed_) {
    placed_->emplace(position, track);
  } else if (combined_ == nullptr) {
    entries_.add(position, track);
  }
}

std::uint32_t CategoryIndex::insert(const NamedId& entry, std::uint32_t track) {
  Id& known = enterId(entry.id());
  rename(known, entry);
  add(known.position, track);
  return known.position;
}

void CategoryIndex::insert(std::uint32_t id, std::uint32_t track) {
  const std::uint32_t position = enterId(id).position;
  Name& name = names_[position];
  if (name.size == 0) {
    const std::array<char, 4> bytes = {static_cast<char>(id >> 24), static_cast<char>(id >> 16),
                                       static_cast<char>(id >> 8), static_cast<char>(id)};
    name.foldedBytes = foldedNames_.keep({bytes.data(), bytes.size()}).data();
    name.size = bytes.size();
    name.firstBytes = nameBytesAt(name.folded(), 0);
  }
  add(position, track);
}

// Where the entries go that are in no order yet: there are far fewer names than entries, so these
// are counted into place. A combination stands for the position that it has.
class CategoryIndex::Places {
 public:
  Places(const CategoryIndex& index, std::span<const std::uint32_t> leftOut)
      : index_(index), leftOut_(leftOut), counts_(index.names_.size()), places_(counts_.size()) {
    std::uint32_t next = 0;
    const auto meetFirst = [&](std::uint32_t position) {
      areFirstsInOrder_ = areFirstsInOrder_ && position >= next;
      next = position + 1;
    };
    if (index.combined_ == nullptr) {
      index.entries_.forEach([&](std::uint32_t position, std::uint32_t /*track*/) {
        if (counts_[position]++ == 0) meetFirst(position);
      });
      return;
    }
    const std::span<const std::uint32_t> counts = index.combined_->trackCounts();
    index.forEachKey([&](std::uint32_t key, std::uint32_t position) {
      if (counts[key] == 0) return;
      if (counts_[position] == 0) meetFirst(position);
      counts_[position] += counts[key];
    });
  }

  // Whether the first entries of the ids came in the order of their positions. An id for whose
  // first entry there was no memory has a position before its time.
  bool areFirstsInOrder() const { return areFirstsInOrder_; }

  // Gives the next places to the entries of the ids at these positions, in the order in which they
  // came, and tells where other ids may begin.
  void give(std::span<const std::uint32_t> positions, LargeVector<Start>& starts) {
    const std::uint32_t first = positions.front();
    const std::uint32_t begin = size_;
    for (const std::uint32_t position : positions) {
      places_[position].of = first;
      size_ += counts_[position];
    }
    places_[first].next = begin;
    if (positions.size() > 1) {
      for (std::uint32_t place = begin; place < size_; ++place) starts.push_back({.place = place});
    } else if (size_ > begin) {
      const bool isLeftOut = first < leftOut_.size() && leftOut_[first] == size_ - begin;
      starts.push_back({.place = begin,
                        .position = first,
                        .isOnly = true,
                        .hasOneNamedId = !index_.haveSeveral_[first],
                        .isLeftOut = isLeftOut});
      if (!isLeftOut) return;
      places_[first].of = kNowhere;
      size_ = begin;
    }
  }

  LargeVector<std::uint32_t> putTracks() {
    LargeVector<std::uint32_t> tracks(size_);
    if (size_ == 0) return tracks;  // without a look at all those left out
    // By key: the one that has the next place, which mostly is the key itself.
    LargeVector<Place> ofKeys(index_.keyCount());
    LargeVector<std::uint32_t> keyOf(places_.size(), kNowhere);
    index_.forEachKey([&](std::uint32_t key, std::uint32_t position) {
      const std::uint32_t first = places_[position].of;
      if (first == kNowhere) return;
      if (keyOf[first] == kNowhere) {
        keyOf[first] = key;
        ofKeys[key].next = places_[first].next;
      }
      ofKeys[key].of = keyOf[first];
    });
    index_.keys().forEach([&](std::uint32_t key, std::uint32_t track) {
      const std::uint32_t of = ofKeys[key].of;
      if (of != kNowhere) tracks[ofKeys[of].next++] = track;
    });
    return tracks;
  }

 private:
  struct Place {
    std::uint32_t of = kNowhere;  // which one has the next place; kNowhere for none at all
    std::uint32_t next = 0;
  };

  const CategoryIndex& index_;
  std::span<const std::uint32_t> leftOut_;
  LargeVector<std::uint32_t> counts_;
  LargeVector<Place> places_;
  std::uint32_t size_ = 0;
  bool areFirstsInOrder_ = true;
};

// Positions in the order of the names, those of equal ones counting up.
LargeVector<std::uint32_t> CategoryIndex::positionsByName(const NameRanks& ranks) const {
  LargeVector<std::uint32_t> equalBefore(names_.size());  // by rank
  LargeVector<std::uint32_t> positions(names_.size());
  for (std::uint32_t position = 0; position < names_.size(); ++position) {
    const std::uint32_t rank = ranks[position];
    positions[rank + equalBefore[rank]++] = position;
  }
  return positions;
}

CategoryIndex::Order CategoryIndex::findOrder(bool areIdsApart,
                                              std::span<const std::uint32_t> leftOut) const {
  Order order;
  if (placed_) {
    order.tracks.reserve(placed_->size());
    for (const auto& [name, track] : *placed_) order.tracks.push_back(track);
    return order;
  }
  NameRanks ranks;
  ranks.rank(names_.size(), [this](std::size_t position) { return names_[position].folded(); });
  const LargeVector<std::uint32_t> positions = positionsByName(ranks);
  Places places(*this, leftOut);
  const std::span<const std::uint32_t> all = positions;
  for (std::size_t first = 0, end = 0; first < all.size(); first = end) {
    bool areApart = areIdsApart && places.areFirstsInOrder();
    for (; end < all.size() && ranks[all[end]] == ranks[all[first]]; ++end) {
      areApart = areApart && !haveSeveral_[all[end]];
    }
    if (areApart) {
      for (std::size_t i = first; i < end; ++i) places.give(all.subspan(i, 1), order.starts);
    } else {
      places.give(all.subspan(first, end - first), order.starts);
    }
  }
  order.tracks = places.putTracks();
  return order;
}

std::vector<std::uint32_t> CategoryIndex::tracksOf(std::uint32_t id) const {
  std::vector<std::uint32_t> tracks;
  const auto take = [&](std::uint32_t name, std::uint32_t track) {
    if (names_[name].id == id) tracks.push_back(track);
  };
  if (placed_) {
    for (const auto& [name, track] : *placed_) take(name, track);
  } else {
    forEachEntry(take);
  }
  return tracks;
}

// Erasing works on the multimap even while the names would still determine the order: where entries
// go after a change of names depends on its shape, which remembers what was taken out, and in which
// order.
void CategoryIndex::eraseTracks(std::span<const std::uint32_t> tracks) {
  placeEntries();
  std::vector<Placed::iterator> places(tracks.size(), placed_->end());
  IdMap<IdEntry<std::uint32_t, 0xFFFFFFFF>> placeOf;
  for (std::size_t i = 0; i < tracks.size(); ++i) {
    placeOf.enter({tracks[i], static_cast<std::uint32_t>(i)});
  }
  for (auto entry = placed_->begin(); entry != placed_->end(); ++entry) {
    if (const auto* const place = placeOf.find(entry->second)) places[place->value] = entry;
  }
  for (const auto& place : places) {
    if (place != placed_->end()) placed_->erase(place);
  }
}

void CategoryIndex::eraseId(std::uint32_t id) {
  placeEntries();
  std::erase_if(*placed_, [=, this](const auto& entry) { return names_[entry.first].id == id; });
}

void CategoryIndex::clear() {
  placed_ = nullptr;
  placedEntries_.clear();
  entries_.clear();
  combined_ = nullptr;
  release(names_);
  haveSeveral_.clear();
  anyHasSeveral_ = false;
  ids_.clear();
  hints_.fill({});
  foldedNames_.clear();
}

}  // namespace Orvane
