#include "host/import/ImportNodes.h"

#include <algorithm>
#include <cmath>
#include <string_view>
#include <unordered_set>
#include <utility>

#include "host/import/ImportMotion.h"

namespace orv::host {
namespace {

// The importer splits the transform of some FBX nodes into a chain of nodes with this in their
// name.
constexpr std::string_view kPivotMark = "_$AssimpFbx$_";

bool IsCalledBone(std::string_view name) {
  return name.size() >= 2 && (name[0] == 'b' || name[0] == 'B') && name[1] == '.';
}

bool IsIdentity(const aiMatrix4x4& matrix) {
  for (unsigned row = 0; row < 4; ++row) {
    for (unsigned column = 0; column < 4; ++column) {
      const float expected = row == column ? 1.0f : 0.0f;
      if (!(std::abs(matrix[row][column] - expected) <= 1e-6f)) return false;
    }
  }
  return true;
}

// Names that importers give to a root of their own making.
bool IsStandInName(const std::string& name, const std::string& path) {
  static const std::unordered_set<std::string> s_names = {
      "", "RootNode", "ROOT", "$dummy_root", "$CSM_DummyRoot", "WORLD", "3MF", "terrain_root"};
  return s_names.contains(name) || (name.starts_with('<') && name.ends_with('>')) || name == path ||
         name == FileNameOf(path);
}

// A joint, or a node between joints, is a bone; so is the lowest node above all top joints, when
// there are several.
void MarkBones(SourceTree& tree) {
  std::vector<SourceNode>& nodes = tree.nodes;
  std::vector<char> jointAbove(nodes.size()), jointBelow(nodes.size());
  std::vector<int> topJoints(nodes.size());  // at or below the node
  for (size_t i = 0; i < nodes.size(); ++i) {
    const int parent = nodes[i].parent;
    if (parent >= 0) {
      const size_t p = static_cast<size_t>(parent);
      jointAbove[i] = jointAbove[p] || nodes[p].isJoint;
    }
    topJoints[i] = nodes[i].isJoint && !jointAbove[i];
  }
  for (size_t i = nodes.size(); i-- > 1;) {
    const size_t p = static_cast<size_t>(nodes[i].parent);
    jointBelow[p] = jointBelow[p] || jointBelow[i] || nodes[i].isJoint;
    topJoints[p] += topJoints[i];
  }
  size_t lowest = 0;
  for (size_t i = 0; i < nodes.size(); ++i) {
    nodes[i].isBone = nodes[i].isJoint || (jointAbove[i] && jointBelow[i]);
    if (topJoints[i] == topJoints[0]) lowest = i;  // those above all top joints are one line
  }
  while (nodes[lowest].isPivot && lowest > 0) lowest = static_cast<size_t>(nodes[lowest].parent);
  if (topJoints[0] > 1) nodes[lowest].isBone = true;
}

class NodeImport {
 public:
  NodeImport(ImportContext& context, SourceTree& tree, const aiAnimation* animation)
      : m_context(context),
        m_tree(tree),
        m_channels(animation, context.turn, context.scene.info.framesPerSecond) {}

  void Run() {
    for (size_t i = 0; i < m_tree.nodes.size(); ++i) {
      SourceNode& node = m_tree.nodes[i];
      if (node.isPivot || (i == 0 && !RootIsOrdinary())) continue;
      MemoryNode& made = m_context.scene.AddNode(NameOf(i), NearestMade(node.parent));
      node.made = &made;
      Place(made, i);
    }
  }

 private:
  bool RootIsOrdinary() const {
    const SourceNode& root = m_tree.nodes[0];
    return root.isBone || root.source->mNumMeshes > 0 ||
           !IsStandInName(root.source->mName.C_Str(), m_context.path) ||
           !IsIdentity(m_context.facts.rootTransform) ||
           m_channels.Find(root.source->mName.C_Str());
  }

