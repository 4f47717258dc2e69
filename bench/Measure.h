#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "Models.h"

namespace orv::bench {

// What is measured on one model.
struct Work {
  std::function<void()> run;
  std::function<void()> prepare = {};          // before each run, not timed; may be empty
  std::map<std::string, double> figures = {};  // further results, by the name of their counter
};

// The counters that every result has.
inline constexpr char kTriangles[] = "triangles";
inline constexpr char kBytesPerTriangle[] = "peak_bytes_per_triangle";
inline constexpr char kAcmr10[] = "acmr10", kAcmr16[] = "acmr16";

inline constexpr char kOurs[] = "orv";

// Makes the work of a stage ready on a model; not timed.
using MakeWork = std::function<Work(const Model&)>;

// A model under the name that it has before it is made; the numbers of triangles are in the name
// when there are several.
struct ModelSource {
  std::string name;
  size_t size = 0;        // triangles asked for; 0: as many as there are
  std::string file = {};  // below ORV_BENCH_MODELS, when it is one of those
  std::function<Model()> make = {};
};

std::vector<ModelSource> ShapesOfAllSizes();  // grid, sphere, random order, skinned; small to large
std::vector<ModelSource> RealFiles();         // three, in three formats

// Registers "stage/contender/model". One model is in memory at a time, so register all that is
// measured on one, ours and the peers, one after the other.
void Add(const std::string& stage, const std::string& contender, const ModelSource& source,
         const MakeWork& make);

// The same for the whole process of a command, by the wall clock, with the memory that it had
// resident at most. Its output is dropped. `make` is given the model and answers the command.
void AddProcess(const std::string& stage, const std::string& contender, const ModelSource& source,
                const std::function<std::vector<std::string>(const Model&)>& make);

}  // namespace orv::bench
