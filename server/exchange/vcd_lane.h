#pragma once

#include "exchange/sample_period.h"
#include "exchange/stamp_text.h"
#include "exchange/tick_counter.h"
#include "exchange/vcd_output.h"
#include "hardware/simulation/vector_sink.h"

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace quillpg {

/// A signal as the dump names it: its identifier and the row bits that make it up.
struct VCD_VARIABLE {
  std::string id;
  /// Bits of a row, word x 64 + bit, most significant first.
  std::vector<int> bits;
};

/// The changes of one instrument's pins as text: compares each row with the one before it in whole
/// words and writes what differs.
class CVcdLane {
 public:
  /// `period` in ticks. `lineId` and `signalId` are empty without annotations.
  CVcdLane(CVcdOutput output, int module, RATIO period, std::vector<VCD_VARIABLE> variables,
           std::string lineId, std::string signalId);

  int Module() const { return m_module; }
  void Write(const VECTOR_RUN& run);
  /// Closing stamp, one period after the last vector; false when something was not written,
  /// be it for want of stamps.
  bool Finish();
  CVcdOutput& Output() { return m_output; }

 private:
  // A change of a scalar: the text for 0 and for 1, copied as eight bytes of which the first ones
  // count.
  using TOKEN = std::array<std::uint64_t, 2>;

  void PrepareWords();
  void WritePass(const VECTOR_RUN& run);
  bool IsNarrow(const VECTOR_RUN& run) const;
  template <std::size_t kLength>
  void WriteNarrowRows(const VECTOR_RUN& run, std::int64_t first);
  void WriteRow(const std::uint64_t* levels, const std::uint64_t* highZ, std::int64_t vector);
  void WriteAll();
  std::int64_t RoundedTicks(std::int64_t passed);
  char* WriteStamp(char* to, std::int64_t vector);
  char* WriteVariable(char* to, const VCD_VARIABLE& variable) const;
  char* WriteScalars(char* to, std::size_t word, std::uint64_t changed) const;
  void WriteAnnotations(const VECTOR_RUN& run);
  std::string AnnotationText() const;
  char LevelOf(int bit) const;

  CVcdOutput m_output;
  int m_module;
  RATIO m_period;
  std::vector<VCD_VARIABLE> m_variables;
  std::string m_lineId;
  std::string m_signalId;
  std::int64_t m_mostVectors;  // whose stamps fit into 63 bits
  bool m_runsOver = false;     // there were more

  std::vector<TOKEN> m_tokens;               // by row bit
  std::vector<std::uint8_t> m_tokenLengths;  // by row bit; 0: no plain scalar
  std::vector<std::vector<int>> m_holders;   // by row bit: variables that need more than a token
  std::vector<std::uint64_t> m_scalarMask;   // bits with a token, by word
  std::vector<std::uint64_t> m_holderMask;   // bits with holders, by word
  int m_tokenLength = 0;                     // that all tokens share
  std::vector<bool> m_isDirty;               // by variable, within a row
  std::vector<int> m_dirty;

  std::vector<std::uint64_t> m_levels;  // the row before
  std::vector<std::uint64_t> m_highZ;
  std::size_t m_drivenWords = 0;
  CTickCounter m_ticks;
  CStampText m_stamp;
  std::int64_t m_vectors = 0;
  std::int64_t m_stampedVector = -1;
  int m_line = -1;
  int m_signal = -1;
};

}  // namespace quillpg
