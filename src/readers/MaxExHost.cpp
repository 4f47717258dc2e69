#include "readers/MaxExHost.h"

#include <string_view>

#include "object.h"
#include "platform/ExString.h"
#include "plugapi.h"

namespace orv {
namespace {

std::string_view NameOf(INode* node) {
  const TCHAR* name = node->GetName();
  return name ? name : "";
}

bool HasBoneName(INode* node) { return BeginsWithIgnoringCase(NameOf(node), "b."); }

bool IsPointHelper(INode* node) {
  Object* object = node->EvalWorldState(0, TRUE).obj;
  return object && object->ClassID() == Class_ID(POINTHELP_CLASS_ID, 0);
}

}  // namespace

NodeRole RoleOf(INode* node) {
  if (IsPointHelper(node)) return NodeRole::AttachmentPoint;
  return HasBoneName(node) ? NodeRole::Bone : NodeRole::MeshSource;
}

bool IsBone(INode* node) { return HasBoneName(node) && !IsPointHelper(node); }

bool BindsItsChildren(INode* node) { return NameOf(node).find("r.") != std::string_view::npos; }

void MaxExNodeList::Add(INode* node, bool onlyOnce) {
  const bool isNew = m_known.insert(node).second;
  if (isNew || !onlyOnce) m_nodes.push_back(node);
}

void MaxExNodeList::Clear() {
  m_nodes = {};
  m_known = {};
}

}  // namespace orv
