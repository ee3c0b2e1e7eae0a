#pragma once

#include "exchange/capture.h"
#include "exchange/vcd_scanner.h"
#include "quillpg/result_codes.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace quillpg {

/// One net of a value change dump: what an identifier stands for.
struct VCD_NET {
  int width = 1;
  int firstBit = 0;
  int signal = 0;          ///< first of CAPTURE::signals that shows it
  int next = -1;           ///< another net of the same identifier with another width
  bool isSkipped = false;  ///< real, string or event: its values are left out
  bool hasValue = false;   ///< a value was read
  std::int64_t xLine = 0;  ///< line of its first x or z, 0 none
};

/// The definitions of a value change dump, up to $enddefinitions.
class CVcdDefinitions {
 public:
  /// Reads the definitions; on failure GetErrorText says why, without file and line.
  Status Read(CVcdScanner& scanner, CAPTURE& capture);

  /// First net of an identifier, null when it was not declared.
  VCD_NET* Find(std::string_view id);
  VCD_NET* Next(const VCD_NET& net) { return net.next < 0 ? nullptr : &m_nets[IndexOf(net.next)]; }
  std::vector<VCD_NET>& Nets() { return m_nets; }

  const std::string& GetErrorText() const { return m_errorText; }

 private:
  // Identifiers of one and two printable characters are looked up in a table.
  static constexpr std::size_t kFirst = '!';
  static constexpr std::size_t kCount = '~' - '!' + 1;
  static constexpr std::size_t IndexOf(int position) { return static_cast<std::size_t>(position); }
  static std::size_t ShortIndex(std::string_view id);

  Status ReadVariable(CVcdScanner& scanner, CAPTURE& capture);
  Status ReadTimescale(CVcdScanner& scanner, CAPTURE& capture);
  Status ReadComment(CVcdScanner& scanner, CAPTURE& capture);
  Status CheckWidth(CAPTURE& capture);
  Status SkipToEnd(CVcdScanner& scanner, std::string_view keyword);
  Status Fail(const std::string& text, Status status = E_FAIL);
  Status EndsWithin(std::string_view keyword);
  void AddSignal(CAPTURE& capture, const std::string& id, CAPTURE_SIGNAL signal);
  int& Slot(std::string_view id);

  std::vector<VCD_NET> m_nets;
  std::array<int, kCount*(kCount + 1)> m_shortIds{};  // position + 1 in m_nets, 0 none
  std::unordered_map<std::string, int> m_longIds;
  std::int64_t m_bits = 0;  // of all nets that are played; stops at a number beyond any instrument
  bool m_hasTimescale = false;
  std::string m_errorText;
};

}  // namespace quillpg
