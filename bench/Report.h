#pragma once

#include <benchmark/benchmark.h>

#include <iosfwd>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace orv::bench {

// The best repetition of one measurement.
struct Result {
  std::string stage, contender, model;
  double triangles = 0;
  double seconds = 0;  // of the processor; by the wall clock for whole processes
  bool isProcess = false;
  double bytesPerTriangle = 0;
  std::optional<double> acmr10, acmr16;
  // b where the time has grown as triangles^b since the smallest size of the same model.
  std::optional<double> growth;

  double Throughput() const { return triangles / seconds / 1e6; }
};

// Takes the repetitions of one benchmark after the other.
class Results {
 public:
  // Nothing where all repetitions failed.
  std::optional<Result> Take(const std::vector<benchmark::BenchmarkReporter::Run>& repetitions);
  const std::vector<Result>& All() const { return m_results; }

 private:
  std::vector<Result> m_results;
  std::map<std::string, Result> m_smallest;  // by stage, contender and model
};

// A table in Markdown for each stage, when all is measured; what is being measured goes to standard
// error.
class TableReporter : public benchmark::BenchmarkReporter {
 public:
  bool ReportContext(const Context& context) override;
  void ReportRuns(const std::vector<Run>& repetitions) override;
  void Finalize() override;

 private:
  Results m_results;
};

// Google Benchmark's own document, with the growth among the counters.
class JsonReporter : public benchmark::JSONReporter {
 public:
  void ReportRuns(const std::vector<Run>& repetitions) override;

 private:
  Results m_results;
};

}  // namespace orv::bench
