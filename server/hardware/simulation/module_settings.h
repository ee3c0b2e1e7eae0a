#pragma once

#include "quillpg/api.h"
#include "quillpg/limits.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace quillpg {

/// Every setting of a simulated module; module_settings.def lists them.
enum class Setting {
#define QUILLPG_MODULE_SETTING(name, type, initial) name,
#define QUILLPG_MODULE_COMMAND(name, operation, type, initial) name,
#define QUILLPG_POD_SETTING(name, type, a, b, c, d) name,
#define QUILLPG_INDEXED_SETTING(name, type, first, last, i0, i1, i2, i3) name,
#include "hardware/simulation/module_settings.def"
#undef QUILLPG_MODULE_SETTING
#undef QUILLPG_MODULE_COMMAND
#undef QUILLPG_POD_SETTING
#undef QUILLPG_INDEXED_SETTING
  Count
};

/// The values of all settings of one module. A double holds every type exactly that a setting has:
/// 32-bit integers and enumerations, float and double.
class QUILLPG_API CModuleSettings {
 public:
  /// Every setting at its initial value.
  CModuleSettings();

  /// Place of a value within its setting; -1 when the setting has no such pod or index (only
  /// indexes 1 and 2 carry inhibit mask, data format, delay range and delay). A setting of the
  /// whole module takes any pod and index.
  static int Place(Setting setting, char pod, int index);

  /// `place` is one that Place gave.
  double At(Setting setting, int place = 0) const { return Row(setting)[Checked(place)]; }
  void Store(Setting setting, int place, double value);
  /// Takes over all values of `other`.
  void Assign(const CModuleSettings& other);

  /// Truth value and whole number of a setting of the whole module.
  bool IsOn(Setting setting) const { return At(setting) != 0; }
  int Number(Setting setting) const;

  /// Rises with every change.
  std::uint64_t Revision() const { return m_revision; }

 private:
  static constexpr int kPlaces = NUM_PODS * NUM_VARIABLE_CHANNELS;
  using ROW = std::array<double, kPlaces>;

  static std::size_t Checked(int place) { return static_cast<std::size_t>(place) % kPlaces; }
  const ROW& Row(Setting setting) const { return m_values[static_cast<std::size_t>(setting)]; }

  std::array<ROW, static_cast<std::size_t>(Setting::Count)> m_values;
  std::uint64_t m_revision = 0;
};

}  // namespace quillpg
