#include "meshproc/StripSearch.h"

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
constexpr uint32_t kUsualOvershoot = 2;   // a sample ends with the fan that reaches its length

// All in reloads; a regular surface costs some 0.07 a triangle.
constexpr double kGoodEnough = 0.1;  // a triangle: no further samples
constexpr double kGoodRow = 0.15;    // a triangle: no new starts
constexpr double kNewStart = 0.5;    // the price of the border that a new start leaves behind

struct Sample {
  uint32_t start = kNoVertex;  // or go on with the row
  uint32_t budget = 1;
};

constexpr double kLost = std::numeric_limits<double>::infinity();

class Search {
 public:
  Search(const StripAdjacency& adjacency, uint32_t cacheSize)
      : m_state(adjacency, cacheSize), m_starts(m_state), m_walk(m_state, m_starts) {}

  std::vector<uint32_t> Run(size_t triangleCount);

 private:
  bool TakeGoodEnough();
  bool Try(const Sample& sample);
  double Play(const Sample& sample);
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
  StripWalk::Position m_takenUpTo = {};  // of the sample played last
};

std::vector<uint32_t> Search::Run(size_t triangleCount) {
  while (m_state.EmittedCount() < triangleCount) {
    m_bestCost = kLost;
    if (!TakeGoodEnough()) Take(m_best);
    m_state.Settle();
    m_starts.Settle();
  }
  return m_state.TakeOrder();
}

// A round of samples. False when none was good enough, and the best is still to be taken.
// Wide rows first: on a regular surface they win in the long run, which is longer than a sample.
bool Search::TakeGoodEnough() {
  for (uint32_t slack = kLeastSlack; slack <= kMostSlack; ++slack)
    if (Try({kNoVertex, Budget(slack)})) return true;
  if (m_bestCost <= kGoodRow) return false;
  for (const uint32_t start : m_starts.Near(kStartsPerRound))
    if (Try({start, Budget(kStartSlack)})) return true;
  return false;
}

// Plays a sample and takes it when it is good enough; the whole of it when it is flawless.
bool Search::Try(const Sample& sample) {
  const StripWalk::Position begin = m_walk.Here();
  const double cost = Play(sample);
  if (cost <= kGoodEnough) {
    if (cost > 0) m_walk.Return(m_takenUpTo);
    return true;
  }
  m_walk.Return(begin);
  if (cost < m_bestCost) {
    m_best = sample;
    m_bestCost = cost;
  }
  return false;
}

// The sample's cost in reloads per triangle; kLost as soon as it is sure not to be the best.
double Search::Play(const Sample& sample) {
  const StripState::Mark begin = m_state.Here();
  const double price = sample.start == kNoVertex ? 0 : kNewStart;
  const double tooMuch = m_bestCost * (kTrianglesAhead + kUsualOvershoot);
  uint32_t length = 0;
  double reloads = 0;
  Begin(sample);
  do {
    const bool wasShort = length < kTrianglesTaken;
    length = m_state.EmittedCount() - begin.emitted;
    if (wasShort) m_takenUpTo = m_walk.Here();
    reloads = price + (m_state.Reloads() - begin.reloads);
    if (reloads >= tooMuch) return kLost;
  } while (length < kTrianglesAhead && m_walk.Step());
  return reloads / length;
}

void Search::Take(const Sample& sample) {
  const uint32_t end = m_state.EmittedCount() + kTrianglesTaken;
  Begin(sample);
  while (m_state.EmittedCount() < end && m_walk.Step()) continue;
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
