#pragma once

#include "instrument/instrument.h"
#include "program/block_manager.h"
#include "program/event_manager.h"
#include "program/group_manager.h"
#include "program/sequence_manager.h"
#include "program/subsequence_manager.h"

namespace quillpg {

/// The managers of an instrument, none of them null; they stay the instrument's.
struct PROGRAM_PARTS {
  explicit PROGRAM_PARTS(const CInstrument& instrument) {
    (void)instrument.GetGroupManager(&groups);  // an instrument has all of them
    (void)instrument.GetBlockManager(&blocks);
    (void)instrument.GetSequenceManager(&sequence);
    (void)instrument.GetSubSequenceManager(&subSequences);
    (void)instrument.GetEventManager(&events);
  }

  CGroupManager* groups = nullptr;
  CBlockManager* blocks = nullptr;
  CSequenceManager* sequence = nullptr;
  CSubSequenceManager* subSequences = nullptr;
  CEventManager* events = nullptr;
};

}  // namespace quillpg
