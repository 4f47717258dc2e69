// The triangle order beside those of meshoptimizer: throughput, and average cache misses per
// triangle with first-in first-out caches of 10 and 16 vertices.

#include <meshoptimizer.h>

#include <memory>
#include <vector>

#include "Benches.h"
#include "Pieces.h"
#include "meshproc/IndexOptimizer.h"

namespace orv::bench {
namespace {

using Indices = std::vector<unsigned>;

struct Peer {
  const char* name;
  void (*optimize)(Indices& out, const Indices& in, uint32_t vertexCount);
};

constexpr Peer kPeers[] = {
    {"VertexCache",
     [](Indices& out, const Indices& in, uint32_t vertexCount) {
       meshopt_optimizeVertexCache(out.data(), in.data(), in.size(), vertexCount);
     }},
    {"Fifo(10)",
     [](Indices& out, const Indices& in, uint32_t vertexCount) {
       meshopt_optimizeVertexCacheFifo(out.data(), in.data(), in.size(), vertexCount, 10);
     }},
    {"Fifo(16)",
     [](Indices& out, const Indices& in, uint32_t vertexCount) {
       meshopt_optimizeVertexCacheFifo(out.data(), in.data(), in.size(), vertexCount, 16);
     }},
    {"Strip",
     [](Indices& out, const Indices& in, uint32_t vertexCount) {
       meshopt_optimizeVertexCacheStrip(out.data(), in.data(), in.size(), vertexCount);
     }},
};

size_t CountMisses(const auto& indices, uint32_t cacheSize) {
  std::vector<uint32_t> loadedAt(65536, 0);
  uint32_t loads = cacheSize + 1;
  for (const auto index : indices)
    if (loads - loadedAt[index] > cacheSize) loadedAt[index] = loads++;
  return loads - cacheSize - 1;
}

// `order(piece)` gives the indices in their new order.
std::map<std::string, double> MissesPerTriangle(size_t pieceCount, const auto& order) {
  double at10 = 0, at16 = 0, triangles = 0;
  for (size_t piece = 0; piece < pieceCount; ++piece) {
    const auto& indices = order(piece);
    at10 += static_cast<double>(CountMisses(indices, 10));
    at16 += static_cast<double>(CountMisses(indices, 16));
    triangles += static_cast<double>(indices.size() / 3);
  }
  return {{kAcmr10, at10 / triangles}, {kAcmr16, at16 / triangles}};
}

Work OurWork(const Model& model, bool shuffled) {
  const auto pieces = std::make_shared<const std::vector<Piece>>(IndexPieces(model, shuffled));
  const auto run = [pieces](size_t piece) {
    return OptimizeTriangleOrder((*pieces)[piece].indices);
  };
  return {[=] {
            for (size_t i = 0; i < pieces->size(); ++i) run(i);
          },
          {},
          MissesPerTriangle(pieces->size(), run)};
}

Work PeerWork(const Peer& peer, const Model& model, bool shuffled) {
  const auto pieces = std::make_shared<const std::vector<Piece>>(IndexPieces(model, shuffled));
  const auto inputs = std::make_shared<std::vector<Indices>>();
  for (const Piece& piece : *pieces)
    inputs->emplace_back(piece.indices.begin(), piece.indices.end());
  const auto run = [=, &peer](size_t piece) {
    Indices out((*inputs)[piece].size());
    peer.optimize(out, (*inputs)[piece], (*pieces)[piece].vertexCount);
    return out;
  };
  return {[=] {
            for (size_t i = 0; i < pieces->size(); ++i) run(i);
          },
          {},
          MissesPerTriangle(pieces->size(), run)};
}

void AddContenders(const std::string& stage, const ModelSource& source, bool shuffled) {
  Add(stage, kOurs, source, [=](const Model& model) { return OurWork(model, shuffled); });
  for (const Peer& peer : kPeers) {
    Add(stage, peer.name, source,
        [=, &peer](const Model& model) { return PeerWork(peer, model, shuffled); });
  }
}

}  // namespace

// A random order comes out of chunk building as chunks that share few vertices; it says more of the
// optimiser when each chunk is shuffled for itself.
void AddIndexOrder(const ModelSource& source) {
  AddContenders("index order", source, false);
  if (source.name != "random order") AddContenders("index order, chunks shuffled", source, true);
}

}  // namespace orv::bench
