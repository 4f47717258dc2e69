#include "meshproc/StripSearch.h"

#include <algorithm>
#include <array>
#include <limits>

#include "meshproc/StripStarts.h"
#include "meshproc/StripState.h"
#include "meshproc/StripWalk.h"

namespace orv {
namespace {

// A round tries ten samples: the row at hand with four budgets, and six new starts.
constexpr uint32_t kSamplesPerRound = 10;
constexpr uint32_t kLeastSlack = 2;  // between a budget and the cache size
constexpr uint32_t kMostSlack = 5;
constexpr uint32_t kStartSlack = 3;
constexpr uint32_t kStartsPerRound = kSamplesPerRound - (kMostSlack - kLeastSlack + 1);

constexpr uint32_t kTrianglesAhead = 40;  // played in a sample
constexpr uint32_t kTrianglesTaken = 16;  // of the best one

// All in reloads; a regular surface costs some 0.07 a triangle.
constexpr double kGoodEnough = 0.1;  // a triangle: no further samples
constexpr double kGoodRow = 0.14;    // a triangle: no new starts
constexpr double kNewStart = 0.5;    // the price of the border that a new start leaves behind
constexpr uint32_t kFarBehind = 3;   // the best sample at the same length: given up

struct Sample {
  uint32_t start = kNoVertex;  // or go on with the row
  uint32_t budget = 1;
};

constexpr double kLost = std::numeric_limits<double>::max();

class Search {
 public:
  Search(const StripAdjacency& adjacency, uint32_t cacheSize)
      : m_state(adjacency, cacheSize), m_starts(m_state), m_walk(m_state, m_starts) {}

  std::vector<uint32_t> Run(size_t triangleCount);

 private:
  // The reloads so far, after each number of triangles played.
  using Trace = std::array<uint32_t, kTrianglesAhead + StripWalk::kMostPerStep>;

  Sample FindBestSample();
  bool Try(const Sample& sample);
  double Play(const Sample& sample);
  bool CanStillWin(uint32_t length, double reloads) const;
  void Take(const Sample& sample);
  void Begin(const Sample& sample);
  uint32_t Budget(uint32_t slack) const {
    return m_state.CacheSize() > slack ? m_state.CacheSize() - slack : 1;
  }

  StripState m_state;
  StripStarts m_starts;
  StripWalk m_walk;

  Sample m_best;  // of this round so far, with its cost in reloads per triangle
  double m_bestCost = kLost;
  Trace m_bestTrace = {};
  Trace m_trace = {};
};

std::vector<uint32_t> Search::Run(size_t triangleCount) {
  while (m_state.EmittedCount() < triangleCount) Take(FindBestSample());
  return m_state.TakeOrder();
}

// Wide rows first: on a regular surface they win in the long run, which is longer than a sample.
Sample Search::FindBestSample() {
  m_bestCost = kLost;
  for (uint32_t slack = kLeastSlack; slack <= kMostSlack; ++slack)
    if (Try({kNoVertex, Budget(slack)})) return m_best;
  if (m_bestCost <= kGoodRow) return m_best;
  for (const uint32_t start : m_starts.Candidates(kStartsPerRound))
    if (Try({start, Budget(kStartSlack)})) return m_best;
  return m_best;
}

// Whether the best sample is now so good that no other needs a try.
bool Search::Try(const Sample& sample) {
  const StripWalk::Position begin = m_walk.Here();
  const double cost = Play(sample);
  m_walk.Return(begin);
  if (cost < m_bestCost) {
    m_best = sample;
    m_bestCost = cost;
    m_bestTrace = m_trace;
  }
  return m_bestCost <= kGoodEnough;
}

// The sample's cost in reloads per triangle; kLost as soon as it is sure not to be the best.
double Search::Play(const Sample& sample) {
  const StripState::Mark begin = m_state.Here();
  const double price = sample.start == kNoVertex ? 0 : kNewStart;
  uint32_t traced = 0;
  uint32_t length = 0;
  uint32_t reloads = 0;
  Begin(sample);
  do {
    length = m_state.EmittedCount() - begin.emitted;
    reloads = m_state.Reloads() - begin.reloads;
    while (traced <= length) m_trace[traced++] = reloads;
    if (!CanStillWin(length, reloads + price)) return kLost;
  } while (length < kTrianglesAhead && m_walk.Step());
  std::fill(m_trace.begin() + traced, m_trace.end(), reloads);
  return (reloads + price) / length;
}

bool Search::CanStillWin(uint32_t length, double reloads) const {
  if (m_bestCost == kLost) return true;
  return reloads <= m_bestTrace[length] + kFarBehind &&
         reloads < m_bestCost * (kTrianglesAhead + 2);  // a sample overshoots by two or so
}

void Search::Take(const Sample& sample) {
  const uint32_t end = m_state.EmittedCount() + kTrianglesTaken;
  Begin(sample);
  while (m_state.EmittedCount() < end && m_walk.Step()) continue;
  m_state.Settle();
  m_starts.Settle();
}

void Search::Begin(const Sample& sample) {
  m_walk.SetBudget(sample.budget);
  if (sample.start != kNoVertex) m_walk.StartAt(sample.start);
}

}  // namespace

std::vector<uint32_t> FindStripOrder(const StripAdjacency& adjacency, uint32_t cacheSize) {
  return Search(adjacency, cacheSize).Run(adjacency.triangles.size());
}

}  // namespace orv
