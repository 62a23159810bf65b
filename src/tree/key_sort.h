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
  static_assert(2 * kBlock <= 256, "places are bytes");

  // Elements of a block, or of two, by their distance from the outer end, that belong on the other
  // side.
  struct Misplaced {
    std::array<std::uint8_t, 2 * kBlock> places;
    std::size_t begin = 0;
    std::size_t end = 0;

    std::size_t size() const { return end - begin; }

    // Searches the first `count` elements.
    template <typename IsMisplaced>
    void find(std::ptrdiff_t count, IsMisplaced isMisplaced) {
      std::size_t found = 0;
      for (std::ptrdiff_t i = 0; i < count; ++i) {
        places[found] = static_cast<std::uint8_t>(i);
        found += static_cast<std::size_t>(isMisplaced(i));
      }
      begin = 0;
      end = found;
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
    const auto findLeft = [&](std::ptrdiff_t count) {
      left.find(count, [=, this](std::ptrdiff_t i) { return !(keyOf_(first[i]) < pivot); });
    };
    const auto findRight = [&](std::ptrdiff_t count) {
      right.find(count, [=, this](std::ptrdiff_t i) { return !(pivot < keyOf_(last[-1 - i])); });
    };
    while (last - first >= 2 * kBlock) {
      if (left.size() == 0) findLeft(kBlock);
      if (right.size() == 0) findRight(kBlock);
      const std::size_t pairs = std::min(left.size(), right.size());
      for (std::size_t i = 0; i < pairs; ++i) {
        std::swap(first[left.places[left.begin + i]], last[-1 - right.places[right.begin + i]]);
      }
      left.begin += pairs;
      right.begin += pairs;
      if (left.size() == 0) first += kBlock;
      if (right.size() == 0) last -= kBlock;
    }
    if (left.size() > 0) first += left.places[left.begin];
    if (right.size() > 0) last -= right.places[right.begin];

    // Of what is left, each end looks at all: they meet where a pair isn't in order any more.
    const std::ptrdiff_t size = last - first;
    findLeft(size);
    findRight(size);
    std::ptrdiff_t end = size;  // where what has changed places begins, on the right
    std::size_t i = 0;
    for (; i < std::min(left.size(), right.size()); ++i) {
      const std::ptrdiff_t place = size - 1 - right.places[i];
      if (left.places[i] >= place) break;
      std::swap(first[left.places[i]], first[place]);
      end = place;
    }
    return first + (i < left.size() ? std::min<std::ptrdiff_t>(left.places[i], end) : end);
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
