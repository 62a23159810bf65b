#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>

namespace Orvane {

// What becomes of elements of equal keys.
enum class Ties {
  kAsByStdSort,  // the order that std::sort of the GNU library gives them
  kInAnyOrder,   // which takes less time where they are many
};

// Sorts by keys that are numbers. Existing inventories have equal names in the order that std::sort
// of the GNU library gave them, so with kAsByStdSort each decision here is one of that introsort,
// and must stay so; but they are taken without branches that depend on a comparison, of which the
// processor foresees only every second: half the time. What that library does with keys that hardly
// part is left to it.
//
// Elements are copied, and made before they are given a value.
template <Ties kTies, typename Element, typename KeyOf>
class KeySorter {
 public:
  // `keyOf` gives an element's key.
  explicit KeySorter(KeyOf keyOf) : keyOf_(keyOf) {}

  void sort(std::span<Element> elements) const {
    const int levels = static_cast<int>(std::bit_width(elements.size())) - 1;
    sort(elements.data(), elements.data() + elements.size(), 2 * levels);
  }

 private:
  static constexpr std::ptrdiff_t kFew = 16;
  static constexpr std::ptrdiff_t kBlock = 64;

  // Elements of a block, by their distance from its outer end, that belong on the other side.
  struct Misplaced {
    std::array<std::uint8_t, kBlock> places;
    std::size_t begin = 0;
    std::size_t end = 0;

    bool empty() const { return begin == end; }
    template <typename IsMisplaced>
    void find(IsMisplaced isMisplaced) {
      begin = end = 0;
      for (std::uint8_t i = 0; i < kBlock; ++i) {
        places[end] = i;
        end += static_cast<std::size_t>(isMisplaced(i));
      }
    }
  };

  void sort(Element* first, Element* last, int levelsLeft) const {
    for (; last - first > kFew; --levelsLeft) {
      if (levelsLeft == 0) {
        std::partial_sort(first, last, last, [this](const Element& a, const Element& b) {
          return keyOf_(a) < keyOf_(b);
        });
        return;
      }
      if constexpr (kTies == Ties::kInAnyOrder) {
        if (haveOneKey(first, last)) return;
      }
      std::swap(*first, *medianOf(first + 1, first + (last - first) / 2, last - 1));
      Element* const cut = partition(first + 1, last, keyOf_(*first));
      sort(cut, last, levelsLeft - 1);
      last = cut;
    }
    sortFew({first, last});
  }

  bool haveOneKey(const Element* first, const Element* last) const {
    const auto key = keyOf_(*first);
    const auto hasKey = [&](const Element& element) { return keyOf_(element) == key; };
    // Where there are several, one of these two mostly differs: then the others need no look.
    return hasKey(first[(last - first) / 2]) && hasKey(last[-1]) &&
           std::all_of(first, last, hasKey);
  }

  Element* medianOf(Element* a, Element* b, Element* c) const {
    if (keyOf_(*a) < keyOf_(*b)) {
      if (keyOf_(*b) < keyOf_(*c)) return b;
      return keyOf_(*a) < keyOf_(*c) ? c : a;
    }
    if (keyOf_(*a) < keyOf_(*c)) return a;
    return keyOf_(*b) < keyOf_(*c) ? c : b;
  }

  // Puts what is below the pivot before what is above it, and returns where that begins. From both
  // ends, the next two elements that don't belong there change places; those equal to the pivot
  // belong to neither side.
  template <typename Key>
  Element* partition(Element* first, Element* last, const Key pivot) const {
    Misplaced left;
    Misplaced right;
    while (last - first >= 2 * kBlock) {
      if (left.empty()) left.find([=, this](int i) { return !(keyOf_(first[i]) < pivot); });
      if (right.empty()) right.find([=, this](int i) { return !(pivot < keyOf_(last[-1 - i])); });
      while (!left.empty() && !right.empty()) {
        std::swap(first[left.places[left.begin++]], last[-1 - right.places[right.begin++]]);
      }
      if (left.empty()) first += kBlock;
      if (right.empty()) last -= kBlock;
    }
    if (!left.empty()) first += left.places[left.begin];
    if (!right.empty()) last -= right.places[right.begin];
    while (true) {
      while (keyOf_(*first) < pivot) ++first;
      --last;
      while (pivot < keyOf_(*last)) --last;
      if (first >= last) return first;
      std::swap(*first++, *last);
    }
  }

  // Few elements keep their order where their keys are equal.
  void sortFew(std::span<Element> elements) const {
    std::array<Element, kFew> before;
    std::array<std::uint8_t, kFew> place;
    for (std::size_t i = 0; i < elements.size(); ++i) {
      const auto key = keyOf_(elements[i]);
      std::uint8_t notAfter = 0;
      for (std::size_t j = 0; j < i; ++j) {
        const bool isAfter = key < keyOf_(before[j]);
        place[j] = static_cast<std::uint8_t>(place[j] + isAfter);
        notAfter = static_cast<std::uint8_t>(notAfter + !isAfter);
      }
      before[i] = elements[i];
      place[i] = notAfter;
    }
    for (std::size_t i = 0; i < elements.size(); ++i) elements[place[i]] = before[i];
  }

  KeyOf keyOf_;
};

template <Ties kTies = Ties::kAsByStdSort, typename Element, typename KeyOf>
void sortByKey(std::span<Element> elements, KeyOf keyOf) {
  KeySorter<kTies, Element, KeyOf>(keyOf).sort(elements);
}

}  // namespace Orvane
