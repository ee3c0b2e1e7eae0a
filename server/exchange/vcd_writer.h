#pragma once

#include "base/atomic_file.h"
#include "exchange/sample_period.h"
#include "hardware/simulation/vector_sink.h"
#include "quillpg/api.h"
#include "quillpg/result_codes.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace quillpg {

class CVcdLane;
class CVcdOutput;
class CVcdPart;

/// A signal of the dump: the channels of one instrument that make up a value.
struct VCD_SIGNAL {
  std::string name;           ///< any text: blanks are replaced and twins told apart when written
  std::string range;          ///< "[7:0]" behind a vector's name; empty: made from the width
  std::vector<int> channels;  ///< instrument channel numbers, most significant first
};

/// An instrument whose pins are written: the module that its runs name and what its channels mean.
struct VCD_INSTRUMENT {
  std::string name;
  int module = 0;  ///< index of its master over the whole system
  int channelsPerModule = 64;
  RATIO period;  ///< seconds
  /// Exponent of the tick on which stamps are rounded when no power of ten holds the period
  /// exactly; 0: the finest one that leaves room for long plays.
  int tickExponent = 0;
  std::vector<VCD_SIGNAL> signals;
};

struct VCD_OPTIONS {
  bool bits = false;      ///< one scalar for each channel instead of vectors
  bool annotate = false;  ///< sequence line and signal output as extra signals
};

/// Writes what modules play as a value change dump that common viewers and decoders take: one stamp
/// or change a line, every value at #0, a closing stamp one period after the last vector, the
/// coarsest timescale that holds every period, unique names without blanks.
///
/// The dump is written beside `path` and takes its name with Commit; a writer that is discarded or
/// destroyed before leaves nothing behind. With several instruments each has its scope; a signal
/// whose name stands in two of them is called INSTRUMENT.NAME.
class QUILLPG_API CVcdWriter : public CVectorSink {
 public:
  CVcdWriter();
  ~CVcdWriter() override;
  CVcdWriter(const CVcdWriter&) = delete;
  CVcdWriter& operator=(const CVcdWriter&) = delete;

  /// Opens the dump. E_FAIL for instruments without a period or with channels outside their
  /// modules, PG_E_FILE_NOT_OPENED for a path that cannot be written; GetErrorText says why.
  Status Open(const std::string& path, const std::vector<VCD_INSTRUMENT>& instruments,
              const VCD_OPTIONS& options);

  /// The same into memory, for one instrument; `text` must outlive the writer and is complete after
  /// Commit.
  Status OpenText(std::string& text, const VCD_INSTRUMENT& instrument, const VCD_OPTIONS& options);

  /// Runs of modules that no instrument names are left out.
  void OnRun(const VECTOR_RUN& run) override;

  /// Writes the closing stamp and gives the file its name. E_FAIL, with nothing left behind, when
  /// something could not be written or no dump is open.
  Status Commit();

  /// Drops the dump.
  void Discard();

  const std::string& GetErrorText() const { return m_errorText; }

 private:
  struct PLAN;
  class CHeaderMaker;

  static Status Prepare(const std::vector<VCD_INSTRUMENT>& instruments, const VCD_OPTIONS& options,
                        PLAN& plan);
  void AddLane(CVcdOutput output, PLAN& plan, std::size_t index);
  Status CommitLanes();
  bool MergeLanes();
  Status Fail(Status status, std::string text);

  std::string m_path;
  CAtomicFile m_file;
  // With several instruments each writes a part, and Commit merges them.
  std::string m_header;
  std::vector<std::unique_ptr<CVcdPart>> m_parts;
  std::vector<std::unique_ptr<CVcdLane>> m_lanes;
  std::string m_errorText;
};

}  // namespace quillpg
