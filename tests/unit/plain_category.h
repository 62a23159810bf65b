// The order of a category as a multimap that looks names up at each comparison.
#pragma once

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace Orvane::test {

// Names by id, and an order that looks them up each time, letter by letter.
using Names = std::map<std::uint32_t, std::string>;

struct LiveOrder {
  const Names* names;
  bool operator()(std::uint32_t a, std::uint32_t b) const {
    const std::string& left = names->at(a);
    const std::string& right = names->at(b);
    return std::lexicographical_compare(left.begin(), left.end(), right.begin(), right.end(),
                                        [](char x, char y) { return letter(x) < letter(y); });
  }

 private:
  static int letter(char c) {
    const auto byte = static_cast<signed char>(c);
    return byte >= 'a' && byte <= 'z' ? byte - 32 : byte;
  }
};

// The multimap that defines the order.
class PlainCategory {
 public:
  void insert(std::uint32_t id, const std::string& name, std::uint32_t track) {
    names_[id] = name;
    entries_.emplace(id, track);
    ids_[track] = id;
  }
  void eraseTracks(const std::vector<std::uint32_t>& tracks) {
    // One after the other: the order in which entries go decides what shape is left.
    for (const std::uint32_t track : tracks) {
      std::erase_if(entries_, [=](const auto& entry) { return entry.second == track; });
    }
  }
  void eraseId(std::uint32_t id) {
    std::erase_if(entries_, [=](const auto& entry) { return entry.first == id; });
  }
  void clear() {
    entries_.clear();
    names_.clear();
  }

  std::vector<std::uint32_t> tracks() const {
    std::vector<std::uint32_t> result;
    for (const auto& [id, track] : entries_) result.push_back(track);
    return result;
  }
  // Places in the order where another id begins.
  std::vector<std::uint32_t> starts() const {
    std::vector<std::uint32_t> result;
    std::uint32_t place = 0;
    for (auto entry = entries_.begin(); entry != entries_.end(); ++entry, ++place) {
      if (place == 0 || std::prev(entry)->first != entry->first) result.push_back(place);
    }
    return result;
  }
  std::vector<std::uint32_t> tracksOf(std::uint32_t id) const {
    std::vector<std::uint32_t> result;
    for (const auto& [entryId, track] : entries_) {
      if (entryId == id) result.push_back(track);
    }
    return result;
  }
  std::string nameOf(std::uint32_t id) const { return names_.count(id) == 0 ? "" : names_.at(id); }

  std::uint32_t idOf(std::uint32_t track) const { return ids_.at(track); }
  bool hasNameToItself(std::uint32_t id) const { return entries_.count(id) == tracksOf(id).size(); }
  // Whether none of the ids with the name of this one is in there.
  bool areAllAlike(std::uint32_t id, const std::set<std::uint32_t>& unlike) const {
    const auto [begin, end] = entries_.equal_range(id);
    return std::none_of(begin, end,
                        [&](const auto& entry) { return unlike.count(entry.first) > 0; });
  }
  // The tracks in order, but those of ids of one name id by id as they first come up, unless some
  // of these are in there.
  std::vector<std::uint32_t> tracksWithIdsApart(const std::set<std::uint32_t>& unlike) const {
    std::vector<std::uint32_t> result;
    for (auto entry = entries_.begin(); entry != entries_.end();) {
      const auto [begin, end] = entries_.equal_range(entry->first);
      std::vector<std::uint32_t> ids;
      for (; entry != end; ++entry) {
        if (std::ranges::count(ids, entry->first) == 0) ids.push_back(entry->first);
      }
      if (!areAllAlike(ids.front(), unlike)) {
        std::for_each(begin, end, [&](const auto& each) { result.push_back(each.second); });
        continue;
      }
      for (const std::uint32_t id : ids) {
        for (const std::uint32_t track : tracksOf(id)) result.push_back(track);
      }
    }
    return result;
  }

 private:
  Names names_;
  std::map<std::uint32_t, std::uint32_t> ids_;  // by track
  std::multimap<std::uint32_t, std::uint32_t, LiveOrder> entries_{LiveOrder{&names_}};
};

}  // namespace Orvane::test
