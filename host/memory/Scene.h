#pragma once

#include <cstddef>
#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "host/memory/MemoryMaterial.h"
#include "host/memory/MemoryNode.h"
#include "maxtypes.h"

namespace orv::host {

// What a scene says of itself, beside its nodes.
struct SceneInfo {
  std::string fileName;  // without folder; empty for a new scene
  double metresPerUnit = 1;
  int framesPerSecond = 30;
  int firstFrame = 0, lastFrame = 0;       // the time slider's range
  std::vector<std::string> animations;     // names of all there are
  std::string animation;                   // name of the one that is played
  std::vector<std::string> bitmapFolders;  // where to look for bitmaps, in this order
  std::vector<std::string> ownBitmaps;     // files written for this scene: found as they are named
  std::vector<std::string> warnings;       // what was left out or changed when it was opened
};

struct SceneStatistics {
  size_t nodes = 0;  // without the host's root
  size_t meshNodes = 0;
  size_t skinnedNodes = 0;
  size_t pointHelpers = 0;
  size_t vertices = 0;
  size_t triangles = 0;
};

// A scene in memory, as the host's exporter interface sees it. It owns all that is in it.
class Scene {
 public:
  SceneInfo info;

  explicit Scene(SceneInfo sceneInfo = {});
  Scene(const Scene&) = delete;

  MemoryNode& Root() { return m_nodes.front(); }
  // Without a parent: below the root. A node starts as a group, which shows nothing.
  MemoryNode& AddNode(std::string name, MemoryNode* parent = nullptr);
  MemoryNode& AddMeshNode(std::string name, Mesh mesh, Mtl* material = nullptr,
                          MemoryNode* parent = nullptr);
  MemoryNode& AddPointHelper(std::string name, MemoryNode* parent = nullptr);
  MemoryMaterial& AddMaterial(const std::string& name);
  MemoryMultiMaterial& AddMultiMaterial(const std::string& name, std::vector<Mtl*> subMaterials);
  MemoryBitmap& AddBitmap(std::string mapName);

  // The first of that name, in the order they were added; null when there is none.
  MemoryNode* FindNode(std::string_view name);
  std::vector<std::string> NodeNames() const;
  // All nodes of that name; false when there is none.
  bool Select(std::string_view name);
  bool Hide(std::string_view name);
  const std::vector<MemoryNode*>& Selection() const { return m_selection; }
  SceneStatistics Statistics();

  int TicksPerFrame() const;
  double SecondsAt(TimeValue t) const;

  // Nodes keep what they have worked out until the scene's revision changes.
  unsigned Revision() const { return m_revision; }
  void Touch() { ++m_revision; }

 private:
  std::deque<MemoryNode> m_nodes;  // the root first; a deque, since others point to them
  std::deque<MemoryMaterial> m_materials;
  std::deque<MemoryMultiMaterial> m_multiMaterials;
  std::deque<MemoryBitmap> m_bitmaps;
  std::vector<MemoryNode*> m_selection;
  unsigned m_revision = 1;
};

}  // namespace orv::host
