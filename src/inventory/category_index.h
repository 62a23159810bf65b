#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include "inventory/category_entries.h"
#include "inventory/combined_entries.h"
#include "inventory/id_map.h"
#include "tree/arena.h"
#include "tree/arena_allocator.h"
#include "tree/huge_pages.h"
#include "tree/name_ranks.h"
#include "tree/named_id.h"
#include "tree/prefetch.h"

namespace Orvane {

// One of the orders in which the inventory is browsed: entries of a category id (an artist's, say)
// and a track number, ordered by the names of the ids or by the ids as numbers. Entries that are
// equal in that order stay in the order in which they came.
//
// An id has one name at a time, the one that came with its last entry, and an entry is placed by
// the names as they stand when it comes: what is in place already stays there when an id gets
// another name. What that gives is by definition what a std::multimap gives whose comparison looks
// the names up. As long as no id has changed the place of its name that is a plain stable sort,
// which is how the order is then found; from the first such change on, a multimap is kept.
class CategoryIndex {
 public:
  CategoryIndex() = default;
  CategoryIndex(const CategoryIndex&) = delete;
  CategoryIndex& operator=(const CategoryIndex&) = delete;

  static constexpr std::uint32_t kNowhere = CombinedEntries::kNone;

  // Until the next clear(), and as long as isCombined(), the entries are those that `entries` has
  // of the category: insert() adds none. For an empty index; `entries` must outlive it, or that
  // clear().
  void takeFrom(const CombinedEntries& entries, CombinedEntries::Category category) {
    combined_ = &entries;
    category_ = category;
  }

  // False, too, once the index keeps its entries in place: it has those that came before.
  bool isCombined() const { return combined_ != nullptr && placed_ == nullptr; }

  // Gives the id of `entry` its name, then enters (id, track). Returns positionOf(id). `entry` must
  // outlive the index, or the next clear().
  std::uint32_t insert(const NamedId& entry, std::uint32_t track);

  // The same where ids have no names, and are ordered as numbers. Not both in one index.
  void insert(std::uint32_t id, std::uint32_t track);

  // Asks, in two steps from 0 on, each in time for the next, for what find(id) looks at: the id's
  // entry, and the NamedId with what is right behind it, as the name may be. Not for several
  // threads, as find() isn't.
  void expect(std::uint32_t id, int step) const {
    if (step == 0) {
      ids_.expect(id);
    } else if (const NamedId* const named = find(id)) {
      expect(*named);
    }
  }

  // Asks for it and what is right behind it.
  static void expect(const NamedId& named) {
    constexpr std::size_t kCacheLine = 64;
    prefetch(&named);
    prefetch(reinterpret_cast<const char*>(&named) + kCacheLine);
  }

  // What the id was last entered with, nullptr if it never was, or has no name. Not for several
  // threads: it remembers what it has found.
  const NamedId* find(std::uint32_t id) const { return findLast(id).named; }

  // The same, and positionOf(id), or kNowhere if it never was.
  struct Last {
    const NamedId* named = nullptr;
    std::uint32_t position = kNowhere;
  };
  Last findLast(std::uint32_t id) const {
    const Id* const known = ids_.find(id, hintOf(id));
    return known == nullptr ? Last() : Last{known->named, known->position};
  }

  // Whether the id at this position came with several NamedIds; and whether any did.
  bool hasSeveral(std::uint32_t position) const { return haveSeveral_[position]; }
  bool anyHasSeveral() const { return anyHasSeveral_; }

  // The track numbers of all entries, in order.
  LargeVector<std::uint32_t> tracksInOrder() const { return inOrder().tracks; }

  // Where entries of another id may begin.
  struct Start {
    std::uint32_t place = 0;
    std::uint32_t position = 0;  // of the id, if isOnly: see positionOf()
    bool isOnly = false;         // up to the next start there are all entries of one id
    bool hasOneNamedId = false;  // and all of them were inserted with the same NamedId
    bool isLeftOut = false;      // but inOrder() left them out
  };
  struct Order {
    LargeVector<std::uint32_t> tracks;
    LargeVector<Start> starts;  // all, in order, or none when any place may be one
  };

