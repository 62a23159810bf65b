#pragma once

#include <cstddef>
#include <vector>

#include "output/family_walk.h"
#include "tree/made_ahead.h"
#include "tree/parallel.h"

namespace Orvane {

// Has a layout take a step.
template <typename Layout>
void takeStep(const LayoutStep& step, Layout& layout) {
  switch (step.kind) {
    case LayoutStep::Kind::kNode:
      layout.append(step);
      break;
    case LayoutStep::Kind::kLeaves:
      layout.appendLeaves(step.tracks);
      break;
    case LayoutStep::Kind::kFirstChild:
      layout.setFirstChild(step.place, step.firstChild);
  }
}

// Calls `use` with all steps of the walk, some at a time, in order. Where that is worth it, another
// thread walks ahead: to look at nodes and their names, all over the memory, is half of the work.
template <typename Use>
void forEachWalkedAhead(FamilyWalk& walk, Use use) {
  constexpr std::size_t kBlocksAlone = 16;
  const bool isAlone = usableProcessors() < 2;
  std::vector<LayoutStep> steps;
  for (std::size_t block = 0; isAlone || block < kBlocksAlone; ++block) {
    if (!walk.take(steps)) return;
    use(steps);
    if (steps.size() < FamilyWalk::kMostSteps) return;
  }
  using Steps = std::vector<LayoutStep>;
  forEachMadeAhead<Steps>([&](Steps& next) { return walk.take(next); }, [](Steps&) {}, use);
}

}  // namespace Orvane
