#include "hardware/simulation/event_stimulus.h"

#include "base/guard.h"
#include "quillpg/limits.h"

#include <algorithm>

namespace quillpg {
namespace {

bool ParseLevels(std::string_view levels, std::size_t& inputs) {
  if (levels.size() != EVENT_INPUTS) return false;
  inputs = 0;
  for (std::size_t i = 0; i < levels.size(); ++i) {
    if (levels[i] != '0' && levels[i] != '1') return false;
    if (levels[i] == '1') inputs |= std::size_t{1} << i;
  }
  return true;
}

}  // namespace

Status CEventStimulus::Set(const std::vector<STIMULUS_LINE>& lines) {
  return GuardAllocation([&] {
    std::vector<STEP> steps{{-1, 0}};
    std::int64_t last = -1;
    for (const STIMULUS_LINE& line : lines) {
      std::size_t inputs = 0;
      if (line.vector <= last || !ParseLevels(line.levels, inputs)) return E_FAIL;
      last = line.vector;
      steps.push_back({line.vector, inputs});
    }
    m_steps = std::move(steps);
    return S_OK;
  });
}

// Of a vector from -1 on.
std::size_t CEventStimulus::StepAt(std::int64_t vector) const {
  const auto after = std::ranges::upper_bound(m_steps, vector, {}, &STEP::vector);
  return static_cast<std::size_t>(after - m_steps.begin()) - 1;
}

bool CEventStimulus::IsTrue(const EVENT_TRUTH& event, std::int64_t vector) const {
  return event[m_steps[StepAt(vector)].inputs];
}

std::int64_t CEventStimulus::FirstTrue(const EVENT_TRUTH& event, std::int64_t from,
                                       std::int64_t end) const {
  for (std::size_t i = StepAt(from); i < m_steps.size() && m_steps[i].vector < end; ++i) {
    if (event[m_steps[i].inputs]) return std::max(m_steps[i].vector, from);
  }
  return NEVER;
}

std::int64_t CEventStimulus::FirstEdge(const EVENT_TRUTH& event, std::int64_t from,
                                       std::int64_t end) const {
  for (std::size_t i = StepAt(from - 1) + 1; i < m_steps.size() && m_steps[i].vector < end; ++i) {
    if (event[m_steps[i].inputs] && !event[m_steps[i - 1].inputs]) return m_steps[i].vector;
  }
  return NEVER;
}

}  // namespace quillpg
