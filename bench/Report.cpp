#include "Report.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <limits>
#include <sstream>

#include "Measure.h"

namespace orv::bench {
namespace {

using Run = benchmark::BenchmarkReporter::Run;

std::vector<std::string> Split(const std::string& text, char separator) {
  std::vector<std::string> parts;
  std::istringstream in(text);
  for (std::string part; std::getline(in, part, separator);) parts.push_back(part);
  return parts;
}

std::optional<double> CounterOf(const Run& run, const char* name) {
  const auto found = run.counters.find(name);
  if (found == run.counters.end()) return std::nullopt;
  return found->second.value;
}

double SecondsOf(const Run& run, bool isProcess) {
  const double total = isProcess ? run.real_accumulated_time : run.cpu_accumulated_time;
  return total / static_cast<double>(run.iterations);
}

std::string Format(const char* format, double value) {
  char text[32];
  std::snprintf(text, sizeof text, format, value);
  return text;
}

// .5851 rather than 0.5851, as the figures are read beside one another.
std::string Misses(double perTriangle) {
  const std::string text = Format("%.4f", perTriangle);
  return text[0] == '0' ? text.substr(1) : text;
}

std::string Cell(const Result* result) {
  if (!result) return "";
  std::string text = Format("%.3g", result->Throughput());
  if (result->isProcess) text += Format(" (%.3g ms)", 1000 * result->seconds);
  if (result->acmr10 && result->acmr16)
    text += " (" + Misses(*result->acmr10) + " " + Misses(*result->acmr16) + ")";
  return text;
}

// All that was measured in one stage.
class StageTable {
 public:
  StageTable(const std::string& stage, const std::vector<Result>& results) {
    for (const Result& result : results) {
      if (result.stage != stage) continue;
      AddOnce(m_contenders, result.contender);
      AddOnce(m_rows, {result.model, result.triangles});
      m_cells[{result.model, result.triangles, result.contender}] = &result;
    }
  }

  void Print() const {
    std::string head = "| model | triangles |", line = "|---|---|";
    for (const std::string& contender : m_contenders)
      head += " " + contender + " |", line += "---|";
    if (Peer()) head += " orv : " + *Peer() + " |", line += "---|";
    std::printf("%s bytes per triangle | growth |\n%s---|---|\n", head.c_str(), line.c_str());
    for (const Row& row : m_rows) PrintRow(row);
  }

 private:
  using Row = std::pair<std::string, double>;

  template <typename T>
  static void AddOnce(std::vector<T>& list, const T& item) {
    if (std::ranges::find(list, item) == list.end()) list.push_back(item);
  }

  // The one whose throughput ours is held against: the first.
  std::optional<std::string> Peer() const {
    for (const std::string& contender : m_contenders)
      if (!contender.starts_with(kOurs)) return contender;
    return std::nullopt;
  }

  const Result* Find(const Row& row, const std::string& contender) const {
    const auto found = m_cells.find({row.first, row.second, contender});
    return found == m_cells.end() ? nullptr : found->second;
  }

  void PrintRow(const Row& row) const {
    std::string text = "| " + row.first + " | " + Format("%.0f", row.second) + " |";
    for (const std::string& contender : m_contenders)
      text += " " + Cell(Find(row, contender)) + " |";
    const Result* const ours = Find(row, kOurs);
    if (Peer()) {
      const Result* const peer = Find(row, *Peer());
      text += " " + (ours && peer ? Format("%.2f", ours->Throughput() / peer->Throughput()) : "");
      text += " |";
    }
    text += " " + (ours ? Format("%.0f", ours->bytesPerTriangle) : "") + " |";
    text += " " + (ours && ours->growth ? Format("%.2f", *ours->growth) : "") + " |";
    std::puts(text.c_str());
  }

  std::vector<std::string> m_contenders;
  std::vector<Row> m_rows;
  std::map<std::tuple<std::string, double, std::string>, const Result*> m_cells;
};

}  // namespace

std::optional<Result> Results::Take(const std::vector<Run>& repetitions) {
  Result best;
  best.seconds = std::numeric_limits<double>::infinity();
  for (const Run& run : repetitions) {
    if (run.run_type != Run::RT_Iteration || run.error_occurred) continue;
    const bool isProcess = run.run_name.time_type == "manual_time";
    if (SecondsOf(run, isProcess) >= best.seconds) continue;
    const std::vector<std::string> name = Split(run.run_name.function_name, '/');
    best.stage = name[0], best.contender = name[1], best.model = name[2];
    best.seconds = SecondsOf(run, isProcess);
    best.isProcess = isProcess;
    best.triangles = CounterOf(run, kTriangles).value_or(0);
    best.bytesPerTriangle = CounterOf(run, kBytesPerTriangle).value_or(0);
    best.acmr10 = CounterOf(run, kAcmr10);
    best.acmr16 = CounterOf(run, kAcmr16);
  }
  if (best.stage.empty()) return std::nullopt;
  const std::string key = best.stage + "/" + best.contender + "/" + best.model;
  const Result& smallest = m_smallest.emplace(key, best).first->second;
  if (smallest.triangles < best.triangles) {
    best.growth =
        std::log(best.seconds / smallest.seconds) / std::log(best.triangles / smallest.triangles);
  }
  m_results.push_back(best);
  return best;
}

bool TableReporter::ReportContext(const Context& context) {
  char date[32];
  const std::time_t now = std::time(nullptr);
  std::strftime(date, sizeof date, "%F %H:%M UTC", std::gmtime(&now));
  std::printf("%s, %d cores of %.0f MHz, load", date, context.cpu_info.num_cpus,
              context.cpu_info.cycles_per_second / 1e6);
  for (const double load : context.cpu_info.load_avg) std::printf(" %.2f", load);
  std::printf("\n");
  return true;
}

void TableReporter::ReportRuns(const std::vector<Run>& repetitions) {
  for (const Run& run : repetitions) {
    if (run.error_occurred)
      std::fprintf(stderr, "%s: %s\n", run.benchmark_name().c_str(), run.error_message.c_str());
  }
  if (const auto result = m_results.Take(repetitions)) {
    std::fprintf(stderr, "%s, %s, %s, %.0f triangles: %s\n", result->stage.c_str(),
                 result->contender.c_str(), result->model.c_str(), result->triangles,
                 Cell(&*result).c_str());
  }
}

void TableReporter::Finalize() {
  std::vector<std::string> stages;
  for (const Result& result : m_results.All()) {
    if (std::ranges::find(stages, result.stage) == stages.end()) stages.push_back(result.stage);
  }
  for (const std::string& stage : stages) {
    std::printf("\n### %s\n\n", stage.c_str());
    StageTable(stage, m_results.All()).Print();
  }
}

void JsonReporter::ReportRuns(const std::vector<Run>& repetitions) {
  std::vector<Run> runs = repetitions;
  const std::optional<Result> result = m_results.Take(repetitions);
  for (Run& run : runs) {
    if (result && result->growth && run.run_type == Run::RT_Iteration)
      run.counters["growth_exponent"] = *result->growth;
  }
  JSONReporter::ReportRuns(runs);
}

}  // namespace orv::bench
