#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>

#include "tree/child.h"
#include "tree/prefetch.h"
#include "tree/track_table.h"

namespace Orvane {

class NodeArena;

// Values of MenuNode's nodeType. A node that never gets one keeps 0 and counts as a menu
// everywhere.
inline constexpr std::uint32_t NODE_TYPE_MENU = 1;   // may hold children
inline constexpr std::uint32_t NODE_TYPE_MEDIA = 2;  // a media leaf: one track

// Values of MenuNode's recType as the inventory mode sets them; an XML menu tree may carry others.
// Players know them by number: they are written to the inventory file.
namespace RecType {
inline constexpr std::uint32_t kMediaLeaf = 0;
inline constexpr std::uint32_t kAlbum = 3;
inline constexpr std::uint32_t kArtist = 4;
inline constexpr std::uint32_t kGenre = 5;
inline constexpr std::uint32_t kPlaylist = 6;
inline constexpr std::uint32_t kPlainMenu = 7;
inline constexpr std::uint32_t kOneStar = 11;
inline constexpr std::uint32_t kTwoStars = 12;
inline constexpr std::uint32_t kThreeStars = 13;
}  // namespace RecType

// One entry of the menu tree: a menu with children, or a media leaf.
//
// A node owns its children and so its whole subtree; it must be in at most one parent's children.
// Nodes that a tree makes (MenuTree::getRoot, appendChild) live in the tree's arena and are freed
// with the tree; others are made like any object, and free their subtree when they are destroyed,
// depth first, in constant extra space whatever its depth.
//
// Each node has one iteration cursor. The walk is:
//   for (p = node.firstChild(); node.hasMoreChildren(); p = node.nextChild()) use(*p);
// Only one such walk per node may be under way, and the find operations move the cursor too.
//
// A million tracks make some five million leaves. In the children of a tree's own nodes most of
// them are numbers of tracks (see Child), which become nodes when somebody asks for positions or
// walks. A node is 24 bytes: a track's leaf leaves name and id with its track, and what only menus
// or unusual values need is in a Branch of its own.
class MenuNode {
 public:
  // A place in the children sequence; good until a child is added to the node.
  using Position = MenuNode**;
  using ConstPosition = const MenuNode* const*;

  // The longest name that is stored whole, and how much of a longer one is kept. The two differ on
  // purpose; existing inventories depend on both.
  static constexpr std::size_t kMaxNameLength = 64;
  static constexpr std::size_t kShortenedNameLength = 62;

  // What a fresh node's name becomes when it is set to `name`.
  static std::string_view storedForm(std::string_view name) {
    return name.size() <= kMaxNameLength ? name : name.substr(0, kShortenedNameLength);
  }

  // All numbers 0, an empty name, no track, no children.
  MenuNode();
  MenuNode(const MenuNode&) = delete;
  MenuNode& operator=(const MenuNode&) = delete;
  ~MenuNode();

  void setNodeType(std::uint32_t value);
  void setMediaId(std::uint32_t value);
  void setRecType(std::uint32_t value);
  void setRating(std::uint32_t value);
  void setAttribMask(std::uint32_t value);
  std::uint32_t setSpare(std::uint32_t value);

  // The track that a media leaf stands for. Not owned; nullptr when there is none.
  void setTrack(const Track* track);

  // Makes a fresh node the media leaf of a track, which must outlive it: its id and its name, as a
  // fresh node would take it, are those of the track until the node is given others.
  void becomeLeafOf(const Track& track) {
    nodeType_ = kTrackLeaf;
    track_ = &track;
  }

  // Up to 64 bytes replace the name. Of a longer name the first 62 bytes are put in front of the
  // name that the node already has, which stays behind them: on a fresh node that shortens the
  // name, on the root it gives those bytes followed by "root".
  void setName(std::string_view name);

  // setName without a copy where none is needed: the bytes of `name` must outlive the node.
  void setBorrowedName(std::string_view name);

  // The setters in the order of the arguments. `spare`, track and children stay.
  void setAll(std::uint32_t nodeType, std::uint32_t mediaId, std::string_view name,
              std::uint32_t recType, std::uint32_t rating, std::uint32_t attribMask);