  std::string NameOf(size_t index) const {
    const SourceNode& node = m_tree.nodes[index];
    std::string name = node.source->mName.C_Str();
    if (index == 0 && name.empty()) name = StemOf(m_context.path);
    const bool rename = m_context.settings.jointsAsBones && node.isBone && !IsCalledBone(name);
    return rename ? "b." + name : name;
  }

  MemoryNode* NearestMade(int index) const {
    while (index >= 0 && !m_tree.nodes[static_cast<size_t>(index)].made) {
      index = m_tree.nodes[static_cast<size_t>(index)].parent;
    }
    return index >= 0 ? m_tree.nodes[static_cast<size_t>(index)].made : nullptr;
  }

  // Its own step first, then those of the pivots above it.
  void Place(MemoryNode& made, size_t index) const {
    std::vector<TransformStep> steps{StepOf(index)};
    int above = m_tree.nodes[index].parent;
    while (above >= 0 && m_tree.nodes[static_cast<size_t>(above)].isPivot) {
      steps.push_back(StepOf(static_cast<size_t>(above)));
      above = m_tree.nodes[static_cast<size_t>(above)].parent;
    }
    PlaceNode(made, std::move(steps));
  }

  TransformStep StepOf(size_t index) const {
    const aiNode& source = *m_tree.nodes[index].source;
    const aiMatrix4x4& matrix = index == 0 ? m_context.facts.rootTransform : source.mTransformation;
    TransformStep step{m_context.turn.Matrix(matrix), {}};
    const std::string name = source.mName.C_Str();
    const auto first = m_tree.byName.find(name);
    if (first != m_tree.byName.end() && first->second == index) {
      step.track = m_channels.TrackFor(name, matrix);
    }
    return step;
  }

  ImportContext& m_context;
  SourceTree& m_tree;
  MotionChannels m_channels;
};

}  // namespace

SourceTree FlattenTree(const aiScene& source) {
  SourceTree tree;
  std::vector<std::pair<const aiNode*, int>> waiting{{source.mRootNode, -1}};
  while (!waiting.empty()) {
    const auto [node, parent] = waiting.back();
    waiting.pop_back();
    const size_t index = tree.nodes.size();
    tree.nodes.push_back({node, parent});
    const std::string name = node->mName.C_Str();
    tree.nodes.back().isPivot = parent >= 0 && name.find(kPivotMark) != std::string::npos;
    tree.byName.emplace(name, index);
    for (unsigned child = node->mNumChildren; child-- > 0;) {
      // The importer leaves some empty where it skipped a part of the file.
      const aiNode* below = node->mChildren[child];
      if (below) waiting.emplace_back(below, static_cast<int>(index));
    }
  }
  for (unsigned m = 0; m < source.mNumMeshes; ++m) {
    const aiMesh& mesh = *source.mMeshes[m];
    for (unsigned b = 0; b < mesh.mNumBones; ++b) {
      const auto joint = tree.byName.find(mesh.mBones[b]->mName.C_Str());
      if (joint != tree.byName.end()) tree.nodes[joint->second].isJoint = true;
    }
  }
  MarkBones(tree);
  return tree;
}

void ImportNodes(ImportContext& context, SourceTree& tree, const aiAnimation* animation) {
  if (!context.settings.jointsAsBones) {
    for (SourceNode& node : tree.nodes) node.isBone = false;
  }
  NodeImport(context, tree, animation).Run();
}

void MakePointHelpers(const ImportContext& context, const SourceTree& tree) {
  std::unordered_set<std::string> viewNames;
  for (unsigned i = 0; i < context.source.mNumCameras; ++i) {
    viewNames.insert(context.source.mCameras[i]->mName.C_Str());
  }
  for (unsigned i = 0; i < context.source.mNumLights; ++i) {
    viewNames.insert(context.source.mLights[i]->mName.C_Str());
  }
  for (const SourceNode& node : tree.nodes) {
    if (!node.made || node.isJoint || node.source->mNumMeshes > 0) continue;
    if (!node.made->Children().empty() || IsCalledBone(node.made->Name())) continue;
    if (viewNames.contains(node.source->mName.C_Str())) continue;
    node.made->MakePointHelper();
  }
}

}  // namespace orv::host
