#pragma once

#include <span>

namespace quillpg {

class CShiftRegisterGenerator;
struct BLOCK;

/// Fills channel after channel, in the order of `channels`, with the generator's next `count` bits
/// each: bit i goes to vector first + i. The channels and vectors must lie in the block's data. A
/// channel that is listed again is filled again.
///
/// Works on squares of 64 channels by 64 vectors and takes memory for 64 streams at most; throws
/// when there is none, before the first write.
void FillChannels(BLOCK& block, std::span<const int> channels, int first, int count,
                  CShiftRegisterGenerator& generator);

}  // namespace quillpg
