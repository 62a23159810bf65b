#include "tree_script.h"

#include <algorithm>
#include <array>
#include <utility>

namespace Orvane::fuzz {

TreeScript::TreeScript(ByteSource input) : input_(input) {
  open_.push_back({tree_.getRoot(), plain_.get()});
  pairs_ = open_;
  tree_.setTrackTable(trackTable_);
  while (!input_.isEmpty() && !isFull()) step(input_.byte());
}

// The low bits say what, the high bits how often or which.
void TreeScript::step(std::uint32_t code) {
  const std::uint32_t high = code >> 4;
  switch (code & 0xF) {
    case 0:
    case 1:
      setAll(append(here(), Made::kByTree));
      return;
    case 2:
      setAll(append(here(), Made::kAlone));
      return;
    case 3:
    case 4:
      open_.push_back(append(here(), Made::kByTree));
      setAll(here());
      return;
    case 5:
      open_.push_back(append(here(), Made::kAlone));
      setAll(here());
      return;
    case 6:
    case 7:
      for (std::uint32_t i = 0; i <= high && open_.size() > 1; ++i) open_.pop_back();
      return;
    case 8:
      for (std::uint32_t i = input_.byte() * (high + 1); i-- > 0 && !isFull();) {
        open_.push_back(append(here(), high % 2 == 0 ? Made::kByTree : Made::kAlone));
      }
      return;
    case 9:
      for (std::uint32_t i = input_.byte() * (high + 1); i-- > 0 && !isFull();) {
        setOne(append(here(), high % 2 == 0 ? Made::kByTree : Made::kAlone), 1);
      }
      return;
    case 10:
      becomeLeaf(append(here(), high % 2 == 0 ? Made::kByTree : Made::kAlone));
      return;
    case 11:
      appendLeaves(here(), high + 1);
      return;
    case 12:
      setOne(here(), high);
      return;
    case 13:
      setOne(pairs_[input_.number() % pairs_.size()], high);
      return;
    case 14:
      setName(here(), name());
      return;
    default:
      borrowName(here(), name());
  }
}

TreeScript::Pair TreeScript::append(Pair parent, Made made) {
  Pair child{nullptr, nullptr};
  if (made == Made::kByTree) {
    child.node = &parent.node->appendChild([](MenuNode& /*fresh*/) {});
  } else {
    auto owned = std::make_unique<MenuNode>();
    child.node = owned.get();
    parent.node->addChild(std::move(owned));
  }
  child.plain = parent.plain->children.emplace_back(std::make_unique<plain::PlainNode>()).get();
  pairs_.push_back(child);
  return child;
}

void TreeScript::setAll(Pair pair) {
  plain::PlainNode& plain = *pair.plain;
  const std::uint32_t kinds = input_.byte();
  plain.nodeType = kinds % 16 < 3 ? kinds % 16 : kinds % 2 + 1;
  plain.mediaId = input_.number();
  const std::string text = name();
  plain::plainSetName(plain, text);
  plain.recType = kinds < 0x80 ? 7 : input_.number();
  if (kinds % 16 > 8) plain.rating = input_.number();
  if (kinds % 16 > 12) plain.attribMask = input_.number();
  pair.node->setAll(plain.nodeType, plain.mediaId, text, plain.recType, plain.rating,
                    plain.attribMask);
}

void TreeScript::setOne(Pair pair, std::uint32_t which) {
  const std::uint32_t value = input_.number();
  switch (which % 8) {
    case 0:
      pair.node->setNodeType(value);
      pair.plain->nodeType = value;
      return;
    case 1:
      pair.node->setMediaId(value);
      pair.plain->mediaId = value;
      return;
    case 2:
      pair.node->setRecType(value);
      pair.plain->recType = value;
      return;
    case 3:
      pair.node->setRating(value);
      pair.plain->rating = value;
      return;
    case 4:
      pair.node->setAttribMask(value);
      pair.plain->attribMask = value;
      return;
    case 5:
      pair.node->setSpare(value);
      return;
    default:
      setName(pair, name());
  }
}

void TreeScript::setName(Pair pair, const std::string& name) {
  pair.node->setName(name);
  plain::plainSetName(*pair.plain, name);
}

void TreeScript::borrowName(Pair pair, const std::string& name) {
  pair.node->setBorrowedName(borrowed_.emplace_back(name));
  plain::plainSetName(*pair.plain, name);
}

// Makes a fresh node the leaf of a track, perhaps of one that has leaves already, and then perhaps
// gives it something of its own.
void TreeScript::becomeLeaf(Pair pair) {
  const std::uint32_t choice = input_.number();
  const std::size_t which = choice % (tracks_.size() + 1);
  if (which == tracks_.size()) {
    Track& track = tracks_.emplace_back();
    track.setTitle(borrowed_.emplace_back(name()));
    track.setMediaId(pairs_[choice % pairs_.size()].plain->mediaId);
    trackTable_.push_back(&track);
    plain::PlainTrack& plain = plainTracks_.emplace_back();
    plain.title = track.getTitle();
    plain.mediaId = track.getMediaId();
  }
  const Track& track = tracks_[which];
  pair.node->becomeLeafOf(track);
  pair.plain->nodeType = NODE_TYPE_MEDIA;
  pair.plain->mediaId = track.getMediaId();
  pair.plain->track = &plainTracks_[which];
  plain::plainSetName(*pair.plain, std::string(track.getTitle()));
  if (choice % 4 == 0) setOne(pair, choice / 4);
}

// Leaves of tracks that have a leaf already; what a tree's own node keeps of them is numbers.
void TreeScript::appendLeaves(Pair parent, std::uint32_t count) {
  if (tracks_.empty()) return;
  std::vector<std::uint32_t>& numbers = numbers_.emplace_back();
  for (std::uint32_t i = 0; i < count; ++i) {
    const std::size_t which = input_.byte() % tracks_.size();
    numbers.push_back(static_cast<std::uint32_t>(which + 1));
    plain::PlainNode& plain =
        *parent.plain->children.emplace_back(std::make_unique<plain::PlainNode>());
    plain.nodeType = NODE_TYPE_MEDIA;
    plain.mediaId = tracks_[which].getMediaId();
    plain.track = &plainTracks_[which];
    plain::plainSetName(plain, std::string(tracks_[which].getTitle()));
  }
  if (count == 1) {
    parent.node->appendLeaf(trackTable_, numbers.front());
  } else {
    parent.node->appendLeaves(trackTable_, numbers);
  }
}

std::string TreeScript::name() {
  static const std::array<std::string, 8> kNames = {
      "Playlists", "Playlists", "playlists", "", "Songs", std::string("Playlists\0", 10), "A", "B"};
  const std::uint32_t kind = input_.byte();
  const std::uint32_t low = kind & 0x3F;
  switch (kind >> 6) {
    case 0:
      return kNames[low % kNames.size()];
    case 1:
      return input_.text(low);
    case 2: {
      // Around the lengths that count, with something else at the end.
      std::string text(low + 16, 'x');
      text += static_cast<char>(input_.byte());
      return text;
    }
    default: {
      const std::string& other = pairs_[input_.number() % pairs_.size()].plain->name;
      return other.substr(0, std::min<std::size_t>(other.size(), low + 16));
    }
  }
}

}  // namespace Orvane::fuzz
