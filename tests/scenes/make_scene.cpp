// Writes a scene of a given size, for measuring:
// make_scene grid TRIANGLES OUT.glb | nodes NODES OUT.glb
//          | skin TRIANGLES BONES OUT.glb | bones BONES FRAMES OUT.glb

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include "scenes/GlbScenes.h"

namespace {

std::string SceneOf(const std::string& kind, const std::vector<size_t>& counts) {
  if (counts.size() == 1 && kind == "grid") return orv::GridGlb(counts[0]);
  if (counts.size() == 1 && kind == "nodes") return orv::NodesGlb(counts[0]);
  if (counts.size() == 2 && kind == "skin" && counts[1] >= 2) {
    return orv::SkinGlb(counts[0], counts[1]);
  }
  if (counts.size() == 2 && kind == "bones") return orv::BonesGlb(counts[0], counts[1]);
  return "";
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<size_t> counts;
  for (int i = 2; i + 1 < argc; ++i) counts.push_back(std::strtoull(argv[i], nullptr, 10));
  const bool sized = std::ranges::all_of(counts, [](size_t count) { return count > 0; });
  const std::string scene = sized && argc >= 4 ? SceneOf(argv[1], counts) : "";
  if (scene.empty()) {
    std::fputs(
        "make_scene grid|nodes COUNT OUT.glb\n"
        "make_scene skin TRIANGLES BONES OUT.glb\n"
        "make_scene bones BONES FRAMES OUT.glb\n",
        stderr);
    return 2;
  }
  std::ofstream out(argv[argc - 1], std::ios::binary);
  out << scene;
  out.close();
  return out ? 0 : 1;
}