  // The track numbers in order and their starts, without the entries of each id that has as many as
  // `leftOut` says at the position of the id. Positions behind its end stay, as do ids whose name
  // others have, and all once the names don't determine the order any more.
  Order inOrder(std::span<const std::uint32_t> leftOut = {}) const {
    return findOrder(false, leftOut);
  }

  // The same of all entries, but where several ids have one name, and each came with one NamedId
  // only, the entries of each may stand together, the ids in the order of their first entries. Once
  // the names don't determine the order any more, the same as inOrder().
  Order inOrderOfIds() const { return findOrder(true, {}); }

  // Ids are numbered from 0 on in the order in which they first came. positionCount() for others.
  std::uint32_t positionOf(std::uint32_t id) const {
    const Id* const known = ids_.find(id);
    return known == nullptr ? positionCount() : known->position;
  }
  std::uint32_t positionCount() const { return static_cast<std::uint32_t>(ids_.size()); }

  // Says that positionOf(id) will soon be asked for.
  void expectPosition(std::uint32_t id) const { ids_.expect(id); }

  // The track numbers of the id's entries, in order.
  std::vector<std::uint32_t> tracksOf(std::uint32_t id) const;

  // Take entries out: those of the tracks, one after the other as they are given, and those of the
  // id. Names stay.
  void eraseTracks(std::span<const std::uint32_t> tracks);
  void eraseId(std::uint32_t id);

  // Forgets entries and names.
  void clear();

 private:
  struct Name {
    const char* foldedBytes = nullptr;  // of the name; otherwise of the id, the highest first
    std::uint64_t firstBytes = 0;       // of those: see nameBytesAt
    std::uint32_t size = 0;             // of them
    std::uint32_t id = 0;

    std::string_view folded() const { return {foldedBytes, size}; }
  };

  // Compares positions in names_ by what the names are at the time of the comparison.
  struct ByLiveName {
    const CategoryIndex* index;
    bool operator()(std::uint32_t a, std::uint32_t b) const { return index->orders(a, b); }
  };
  using Placed = std::multimap<std::uint32_t, std::uint32_t, ByLiveName,
                               ArenaAllocator<std::pair<const std::uint32_t, std::uint32_t>>>;

  struct Id {
    std::uint32_t id = 0;
    std::uint32_t position = kNowhere;  // in names_
    const NamedId* named = nullptr;     // what it was last entered with, if ids have names

    bool isFree() const { return position == kNowhere; }
  };
  using Ids = IdMap<Id>;

  bool orders(std::uint32_t a, std::uint32_t b) const;
  Ids::Hint& hintOf(std::uint32_t id) const { return hints_[id % hints_.size()]; }
  Id& enterId(std::uint32_t id);
  void rename(Id& known, const NamedId& entry);
  void add(std::uint32_t position, std::uint32_t track);
  // The entries as they came: of combinations, or of positions.
  const CategoryEntries& keys() const { return combined_ ? combined_->tracks() : entries_; }
  std::size_t keyCount() const {
    return combined_ ? combined_->combinations().size() : names_.size();
  }
  template <typename Use>
  void forEachKey(Use use) const;
  template <typename Use>
  void forEachEntry(Use use) const;
  void placeEntries();
  class Places;
  Order findOrder(bool areIdsApart, std::span<const std::uint32_t> leftOut) const;
  LargeVector<std::uint32_t> positionsByName(const NameRanks& ranks) const;

  LargeVector<Name> names_;
  std::vector<bool> haveSeveral_;  // by position: whether the id came with several NamedIds
  bool anyHasSeveral_ = false;     // whether any is set
  Ids ids_;
  // Where ids were found, for each in the place that its last bits give: an id is asked for its
  // name several times, then given an entry.
  mutable std::array<Ids::Hint, 1024> hints_;
  Arena foldedNames_;

  // Either all entries as they came, here or where others keep them, too, or, once that doesn't
  // determine their order, all in place: in an arena, with which they go without a look at any,
  // those that were erased, too.
  CategoryEntries entries_;
  const CombinedEntries* combined_ = nullptr;
  CombinedEntries::Category category_ = {};
  Arena placedEntries_;
  Placed* placed_ = nullptr;
};

}  // namespace Orvane
