#include "reader/writer_order.h"

#include <algorithm>

#include "reader/tree_walk.h"

namespace Orvane {

WriterOrder::WriterOrder(const InventoryView& view)
    : view_(view), owners_(view.recordCount() / 64 + 1, 0) {
  checkItems();
  checkLinks();
  if (view_.layout() == Layout::kTwoTable) checkDuplicates();
}

void WriterOrder::depart(std::uint32_t record, std::string message) {
  if (!departure_) departure_ = Departure{record, std::move(message)};
}

// Data records come in the order of the first records to use them; the root's is its own.
void WriterOrder::checkItems() {
  std::uint32_t next = 0;
  for (std::uint32_t i = 0; i < view_.recordCount(); ++i) {
    const std::uint32_t dataIndex = view_.links(i).dataIndex;
    if (dataIndex == next) {
      ++next;
      owners_[i / 64] |= std::uint64_t{1} << (i % 64);
    } else if (dataIndex > next) {
      depart(i, "a writer would give it data record " + std::to_string(next));
    } else if (dataIndex == 0) {
      depart(i, "a writer would not let it share the root's data record");
    }
  }
}

void WriterOrder::checkLinks() {
  TreeWalk walk(view_, WalkOrder::kStorage);
  std::uint64_t next = 1;
  for (auto event = walk.next(); event != TreeWalk::Event::kEnd; event = walk.next()) {
    if (event != TreeWalk::Event::kEnter) continue;
    const TreeWalk::Visit& visit = walk.current();
    // It is linked to 0 even if it is a media leaf.
    const bool earlier = walk.hasLaterPlaylists(visit.record);
    if (visit.links.isLeaf()) {
      if (!earlier) continue;
      depart(visit.record, "a writer would link it to record 0, as a Playlists menu follows");
      return;
    }
    const std::uint64_t expected = earlier ? 0 : next;
    if (visit.links.firstChildIndex != expected) {
      depart(visit.record, "a writer would put its children at record " + std::to_string(expected) +
                               ", not at " + std::to_string(visit.links.firstChildIndex));
      return;
    }
    if (!earlier) next += visit.links.childCount;
  }
}

// No two data records but the root's may hold the same id and name: the writer would share them.
void WriterOrder::checkDuplicates() {
  std::vector<std::uint64_t> byId;
  byId.reserve(view_.dataCount());
  for (std::uint32_t i = 1; i < view_.dataCount(); ++i) {
    byId.push_back(std::uint64_t{view_.item(i).mediaId()} << 32 | i);
  }
  const auto itemOf = [this](std::uint64_t entry) {
    return view_.item(static_cast<std::uint32_t>(entry));
  };
  std::sort(byId.begin(), byId.end());
  auto begin = byId.begin();
  while (begin != byId.end()) {
    const auto end = std::find_if(
        begin, byId.end(), [begin](std::uint64_t entry) { return entry >> 32 != *begin >> 32; });
    std::sort(begin, end, [&](std::uint64_t a, std::uint64_t b) {
      const int order = itemOf(a).name().compare(itemOf(b).name());
      return order != 0 ? order < 0 : a < b;
    });
    const auto twin = std::adjacent_find(begin, end, [&](std::uint64_t a, std::uint64_t b) {
      return itemOf(a).name() == itemOf(b).name();
    });
    if (twin != end) {
      const auto first = static_cast<std::uint32_t>(*twin);
      const auto second = static_cast<std::uint32_t>(*(twin + 1));
      std::uint32_t user = 0;
      while (view_.links(user).dataIndex != second) ++user;
      depart(user, "a writer would let it share data record " + std::to_string(first));
      return;
    }
    begin = end;
  }
}

}  // namespace Orvane
