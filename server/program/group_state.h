#pragma once

#include "quillpg/api.h"
#include "quillpg/engine_types.h"
#include "quillpg/result_codes.h"

#include <cstdint>
#include <iosfwd>
#include <string>
#include <string_view>

namespace quillpg {

class CByteWriter;
class CSetupFileReader;

/// How one group is shown in a listing. The display values are the front end's: kept, copied and
/// (but for value 2) saved, never interpreted.
struct QUILLPG_API GROUP_STATE {
  GROUP_STATE() = default;
  GROUP_STATE(const GROUP_STATE&) = default;
  GROUP_STATE& operator=(const GROUP_STATE&) = default;
  virtual ~GROUP_STATE() = default;

  /// Restores the defaults: 0, 1, 0, hexadecimal, no name.
  Status Initialize();
  /// Sets radix, display value 3 and name; the other two values stay.
  Status Initialize(Radix radix, int displayValue3, const std::string& groupName);

  int GetDisplayValue1() const { return m_displayValue1; }
  int GetDisplayValue2() const { return m_displayValue2; }
  int GetDisplayValue3() const { return m_displayValue3; }
  Radix GetRadix() const { return m_radix; }
  const std::string& GetGroupName() const { return m_groupName; }
  Status SetDisplayValue1(int value);
  Status SetDisplayValue2(int value);
  Status SetDisplayValue3(int value);
  Status SetRadix(Radix radix);
  Status SetGroupName(const std::string& name);

  /// Bytes in a setup file.
  std::uint64_t GetSize() const;
  Status Read(std::istream& stream);
  Status Read(CSetupFileReader& reader);
  Status Write(std::ostream& stream) const;
  Status Write(CByteWriter& writer) const;

 private:
  int m_displayValue1 = 0;
  int m_displayValue2 = 1;
  int m_displayValue3 = 0;
  Radix m_radix = Radix::Hex;
  std::string m_groupName;
};

inline std::string_view NameOf(const GROUP_STATE& state) { return state.GetGroupName(); }

}  // namespace quillpg
