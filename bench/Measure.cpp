#include "Measure.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <utility>

#include "HeapPeak.h"
#include "ProcessRun.h"

namespace orv::bench {
namespace {

constexpr int kRepetitions = 3;  // the best one counts

// The one that was asked for last.
const Model& TheModel(const ModelSource& source) {
  static std::pair<std::string, std::unique_ptr<Model>> s_held;
  const std::string key = source.name + " " + std::to_string(source.size);
  if (s_held.first != key || !s_held.second) {
    s_held.second.reset();
    s_held = {key, std::make_unique<Model>(source.make())};
    s_held.second->name = source.name;
  }
  return *s_held.second;
}

Work& TheWork(const std::string& name, const ModelSource& source, const MakeWork& make) {
  static std::pair<std::string, Work> s_held;
  if (s_held.first == name) return s_held.second;
  s_held = {};
  const Model& model = TheModel(source);
  Work work = make(model);
  if (work.prepare) work.prepare();
  const auto triangles = static_cast<double>(model.TriangleCount());
  work.figures[kTriangles] = triangles;
  work.figures[kBytesPerTriangle] = static_cast<double>(HeapPeak(work.run)) / triangles;
  s_held = {name, std::move(work)};
  return s_held.second;
}

void SetCounters(benchmark::State& state, const std::map<std::string, double>& figures) {
  for (const auto& [counter, value] : figures) state.counters[counter] = value;
}

std::string NameOf(const std::string& stage, const std::string& contender,
                   const ModelSource& source) {
  const std::string size = source.size == 0 ? "" : "/" + std::to_string(source.size);
  return stage + "/" + contender + "/" + source.name + size;
}

}  // namespace

std::vector<ModelSource> ShapesOfAllSizes() {
  std::vector<ModelSource> sources;
  const std::pair<const char*, Model (*)(size_t)> shapes[] = {
      {"grid", Grid}, {"sphere", Sphere}, {"random order", RandomOrder}, {"skinned", Skinned}};
  for (const auto& [name, make] : shapes) {
    for (const size_t size : {size_t{10000}, size_t{100000}, size_t{1000000}}) {
      sources.push_back({name, size, "", [make = make, size] { return make(size); }});
    }
  }
  return sources;
}

std::vector<ModelSource> RealFiles() {
  std::vector<ModelSource> sources;
  for (const char* const file :
       {"Collada/duck.dae", "glTF2/2CylinderEngine-glTF-Binary/2CylinderEngine.glb",
        "BLEND/SuzanneSubdiv_252.blend"}) {
    const std::string path = std::string(ORV_BENCH_MODELS) + "/" + file;
    sources.push_back(
        {path.substr(path.rfind('/') + 1), 0, file, [path] { return FromFile(path); }});
  }
  return sources;
}

void Add(const std::string& stage, const std::string& contender, const ModelSource& source,
         const MakeWork& make) {
  const std::string name = NameOf(stage, contender, source);
  benchmark::RegisterBenchmark(name.c_str(),
                               [=](benchmark::State& state) {
                                 Work& work = TheWork(name, source, make);
                                 for (auto _ : state) {
                                   if (work.prepare) {
                                     state.PauseTiming();
                                     work.prepare();
                                     state.ResumeTiming();
                                   }
                                   work.run();
                                 }
                                 SetCounters(state, work.figures);
                               })
      ->Repetitions(kRepetitions)
      ->Unit(benchmark::kMillisecond);
}

void AddProcess(const std::string& stage, const std::string& contender, const ModelSource& source,
                const std::function<std::vector<std::string>(const Model&)>& make) {
  const std::string name = NameOf(stage, contender, source);
  benchmark::RegisterBenchmark(
      name.c_str(),
      [=](benchmark::State& state) {
        const Model& model = TheModel(source);
        const std::vector<std::string> command = make(model);
        double peak = 0;
        for (auto _ : state) {
          const std::optional<ProcessRun> run = RunProcess(command);
          if (!run) return state.SkipWithError((command[0] + " failed").c_str());
          state.SetIterationTime(run->seconds);
          peak = std::max(peak, run->peakBytes);
        }
        const auto triangles = static_cast<double>(model.TriangleCount());
        SetCounters(state, {{kTriangles, triangles}, {kBytesPerTriangle, peak / triangles}});
      })
      ->Repetitions(kRepetitions)
      ->UseManualTime()
      ->Unit(benchmark::kMillisecond);
}

}  // namespace orv::bench
