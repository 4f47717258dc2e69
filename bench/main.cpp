// All benchmarks. Usage: orv_bench [--json] [SECONDS] [--benchmark_...], SECONDS for each
// repetition of a measurement.

#include <benchmark/benchmark.h>
#include <meshoptimizer.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "Benches.h"
#include "ProcessRun.h"
#include "Report.h"

namespace orv::bench {
namespace {

constexpr size_t kWhole = 10000;  // triangles; so many fit in one chunk and are not split

void AddAll() {
  for (const ModelSource& source : ShapesOfAllSizes()) {
    AddWelding(source);
    AddChunkBuilding(source);
    if (source.name == "skinned" && source.size > kWhole) AddSplitting(source);
    AddTangents(source);
    AddIndexOrder(source);
    AddReadBack(source);
    AddExport(source);
  }
  for (const ModelSource& source : RealFiles()) {
    AddWelding(source);
    AddChunkBuilding(source);
    AddTangents(source);
    AddIndexOrder(source);
    AddReadBack(source);
    AddExport(source);
  }
  AddTangentsRoundOneVertex();
  AddExport({"grid of a few hundred", 500, "", [] { return Grid(500); }});
}

int Run(int argc, char** argv) {
  bool json = false;
  std::string minTime = "--benchmark_min_time=0.1";
  std::vector<char*> arguments = {argv[0], minTime.data()};
  for (int i = 1; i < argc; ++i) {
    const std::string argument = argv[i];
    if (argument == "--json") {
      json = true;
    } else if (std::atof(argv[i]) > 0) {
      minTime = "--benchmark_min_time=" + argument;
      arguments[1] = minTime.data();
    } else {
      arguments.push_back(argv[i]);
    }
  }
  int count = static_cast<int>(arguments.size());
  arguments.push_back(nullptr);
  benchmark::Initialize(&count, arguments.data());
  if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) return 2;
  benchmark::AddCustomContext("meshoptimizer", std::to_string(MESHOPTIMIZER_VERSION));
  benchmark::AddCustomContext("times", "processor time; wall clock for whole exports");
  AddAll();
  TableReporter table;
  JsonReporter document;
  benchmark::BenchmarkReporter* reporter = &table;
  if (json) reporter = &document;
  benchmark::RunSpecifiedBenchmarks(reporter);
  return 0;
}

}  // namespace
}  // namespace orv::bench

int main(int argc, char** argv) {
  if (const auto status = orv::bench::ServeProcessRun(argc, argv)) return *status;
  return orv::bench::Run(argc, argv);
}
