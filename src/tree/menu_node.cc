#include "tree/menu_node.h"

#include <algorithm>
#include <string>
#include <utility>

#include "tree/node_arena.h"

namespace Orvane {

MenuNode::MenuNode() {
  static Branch plain{.isShared = true};
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
  if (ownsName_) delete[] name_;
  if (branch_->isShared) return;
  delete[] branch_->children;
  delete branch_;
}

MenuNode::Branch& MenuNode::ownBranch() {
  if (branch_->isShared) {
    branch_ = branch_->arena == nullptr ? new Branch() : branch_->arena->makeBranch();
  }
  return *branch_;
}

void MenuNode::setNumber(std::uint8_t MenuNode::*field, std::uint32_t Branch::*wideField,
                         std::uint32_t value) {
  if (value < kWide) {
    this->*field = static_cast<std::uint8_t>(value);
  } else {
    ownBranch().*wideField = value;
    this->*field = kWide;
  }
}

void MenuNode::setNodeType(std::uint32_t value) {
  setNumber(&MenuNode::nodeType_, &Branch::nodeType, value);
}

void MenuNode::setRecType(std::uint32_t value) {
  setNumber(&MenuNode::recType_, &Branch::recType, value);
}

void MenuNode::setRating(std::uint32_t value) {
  setNumber(&MenuNode::rating_, &Branch::rating, value);
}

void MenuNode::setMediaId(std::uint32_t value) {
  mediaId_ = value;
  contentToken_ = 0;
}

void MenuNode::setAttribMask(std::uint32_t value) {
  if (value != getAttribMask()) ownBranch().attribMask = value;
}

std::uint32_t MenuNode::setSpare(std::uint32_t value) {
  if (value != getSpare()) ownBranch().spare = value;
  return value;
}

void MenuNode::takeName(std::string_view name, bool isOwned) {
  if (ownsName_) delete[] name_;
  name_ = name.data();
  nameSize_ = static_cast<std::uint32_t>(name.size());
  ownsName_ = isOwned;
  contentToken_ = 0;
}

void MenuNode::setName(std::string_view name) {
  if (name.size() > kMaxNameLength) {
    prependName(name.substr(0, kShortenedNameLength));
  } else if (name.empty()) {
    takeName("", false);
  } else if (branch_->arena != nullptr) {
    takeName(branch_->arena->keep(name), false);
  } else {
    auto copy = std::make_unique_for_overwrite<char[]>(name.size());
    std::copy(name.begin(), name.end(), copy.get());
    takeName({copy.release(), name.size()}, true);
  }
}

void MenuNode::setBorrowedName(std::string_view name) {
  if (name.size() <= kMaxNameLength) {
    takeName(name, false);
  } else if (nameSize_ == 0) {
    takeName(name.substr(0, kShortenedNameLength), false);
  } else {
    prependName(name.substr(0, kShortenedNameLength));
  }
}

void MenuNode::prependName(std::string_view name) {
  const std::size_t size = name.size() + nameSize_;
  if (branch_->arena != nullptr) {
    takeName(branch_->arena->keep(std::string(name).append(getName())), false);
    return;
  }
  auto joined = std::make_unique_for_overwrite<char[]>(size);
  std::copy(name_, name_ + nameSize_, std::copy(name.begin(), name.end(), joined.get()));
  takeName({joined.release(), size}, true);
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

void MenuNode::growChildren() {
  Branch& branch = ownBranch();
  if (branch.count < branch.capacity) return;
  const std::uint32_t capacity = std::max(4U, 2 * branch.capacity);
  NodeArena* const arena = branch.arena;
  MenuNode** const grown = arena ? arena->makeArray(capacity) : new MenuNode*[capacity];
  std::copy(branch.children, branch.children + branch.count, grown);
  if (arena == nullptr) {
    delete[] branch.children;
  } else if (branch.capacity > 0) {
    arena->giveBack(branch.children, branch.capacity);
  }
  branch.children = grown;
  branch.capacity = capacity;
}

bool MenuNode::addChild(std::unique_ptr<MenuNode> child) {
  if (child == nullptr) return false;
  growChildren();
  MenuNode* const linked = child.get();
  if (branch_->arena != nullptr) {
    branch_->arena->adopt(std::move(child));
  } else {
    static_cast<void>(child.release());
  }
  link(linked);
  return true;
}

MenuNode* MenuNode::makeChild() {
  return branch_->arena ? branch_->arena->make() : new MenuNode();
}

void MenuNode::discardChild(MenuNode* child) {
  if (branch_->arena == nullptr) delete child;
}

MenuNode::Position MenuNode::firstChild() {
  if (branch_->count > 0) branch_->cursor = 0;
  return childrenBegin();
}

MenuNode::Position MenuNode::nextChild() {
  if (hasMoreChildren()) ++branch_->cursor;
  return childrenBegin() + branch_->cursor;
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
