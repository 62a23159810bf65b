#include "inventory/category_index.h"

#include <algorithm>
#include <new>
#include <numeric>
#include <string>
#include <utility>

#include "inventory/name_folding.h"
#include "tree/name_bytes.h"
#include "tree/name_ranks.h"

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
  names_.resize(position + 1);  // which has that many where there was no memory for what follows
  names_[position].id = id;
  return ids_.enter({id, position, nullptr});
}

// Tracks that have the same name share what it is in: then there is nothing to be looked at.
void CategoryIndex::rename(Id& known, const NamedId& entry) {
  if (known.named == &entry) return;
  const bool isNew = known.named == nullptr;
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

void CategoryIndex::placeEntries() {
  if (placed_) return;
  const ArenaAllocator<Placed::value_type> allocator(placedEntries_);
  void* const place = placedEntries_.allocate(sizeof(Placed), alignof(Placed));
  auto* const placed = new (place) Placed(ByLiveName{this}, allocator);
  entries_.forEach([&](std::uint32_t name, std::uint32_t track) { placed->emplace(name, track); });
  placed_ = placed;
  entries_.clear();
}

void CategoryIndex::add(std::uint32_t position, std::uint32_t track) {
  if (placed_) {
    placed_->emplace(position, track);
  } else {
    entries_.add(position, track);
  }
}

void CategoryIndex::insert(const NamedId& entry, std::uint32_t track) {
  Id& known = enterId(entry.id());
  rename(known, entry);
  add(known.position, track);
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

LargeVector<std::uint32_t> CategoryIndex::tracksInOrder() const {
  return findOrder(false).tracks;
}

CategoryIndex::Order CategoryIndex::inOrder() const {
  return findOrder(true);
}

CategoryIndex::Order CategoryIndex::findOrder(bool withStarts) const {
  Order order;
  const auto addStarts = [&](std::size_t begin, std::size_t end) {
    for (; begin < end; ++begin) {
      order.starts.push_back({static_cast<std::uint32_t>(begin), false});
    }
  };
  LargeVector<std::uint32_t>& tracks = order.tracks;
  if (placed_) {
    tracks.reserve(placed_->size());
    for (const auto& [name, track] : *placed_) tracks.push_back(track);
    if (withStarts) addStarts(0, tracks.size());
    return order;
  }

  // There are far fewer names than entries: rank the names, then count the entries into place.
  NameRanks ranks;
  ranks.rank(names_.size(), [this](std::size_t position) { return names_[position].folded(); });
  LargeVector<std::size_t> place(names_.size() + 1);  // by rank
  entries_.forEach([&](std::uint32_t name, std::uint32_t) { ++place[ranks[name] + 1]; });
  std::partial_sum(place.begin(), place.end(), place.begin());
  tracks.resize(entries_.size());
  if (withStarts) {
    // Names that are equal leave as many of the ranks behind theirs without entries.
    for (std::size_t rank = 0; rank < names_.size(); ++rank) {
      const bool isShared = rank + 1 < names_.size() && place[rank + 1] == place[rank + 2];
      if (isShared) {
        addStarts(place[rank], place[rank + 1]);
      } else if (place[rank] < place[rank + 1]) {
        order.starts.push_back({static_cast<std::uint32_t>(place[rank]), true});
      }
    }
  }
  entries_.forEach(
      [&](std::uint32_t name, std::uint32_t track) { tracks[place[ranks[name]]++] = track; });
  return order;
}

std::vector<std::uint32_t> CategoryIndex::tracksOf(std::uint32_t id) const {
  std::vector<std::uint32_t> tracks;
  const auto take = [&](std::uint32_t name, std::uint32_t track) {
    if (names_[name].id == id) tracks.push_back(track);
  };
  entries_.forEach(take);
  if (placed_) {
    for (const auto& [name, track] : *placed_) take(name, track);
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
  release(names_);
  ids_.clear();
  hints_.fill({});
  foldedNames_.clear();
}

}  // namespace Orvane
