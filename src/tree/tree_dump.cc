#include <iostream>
#include <vector>

#include "tree/menu_tree.h"

namespace Orvane {

namespace {

// Ids show as signed numbers in both walks.
std::int32_t shownId(const MenuNode& node) {
  return static_cast<std::int32_t>(node.getMediaId());
}

// Puts the children on the stack so that the first one is taken next.
template <typename Node, typename Condition>
void pushChildren(Node& node, std::vector<Node*>& stack, Condition condition) {
  for (auto child = node.childrenEnd(); child != node.childrenBegin();) {
    --child;
    if (condition(**child)) stack.push_back(*child);
  }
}

}  // namespace

void MenuTree::dumpTree(const MenuNode* node) {
  if (node == nullptr) return;
  std::vector<const MenuNode*> stack = {node};
  while (!stack.empty()) {
    const MenuNode& menu = *stack.back();
    stack.pop_back();
    std::cout << "------------> start a new node <------------\n";
    for (auto child = menu.childrenBegin(); child != menu.childrenEnd(); ++child) {
      std::cout << (*child)->getName() << " | "
                << "MediaID :> " << shownId(**child) << std::endl;
    }
    std::cout << "------------> end node <--------------------" << std::endl;
    pushChildren(menu, stack,
                 [](const MenuNode& child) { return child.getNodeType() != NODE_TYPE_MEDIA; });
  }
}

MenuNode* MenuTree::findNodeTrace(MenuNode* node, const MenuNode& target) {
  if (node == nullptr) return nullptr;
  std::vector<MenuNode*> stack = {node};
  while (!stack.empty()) {
    MenuNode& parent = *stack.back();
    stack.pop_back();
    for (auto child = parent.childrenBegin(); child != parent.childrenEnd(); ++child) {
      const MenuNode& tried = **child;
      std::cout << "\nwhat (*itr) have : " << tried.getName() << std::endl;
      if (tried.getName() == target.getName() && tried.getRecType() == target.getRecType() &&
          tried.getMediaId() == target.getMediaId()) {
        std::cout << "\nwhat (t = *itr) have : " << tried.getName() << "+ID= " << shownId(tried)
                  << std::endl
                  << "--\nFOUND||" << std::endl;
        return *child;
      }
    }
    pushChildren(parent, stack, [](const MenuNode&) { return true; });
  }
  return nullptr;
}

}  // namespace Orvane
