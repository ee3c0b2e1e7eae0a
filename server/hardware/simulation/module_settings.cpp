#include "hardware/simulation/module_settings.h"

#include <algorithm>
#include <limits>

namespace quillpg {
namespace {

enum class Shape { Module, Pod, Indexed };

struct SETTING_ROW {
  Shape shape;
  int first;  // indexes within a pod that carry the setting
  int last;
  std::array<double, NUM_PODS> initial;  // by pod, or by index within every pod
};

constexpr std::array<SETTING_ROW, static_cast<std::size_t>(Setting::Count)> kRows = {{
#define QUILLPG_MODULE_SETTING(name, type, initial) {Shape::Module, 0, 0, {initial}},
#define QUILLPG_MODULE_COMMAND(name, operation, type, initial) {Shape::Module, 0, 0, {initial}},
#define QUILLPG_POD_SETTING(name, type, a, b, c, d) {Shape::Pod, 0, 0, {a, b, c, d}},
#define QUILLPG_INDEXED_SETTING(name, type, first, last, i0, i1, i2, i3) \
  {Shape::Indexed, first, last, {i0, i1, i2, i3}},
#include "hardware/simulation/module_settings.def"
#undef QUILLPG_MODULE_SETTING
#undef QUILLPG_MODULE_COMMAND
#undef QUILLPG_POD_SETTING
#undef QUILLPG_INDEXED_SETTING
}};

}  // namespace

CModuleSettings::CModuleSettings() : m_values{} {
  for (std::size_t row = 0; row < kRows.size(); ++row) {
    for (std::size_t place = 0; place < kPlaces; ++place) {
      const std::size_t pod = place / NUM_VARIABLE_CHANNELS;
      const std::size_t index = place % NUM_VARIABLE_CHANNELS;
      m_values[row][place] = kRows[row].initial[kRows[row].shape == Shape::Pod ? pod : index];
    }
  }
}

int CModuleSettings::Place(Setting setting, char pod, int index) {
  const SETTING_ROW& row = kRows[static_cast<std::size_t>(setting)];
  if (row.shape == Shape::Module) return 0;
  if (pod < 'A' || pod >= 'A' + NUM_PODS) return -1;
  const int first = (pod - 'A') * NUM_VARIABLE_CHANNELS;
  if (row.shape == Shape::Pod) return first;
  return index >= row.first && index <= row.last ? first + index : -1;
}

void CModuleSettings::Store(Setting setting, int place, double value) {
  m_values[static_cast<std::size_t>(setting)][Checked(place)] = value;
  ++m_revision;
}

void CModuleSettings::Assign(const CModuleSettings& other) {
  m_values = other.m_values;
  ++m_revision;
}

int CModuleSettings::Number(Setting setting) const {
  constexpr double kLeast = std::numeric_limits<int>::min();
  constexpr double kMost = std::numeric_limits<int>::max();
  const double value = At(setting);
  return value >= kLeast && value <= kMost ? static_cast<int>(value) : 0;
}

}  // namespace quillpg
