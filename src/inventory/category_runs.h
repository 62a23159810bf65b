#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "inventory/category_index.h"
#include "tree/prefetch.h"
#include "tree/track_table.h"

namespace Orvane {

// Goes through the runs of equal ids among tracks' numbers: calls `start` with the first track of
// each run and what is known of where it begins, `look` with each track that is looked at, and
// `finish` with the numbers of the run, which stand right behind those of the run before. Looked at
// are the tracks at `starts`; without any, all are, and of a start nothing is known but its place.
template <typename Start, typename Look, typename Finish>
void forEachRun(const TrackTable& tracks, std::span<std::uint32_t> numbers,
                std::span<const CategoryIndex::Start> starts, std::uint32_t (Track::*idOf)() const,
                Start start, Look look, Finish finish) {
  const auto startAt = [&](std::size_t i) {
    return starts.empty() ? CategoryIndex::Start{.place = static_cast<std::uint32_t>(i)}
                          : starts[i];
  };
  const auto placeAt = [&](std::size_t i) { return startAt(i).place; };
  const auto trackAt = [&](std::size_t i) { return tracks[numbers[placeAt(i)]]; };
  std::size_t begin = 0;
  std::uint32_t id = 0;
  forEachPrefetched(
      starts.empty() ? numbers.size() : starts.size(),
      [&](std::size_t i) {
        const Track& track = *trackAt(i);
        if (i == 0 || (track.*idOf)() != id) {
          const std::size_t end = placeAt(i);
          if (i > 0) finish(numbers.subspan(begin, end - begin));
          begin = end;
          id = (track.*idOf)();
          start(track, startAt(i));
        }
        look(track);
      },
      [&](std::size_t i) { prefetch(&numbers[placeAt(i)]); },
      [&](std::size_t i) { prefetch(trackAt(i)); },
      [&](std::size_t i) { prefetch(&trackAt(i)->getAlbum()); });
  if (!numbers.empty()) finish(numbers.subspan(begin));
}

// The same where tracks are of no interest in themselves: then mostly few are looked at.
template <typename Start, typename Finish>
void forEachRun(const TrackTable& tracks, std::span<std::uint32_t> numbers,
                std::span<const CategoryIndex::Start> starts, std::uint32_t (Track::*idOf)() const,
                Start start, Finish finish) {
  if (Track::wereAnyChanged()) starts = {};
  forEachRun(
      tracks, numbers, starts, idOf, start, [](const Track& /*track*/) {}, finish);
}

}  // namespace Orvane
