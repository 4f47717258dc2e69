// Writes a scene of a given size, for measuring: make_scene grid|nodes COUNT OUT.glb

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

#include "scenes/GlbScenes.h"

int main(int argc, char** argv) {
  const std::string kind = argc == 4 ? argv[1] : "";
  const size_t count = argc == 4 ? std::strtoull(argv[2], nullptr, 10) : 0;
  if ((kind != "grid" && kind != "nodes") || count == 0) {
    std::fputs("make_scene grid|nodes COUNT OUT.glb\n", stderr);
    return 2;
  }
  std::ofstream out(argv[3], std::ios::binary);
  out << (kind == "grid" ? orv::GridGlb(count) : orv::NodesGlb(count));
  out.close();
  return out ? 0 : 1;
}
