#pragma once

#include "quillpg/engine_types.h"
#include "quillpg/result_codes.h"

namespace quillpg {

class CInstrument;

/// Replaces lists of the instrument's program by one of seven generated programs that go to the
/// limits of the hardware. A list that the program has no part in stays as it is.
///
/// "Number" below: bit c of it is channel c, channels from 32 on are 0.
///   WalkingOnes       one block, channel c alone is 1 at vector c; played without end
///   Cell              blocks alone, of the smallest size and a few vectors more; vector v is the
///                     number v. The sequence stays the user's
///   MaxBlockSize      one block of the largest size, vector v is the number v; played without end
///   MaxBlocks         4000 blocks, each filled with its index, played one after the other. Larger
///                     than any memory together (deliberate): compiling it shows that error
///   MaxSubSequences   50 subsequences of 80 blocks each
///   MaxEvents         8 events of 256 definitions, a line waiting for each
///   MaxSequenceLines  4000 lines that each play a block of their own
///
/// E_FAIL without modules, when a step fails and when the front end destroys the instrument or
/// changes the list of events while it is told of it, S_OK with nothing done for any other type.
Status GenerateTestData(CInstrument& instrument, TestDataType type);

}  // namespace quillpg
