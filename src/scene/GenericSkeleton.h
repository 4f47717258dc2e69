#pragma once

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "scene/Vector.h"

namespace orv {

// Characters in the name of a bone, an attachment point or an event.
constexpr size_t kMaxNameLength = 255;

// A bone hierarchy. Where the transforms come from is the subclass's: the host at the current
// sampling time, or a file. World space; positions in host units, rotations without scale.
class GenericSkeleton {
 public:
  class Node {
   public:
    virtual ~Node() { DestroyDescendants(); }
    virtual const char* Name() const = 0;
    virtual Vec3 Position() const = 0;
    virtual Quaternion Rotation() const = 0;

    std::vector<std::unique_ptr<Node>> m_children;  // in the order they were added

   private:
    // Each is taken out of the tree before it is destroyed, so that the depth of the stack does not
    // grow with that of the tree.
    void DestroyDescendants() {
      std::vector<std::unique_ptr<Node>> doomed = std::move(m_children);
      while (!doomed.empty()) {
        const std::unique_ptr<Node> node = std::move(doomed.back());
        doomed.pop_back();
        std::move(node->m_children.begin(), node->m_children.end(), std::back_inserter(doomed));
        node->m_children.clear();
      }
    }
  };

  virtual ~GenericSkeleton() = default;

  // Sets the time at which all nodes answer. One time for the whole process: only one skeleton
  // can be sampled at once.
  virtual void SetFrame(int /*frame*/) {}

  std::unique_ptr<Node> m_root;  // null: no bones
};

// A skeleton read from a file: each bone answers the values it was given last, whatever the frame.
class ExGenericSkeleton : public GenericSkeleton {
 public:
  class Node : public GenericSkeleton::Node {
   public:
    explicit Node(std::string name, Vec3 position = {}, Quaternion rotation = {})
        : m_name(std::move(name)), m_position(position), m_rotation(rotation) {}
    const char* Name() const override { return m_name.c_str(); }
    Vec3 Position() const override { return m_position; }
    Quaternion Rotation() const override { return m_rotation; }

    std::string m_name;
    Vec3 m_position;
    Quaternion m_rotation;
  };
};

}  // namespace orv
