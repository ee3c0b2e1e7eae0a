#pragma once

#include "exchange/vcd_writer.h"
#include "quillpg/api.h"
#include "quillpg/result_codes.h"

namespace quillpg {

class CInstrument;

/// Describes an instrument of the server's list for the dump: its place in the system, clock period
/// and one signal for each group, named after it. E_FAIL for an instrument without modules.
QUILLPG_API Status DescribeInstrument(CInstrument& instrument, VCD_INSTRUMENT& description);

}  // namespace quillpg
