#include "scene/GenericSkeleton.h"

#include <algorithm>
#include <iterator>

namespace orv {

// Each descendant is taken out of the tree before it is destroyed, so that the depth of the stack
// does not grow with that of the tree.
GenericSkeleton::Node::~Node() {
  std::vector<std::unique_ptr<Node>> doomed = std::move(m_children);
  while (!doomed.empty()) {
    const std::unique_ptr<Node> node = std::move(doomed.back());
    doomed.pop_back();
    std::move(node->m_children.begin(), node->m_children.end(), std::back_inserter(doomed));
    node->m_children.clear();
  }
}

}  // namespace orv