  std::uint32_t getNodeType() const {
    if (nodeType_ < kTrackLeaf) return nodeType_;
    return isTrackLeaf() ? NODE_TYPE_MEDIA : rare(&Rare::nodeType);
  }
  std::uint32_t getMediaId() const { return isTrackLeaf() ? track_->getMediaId() : mediaId_; }
  std::uint32_t getRecType() const { return recType_ == kWide ? rare(&Rare::recType) : recType_; }
  std::uint32_t getRating() const { return rating_ == kWide ? rare(&Rare::rating) : rating_; }
  std::uint32_t getAttribMask() const { return rare(&Rare::attribMask); }
  std::uint32_t getSpare() const { return rare(&Rare::spare); }
  const Track* getTrack() const { return isTrackLeaf() ? track_ : rare(&Rare::track); }

  // The stored bytes in place; good until the name is set again.
  std::string_view getName() const {
    if (isTrackLeaf()) return storedForm(track_->getTitle());
    return {name_, nameSize_ == kWide ? rare(&Rare::nameSize) : nameSize_};
  }

  // Asks for the name's bytes or, for a track's leaf, for its track.
  void prefetchContent() const {
    if (isTrackLeaf()) {
      prefetch(track_);
    } else {
      prefetch(name_);
    }
  }

  // Appends `child` and owns it from then on. False for nullptr. When memory runs out it throws,
  // and the child is freed.
  bool addChild(std::unique_ptr<MenuNode> child);

  // Makes a fresh node, lets `fill` fill it, appends it and returns it: the quick way to grow a
  // tree. When `fill` throws, nothing is appended.
  template <typename Fill>
  MenuNode& appendChild(Fill fill) {
    MenuNode* const child = makeChild();
    try {
      fill(*child);
      growChildren();
    } catch (...) {
      discardChild(child);
      throw;
    }
    link(child);
    return *child;
  }

  // Appends a leaf of the track with that number in the table: just the number if the table is that
  // of the node's tree and all other children are numbers, too; otherwise a node.
  void appendLeaf(const TrackTable& tracks, std::uint32_t number);

  // The same for several, in this order. A menu without children uses the numbers where they are:
  // they must outlive the node, be no other menu's, and may be put in another order. See
  // MenuTree::keepNumbers.
  void appendLeaves(const TrackTable& tracks, std::span<std::uint32_t> numbers);

  // Appends a menu that looks like `menu`, with leaves of the same tracks, and returns it: a twin.
  // `menu` is another node of the same tree, its children are numbers, and it has no twin yet.
  // Until one of the two changes they share what they hold, so that it is put into order once for
  // both. The twin's memory is where that of `menu` is.
  MenuNode& appendTwinOf(MenuNode& menu);

  // Takes all children away but the first `count`, with what is beneath them. What a tree has made
  // itself is freed with the tree. A twin gets numbers of its own, for which memory may run out.
  void keepChildren(std::size_t count);

  // The table in which the numbers among the children are looked up, here and beneath; nullptr when
  // there can't be any.
  const TrackTable* getTrackTable() const;

  std::size_t childCount() const { return branch_->count; }

  // A child as it stands there. Makes no node.
  Child childAt(std::size_t index) const {
    return branch_->hasNumbers ? Child::ofTrack(branch_->numbers[index])
                               : Child(branch_->children[index]);
  }

  // Asks, in two steps, for what the children stand in.
  void expectChildren(int step) const {
    if (step == 0) {
      prefetch(branch_);
    } else {
      prefetch(branch_->children);
    }
  }

  // Whether there are children, and all of them are numbers.
  bool hasTrackNumbers() const { return branch_->hasNumbers; }

  // The children when they are numbers, which may be put in another order; else nothing. Good until
  // one is appended or asked for as a node. A twin gets numbers of its own, for which memory may
  // run out.
  std::span<std::uint32_t> trackNumbers() {
    if (hasTwin()) partFromTwin();
    return trackNumbersOfTwins();
  }
  std::span<const std::uint32_t> trackNumbers() const {
    if (!branch_->hasNumbers) return {};
    return {branch_->numbers, branch_->count};
  }

  // The same, but twins go on sharing them: to put them in another order once for both.
  std::span<std::uint32_t> trackNumbersOfTwins() {
    if (!branch_->hasNumbers) return {};
    return {branch_->numbers, branch_->count};
  }

  // Whether it shares its children's numbers with a twin, or did until that one changed. Whoever
  // puts them in order can note here, for both, that one of the two has been met.
  bool hasTwin() const { return branch_->hasNumbers && branch_->isShared; }
  bool isMet() const { return branch_->isMet; }
  void setMet(bool isMet) { branch_->isMet = isMet; }  // only if hasTwin()
  void partFromTwin() { static_cast<void>(ownBranch()); }

