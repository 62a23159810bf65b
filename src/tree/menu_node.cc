#include "tree/menu_node.h"

#include <algorithm>
#include <bit>
#include <utility>

#include "tree/node_arena.h"

namespace Orvane {

MenuNode::MenuNode() {
  static Branch plain(nullptr, true);
  branch_ = &plain;
}

MenuNode::~MenuNode() {
  freeChildren();
  freeOwn();
}

// Depth first along the cursors, with the way back kept in the branches themselves: a deep tree
// must not overflow the call stack, nor a full heap make its destruction fail.
void MenuNode::freeChildren() {
  MenuNode* node = this;
  firstChild();
  while (true) {
    Branch& branch = *node->branch_;
    if (branch.cursor < branch.count) {
      MenuNode* const child = branch.children[branch.cursor++];
      if (child != nullptr && child->childCount() > 0) {
        child->firstChild();
        child->branch_->parent = node;
        node = child;
      } else {
        delete child;
      }
    } else if (node == this) {
      return;
    } else {
      MenuNode* const parent = branch.parent;
      branch.count = 0;
      branch.cursor = 0;
      delete node;
      node = parent;
    }
  }
}

void MenuNode::freeOwn() {
  if (branch_->isShared) return;
  delete[] rare(&Rare::ownedName);
  delete branch_->rare;
  delete[] branch_->children;
  delete branch_;
}

MenuNode::Branch& MenuNode::ownBranch() const {
  if (!branch_->isShared) return *branch_;
  NodeArena* const arena = branch_->arena();
  if (branch_->hasNumbers) {
    branch_ = &copyOfBranch();
  } else {
    branch_ = arena == nullptr ? new Branch() : arena->makeBranch();
  }
  return *branch_;
}

// The numbers, too: the twin may put its own in another order.
MenuNode::Branch& MenuNode::copyOfBranch() const {
  NodeArena& arena = *branch_->arena();
  Branch& copy = *arena.makeBranch();
  if (branch_->rare != nullptr) {
    copy.rare = arena.makeRare();
    *copy.rare = *branch_->rare;
  }
  copy.count = branch_->count;
  copy.capacity = std::bit_ceil(copy.count);
  copy.numbers = arena.makeArray<std::uint32_t>(copy.capacity);
  std::copy(branch_->numbers, branch_->numbers + copy.count, copy.numbers);
  copy.hasNumbers = true;
  return copy;
}

MenuNode::Rare& MenuNode::ownRare() {
  Branch& branch = ownBranch();
  if (branch.rare == nullptr) {
    branch.rare = branch.arena() == nullptr ? new Rare() : branch.arena()->makeRare();
  }
  return *branch.rare;
}

// Makes a track's leaf a node like others, that looks the same.
void MenuNode::leaveTrack() {
  if (!isTrackLeaf()) return;
  const Track* const track = track_;
  const std::string_view name = getName();
  ownRare().track = track;
  nodeType_ = NODE_TYPE_MEDIA;
  mediaId_ = track->getMediaId();
  name_ = name.data();
  nameSize_ = static_cast<std::uint8_t>(name.size());
}

void MenuNode::setTrack(const Track* track) {
  leaveTrack();
  if (track != getTrack()) ownRare().track = track;
}

void MenuNode::setNumber(std::uint8_t MenuNode::*field, std::uint32_t Rare::*wideField,
                         std::uint32_t value) {
  if (value < kTrackLeaf) {
    this->*field = static_cast<std::uint8_t>(value);
  } else {
    ownRare().*wideField = value;
    this->*field = kWide;
  }
}

void MenuNode::setNodeType(std::uint32_t value) {
  leaveTrack();
  setNumber(&MenuNode::nodeType_, &Rare::nodeType, value);
}

void MenuNode::setRecType(std::uint32_t value) {
  setNumber(&MenuNode::recType_, &Rare::recType, value);
}

void MenuNode::setRating(std::uint32_t value) {
  setNumber(&MenuNode::rating_, &Rare::rating, value);
}

void MenuNode::setMediaId(std::uint32_t value) {
  leaveTrack();
  mediaId_ = value;
}

void MenuNode::setAttribMask(std::uint32_t value) {
  if (value != getAttribMask()) ownRare().attribMask = value;
}

std::uint32_t MenuNode::setSpare(std::uint32_t value) {
  if (value != getSpare()) ownRare().spare = value;
  return value;
}

// Takes a name that outlives the node or, when `isOwned`, one that a node that stands alone is to
// free; such a node keeps something rare by then.
void MenuNode::takeName(std::string_view name, bool isOwned) {
  const bool isWide = name.size() >= kWide;
  if (isWide) ownRare().nameSize = static_cast<std::uint32_t>(name.size());
  if (Rare* const rare = branch_->rare) {
    delete[] std::exchange(rare->ownedName, isOwned ? name.data() : nullptr);
  }
  name_ = name.data();
  nameSize_ = isWide ? kWide : static_cast<std::uint8_t>(name.size());
}

void MenuNode::setName(std::string_view name) {
  leaveTrack();
  if (name.size() > kMaxNameLength) {
    takeCopy(name.substr(0, kShortenedNameLength), getName());
  } else if (name.empty()) {
    takeName("", false);
  } else {
    takeCopy(name, {});
  }
}

void MenuNode::setBorrowedName(std::string_view name) {
  leaveTrack();
  if (name.size() <= kMaxNameLength) {
    takeName(name, false);
  } else if (getName().empty()) {
    takeName(name.substr(0, kShortenedNameLength), false);
  } else {
    takeCopy(name.substr(0, kShortenedNameLength), getName());
  }
}

void MenuNode::takeCopy(std::string_view front, std::string_view back) {
  NodeArena* const arena = branch_->arena();
  if (arena == nullptr) ownRare();  // before there is a copy to be lost
  const std::size_t size = front.size() + back.size();
  char* const copy = arena == nullptr ? new char[size] : arena->makeText(size);
  std::copy(back.begin(), back.end(), std::copy(front.begin(), front.end(), copy));
  takeName({copy, size}, arena == nullptr);
}

void MenuNode::setAll(std::uint32_t nodeType, std::uint32_t mediaId, std::string_view name,
                      std::uint32_t recType, std::uint32_t rating, std::uint32_t attribMask) {
  setNodeType(nodeType);
  setMediaId(mediaId);
  setName(name);
  setRecType(recType);
  setRating(rating);
  setAttribMask(attribMask);
}

// Makes room for one more child that is a node.
void MenuNode::growChildren() {
  if (branch_->hasNumbers) makeNodesOfNumbers();
  Branch& branch = ownBranch();
  if (branch.count < branch.capacity) return;
  // Many menus have one child only, hardly any has two or three.
  const std::uint32_t capacity = branch.capacity == 0 ? 1 : std::max(4U, 2 * branch.capacity);
  NodeArena* const arena = branch.arena();
  auto** const grown = arena ? arena->makeArray<MenuNode*>(capacity) : new MenuNode*[capacity];
  std::copy(branch.children, branch.children + branch.count, grown);
  if (arena == nullptr) {
    delete[] branch.children;
  } else if (branch.capacity > 0) {
    arena->giveBack(branch.children, branch.capacity);
  }
  branch.children = grown;
  branch.capacity = capacity;
}

// The same for one that is a number, where there are only such.
void MenuNode::growNumbers() {
  Branch& branch = ownBranch();
  if (branch.count < branch.capacity) return;
  // Not twice the capacity: that is 0 for somebody else's array.
  const std::uint32_t capacity = std::max(2U, std::bit_ceil(branch.count + 1));
  auto* const grown = branch.arena()->makeArray<std::uint32_t>(capacity);
  std::copy(branch.numbers, branch.numbers + branch.count, grown);
  if (branch.capacity > 0) branch.arena()->giveBack(branch.numbers, branch.capacity);
  branch.numbers = grown;
  branch.capacity = capacity;
}

bool MenuNode::addChild(std::unique_ptr<MenuNode> child) {
  if (child == nullptr) return false;
  growChildren();
  MenuNode* const linked = child.get();
  if (branch_->arena() != nullptr) {
    branch_->arena()->adopt(std::move(child));
  } else {
    static_cast<void>(child.release());
  }
  link(linked);
  return true;
}

void MenuNode::appendLeaf(const TrackTable& tracks, std::uint32_t number) {
  const bool hasNodes = !branch_->hasNumbers && branch_->count > 0;
  if (hasNodes || getTrackTable() != &tracks) {
    appendChild([&](MenuNode& leaf) { leaf.becomeLeafOf(*tracks[number]); });
    return;
  }
  growNumbers();
  branch_->hasNumbers = true;
  branch_->numbers[branch_->count++] = number;
}

void MenuNode::appendLeaves(const TrackTable& tracks, std::span<std::uint32_t> numbers) {
  const bool isFresh = branch_->count == 0 && branch_->capacity == 0;
  if (!isFresh || getTrackTable() != &tracks) {
    for (const std::uint32_t number : numbers) appendLeaf(tracks, number);
  } else if (!numbers.empty()) {
    Branch& branch = ownBranch();
    branch.numbers = numbers.data();
    branch.count = static_cast<std::uint32_t>(numbers.size());
    branch.hasNumbers = true;
  }
}

MenuNode& MenuNode::appendTwinOf(MenuNode& menu) {
  MenuNode* const twin = makeChild();
  growChildren();
  twin->name_ = menu.name_;
  twin->branch_ = menu.branch_;
  twin->mediaId_ = menu.mediaId_;
  twin->nodeType_ = menu.nodeType_;
  twin->recType_ = menu.recType_;
  twin->rating_ = menu.rating_;
  twin->nameSize_ = menu.nameSize_;
  menu.branch_->isShared = true;
  link(twin);
  return *twin;
}

void MenuNode::keepChildren(std::size_t count) {
  if (count >= childCount()) return;
  Branch& branch = ownBranch();
  if (!branch.hasNumbers) {
    for (std::size_t i = count; i < branch.count; ++i) discardChild(branch.children[i]);
  }
  branch.count = static_cast<std::uint32_t>(count);
  branch.cursor = std::min(branch.cursor, branch.count);
}

const TrackTable* MenuNode::getTrackTable() const {
  return branch_->arena() == nullptr ? nullptr : branch_->arena()->getTrackTable();
}

// When memory runs out on the way, all are still numbers.
void MenuNode::makeNodesOfNumbers() const {
  Branch& branch = ownBranch();
  NodeArena& arena = *branch.arena();
  const TrackTable& tracks = *arena.getTrackTable();
  const std::uint32_t capacity = std::bit_ceil(branch.count);
  auto** const nodes = arena.makeArray<MenuNode*>(capacity);
  for (std::size_t i = 0; i < branch.count; ++i) {
    nodes[i] = arena.make();
    nodes[i]->becomeLeafOf(*tracks[branch.numbers[i]]);
  }
  if (branch.capacity > 0) arena.giveBack(branch.numbers, branch.capacity);
  branch.children = nodes;
  branch.capacity = capacity;
  branch.hasNumbers = false;
}

MenuNode* MenuNode::makeChild() {
  return branch_->arena() ? branch_->arena()->make() : new MenuNode();
}

// Appends a fresh node of another arena that lives as long.
MenuNode& MenuNode::appendChildOf(NodeArena& arena) {
  MenuNode* const child = arena.make();
  growChildren();
  link(child);
  return *child;
}

void MenuNode::discardChild(MenuNode* child) {
  if (branch_->arena() == nullptr) delete child;
}

// A cursor moves once the children are nodes: before that it may be a twin's, too.
MenuNode::Position MenuNode::firstChild() {
  const Position begin = childrenBegin();
  if (branch_->count > 0) branch_->cursor = 0;
  return begin;
}

MenuNode::Position MenuNode::nextChild() {
  const Position begin = childrenBegin();
  if (hasMoreChildren()) ++branch_->cursor;
  return begin + branch_->cursor;
}

template <typename Predicate>
bool MenuNode::findChild(Position& position, Predicate matches) {
  if (childCount() == 0) return false;
  for (position = firstChild(); hasMoreChildren(); position = nextChild()) {
    if (matches(**position)) return true;
  }
  return false;
}

bool MenuNode::findChildByName(Position& position, std::string_view name) {
  return findChild(position, [&](const MenuNode& child) { return child.getName() == name; });
}

bool MenuNode::findChildByNameAndMediaId(Position& position, std::string_view name,
                                         std::uint32_t mediaId) {
  return findChild(position, [&](const MenuNode& child) {
    return child.getName() == name && child.getMediaId() == mediaId;
  });
}

MenuNode* MenuNode::findMatchingChild(const MenuNode& other) {
  firstChild();
  const Position end = childrenEnd();
  const Position found = std::find_if(childrenBegin(), end, [&](const MenuNode* child) {
    return child->getName() == other.getName() && child->getMediaId() == other.getMediaId();
  });
  return found == end ? nullptr : *found;
}

}  // namespace Orvane
