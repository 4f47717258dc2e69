// Average cache misses per triangle and throughput of the triangle order, beside those of
// meshoptimizer in the same run. Usage: index_order_bench [seconds per measurement]

#include <meshoptimizer.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <exception>
#include <functional>
#include <numeric>
#include <string>
#include <vector>

#include "Pieces.h"
#include "meshproc/IndexOptimizer.h"

namespace orv::bench {
namespace {

using Order32 = std::vector<unsigned int>;

struct Contender {
  const char* name;
  std::function<void(Order32& out, const Order32& in, uint32_t vertexCount)> optimize;
};

const Contender kPeers[] = {
    {"VertexCache",
     [](Order32& out, const Order32& in, uint32_t vertexCount) {
       meshopt_optimizeVertexCache(out.data(), in.data(), in.size(), vertexCount);
     }},
    {"Fifo(10)",
     [](Order32& out, const Order32& in, uint32_t vertexCount) {
       meshopt_optimizeVertexCacheFifo(out.data(), in.data(), in.size(), vertexCount, 10);
     }},
    {"Fifo(16)",
     [](Order32& out, const Order32& in, uint32_t vertexCount) {
       meshopt_optimizeVertexCacheFifo(out.data(), in.data(), in.size(), vertexCount, 16);
     }},
    {"Strip",
     [](Order32& out, const Order32& in, uint32_t vertexCount) {
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

struct Misses {
  size_t at10 = 0;
  size_t at16 = 0;

  void Count(const auto& indices) {
    at10 += CountMisses(indices, 10);
    at16 += CountMisses(indices, 16);
  }
};

double CpuSeconds() { return static_cast<double>(std::clock()) / CLOCKS_PER_SEC; }

// Million triangles a second of processor time: for each piece the best of the repetitions that
// fit the time, so that whatever else runs on the machine counts little.
double Throughput(const Model& model, double seconds, const std::function<void(size_t)>& run) {
  std::vector<double> best(model.pieces.size(), 1e9);
  const double start = CpuSeconds();
  do {
    for (size_t piece = 0; piece < best.size(); ++piece) {
      const double begin = CpuSeconds();
      run(piece);
      best[piece] = std::min(best[piece], CpuSeconds() - begin);
    }
  } while (CpuSeconds() - start < seconds);
  const double total = std::accumulate(best.begin(), best.end(), 0.0);
  return static_cast<double>(model.TriangleCount()) / total / 1e6;
}

struct Result {
  Misses misses;
  double throughput = 0;
};

Result MeasureOurs(const Model& model, double seconds) {
  Result result;
  for (const Piece& piece : model.pieces) result.misses.Count(OptimizeTriangleOrder(piece.indices));
  result.throughput = Throughput(
      model, seconds, [&](size_t piece) { OptimizeTriangleOrder(model.pieces[piece].indices); });
  return result;
}

Result MeasurePeer(const Contender& peer, const Model& model, double seconds) {
  std::vector<Order32> inputs;
  for (const Piece& piece : model.pieces)
    inputs.emplace_back(piece.indices.begin(), piece.indices.end());
  Order32 out;
  const auto run = [&](size_t piece) {
    out.resize(inputs[piece].size());
    peer.optimize(out, inputs[piece], model.pieces[piece].vertexCount);
  };
  Result result;
  for (size_t piece = 0; piece < inputs.size(); ++piece) {
    run(piece);
    result.misses.Count(out);
  }
  result.throughput = Throughput(model, seconds, run);
  return result;
}

void PrintHeader() {
  std::printf("%-40s %8s %6s | %13s %13s", "misses/triangle at 10 and 16", "tris", "floor", "input",
              "ours");
  for (const Contender& peer : kPeers) std::printf(" %13s", peer.name);
  std::printf(" | Mtri/s ours, peer, ratio\n");
}

void Measure(const Model& model, double seconds) {
  const auto triangles = static_cast<double>(model.TriangleCount());
  const auto print = [&](const Misses& misses) {
    std::printf(" %.4f %.4f", misses.at10 / triangles, misses.at16 / triangles);
  };
  std::printf("%-40s %8zu %6.4f |", model.name.c_str(), model.TriangleCount(), model.Floor());
  Misses input;
  for (const Piece& piece : model.pieces) input.Count(piece.indices);
  print(input);
  const Result ours = MeasureOurs(model, seconds);
  print(ours.misses);
  bool won = true;
  double vertexCacheThroughput = 0;
  for (const Contender& peer : kPeers) {
    const Result theirs = MeasurePeer(peer, model, &peer == kPeers ? seconds : 0);
    print(theirs.misses);
    won = won && ours.misses.at16 <= theirs.misses.at16 && ours.misses.at10 <= theirs.misses.at10;
    if (&peer == kPeers) vertexCacheThroughput = theirs.throughput;
  }
  std::printf(" | %.2f %.2f %.2f%s\n", ours.throughput, vertexCacheThroughput,
              ours.throughput / vertexCacheThroughput, won ? "" : "  BEHIND A PEER");
  std::fflush(stdout);
}

std::vector<Model> AllModels() {
  const std::string folder = ORV_BENCH_MODELS;
  std::vector<Model> models;
  models.push_back(GridModel(71, 71));
  models.push_back(SphereModel(224, 224));
  models.push_back(FileModel("duck.dae", folder + "/Collada/duck.dae"));
  models.push_back(FileModel("2CylinderEngine.glb",
                             folder + "/glTF2/2CylinderEngine-glTF-Binary/2CylinderEngine.glb"));
  models.push_back(FileModel("SuzanneSubdiv_252.blend", folder + "/BLEND/SuzanneSubdiv_252.blend"));
  const size_t inOrder = models.size();
  for (size_t i = 0; i < inOrder; ++i) models.push_back(Shuffled(models[i]));
  return models;
}

}  // namespace
}  // namespace orv::bench

int main(int argc, char** argv) {
  try {
    const double seconds = argc > 1 ? std::atof(argv[1]) : 0.5;
    orv::bench::PrintHeader();
    for (const orv::bench::Model& model : orv::bench::AllModels())
      orv::bench::Measure(model, seconds);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "index_order_bench: %s\n", error.what());
    return 1;
  }
  return 0;
}