  // Positions are those of nodes: children that are numbers become nodes first, for which memory
  // may run out, and which two threads must not do at once. So it is in all that follows.
  Position childrenBegin() { return nodesOfChildren(); }
  Position childrenEnd() { return nodesOfChildren() + branch_->count; }
  ConstPosition childrenBegin() const { return nodesOfChildren(); }
  ConstPosition childrenEnd() const { return nodesOfChildren() + branch_->count; }

  Position firstChild();
  Position nextChild();
  bool hasMoreChildren() const { return branch_->cursor < branch_->count; }

  // The first child with that name (and id). When found, `position` and the cursor are at it; when
  // not, both are at the end. Without children `position` is untouched. Linear in the children.
  bool findChildByName(Position& position, std::string_view name);
  bool findChildByNameAndMediaId(Position& position, std::string_view name, std::uint32_t mediaId);

  // The first child with the name and the id of `other`, or nullptr. Resets the cursor. Linear.
  MenuNode* findMatchingChild(const MenuNode& other);

 private:
  friend class MenuTree;
  friend class NodeArena;

  // What few nodes have.
  struct Rare {
    const char* ownedName = nullptr;  // to be freed with the node, which stands alone
    const Track* track = nullptr;     // where it isn't in the node
    std::uint32_t nodeType = 0;       // these four count when the node's own field says kWide
    std::uint32_t recType = 0;
    std::uint32_t rating = 0;
    std::uint32_t nameSize = 0;
    std::uint32_t attribMask = 0;
    std::uint32_t spare = 0;
  };

  // What a node has beyond the 24 bytes. Nodes that need nothing of it share one without contents,
  // the arena's or, outside arenas, a static one; two twins share one with numbers.
  struct Branch {
    explicit Branch(NodeArena* where = nullptr, bool isForMany = false)
        : inArena(where), isShared(isForMany), standsAlone(where == nullptr) {}

    // Where the node lives; nullptr for one that stands alone.
    NodeArena* arena() const { return standsAlone ? nullptr : inArena; }

    Rare* rare = nullptr;
    union {
      NodeArena* inArena;
      MenuNode* parent;  // if standsAlone: the way back up while a subtree is being freed
    };
    union {
      MenuNode** children = nullptr;
      std::uint32_t* numbers;  // if hasNumbers: of the tracks whose leaves the children are
    };
    std::uint32_t count = 0;
    std::uint32_t capacity = 0;  // of whichever array it is; 0 when that is somebody else's
    std::uint32_t cursor = 0;
    bool isShared;
    bool standsAlone;
    bool hasNumbers = false;
    bool isMet = false;  // see setMet()
  };
  static_assert(sizeof(void*) != 8 || sizeof(Branch) == 40, "each menu of a million has one");

  static constexpr std::uint8_t kWide = 0xFF;
  static constexpr std::uint8_t kTrackLeaf = 0xFE;  // a node type: see becomeLeafOf

  explicit MenuNode(Branch* branch) : branch_(branch) {}

  bool isTrackLeaf() const { return nodeType_ == kTrackLeaf; }
  void leaveTrack();
  Branch& ownBranch() const;
  Branch& copyOfBranch() const;
  Rare& ownRare();
  void setNumber(std::uint8_t MenuNode::*field, std::uint32_t Rare::*wideField,
                 std::uint32_t value);

  template <typename Value>
  Value rare(Value Rare::*field) const {
    return branch_->rare == nullptr ? Value{} : branch_->rare->*field;
  }
  void takeName(std::string_view name, bool isOwned);
  void takeCopy(std::string_view front, std::string_view back);
  MenuNode* makeChild();
  MenuNode& appendChildOf(NodeArena& arena);
  void discardChild(MenuNode* child);
  void link(MenuNode* child) { branch_->children[branch_->count++] = child; }
  void growChildren();
  void growNumbers();
  Position nodesOfChildren() const {
    if (branch_->hasNumbers) makeNodesOfNumbers();
    return branch_->children;
  }
  void makeNodesOfNumbers() const;
  void freeChildren();
  void freeOwn();

  template <typename Predicate>
  bool findChild(Position& position, Predicate matches);

  union {
    const char* name_ = "";
    const Track* track_;  // of a track's leaf
  };
  mutable Branch* branch_;  // a twin's becomes its own when its leaves become nodes
  std::uint32_t mediaId_ = 0;
  std::uint8_t nodeType_ = 0;
  std::uint8_t recType_ = 0;
  std::uint8_t rating_ = 0;
  std::uint8_t nameSize_ = 0;
};

static_assert(sizeof(void*) != 8 || sizeof(MenuNode) == 24, "a tree holds millions of these");

}  // namespace Orvane
