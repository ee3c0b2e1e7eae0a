// The pattern data of the download.

#include "base/guard.h"
#include "hardware/hardware_library.h"
#include "hardware/pattern_packer.h"
#include "hardware/server2hal.h"
#include "instrument/instrument.h"
#include "program/block_manager.h"

#include <algorithm>
#include <cassert>
#include <span>

namespace quillpg {

namespace {

// Groups packed in one go. The message loop still gets a turn for every group: the words are handed
// over when all are packed, so nobody can tell that the turns come a little later.
constexpr int kYieldBatch = 64;

// Answer of a transfer that the library refused: the rest of the block is not sent.
constexpr Status kRefused = S_FALSE;

ChannelMode ModeOf(const CInstrument& instrument) {
  ChannelMode mode = ChannelMode::Full;
  (void)instrument.GetChannelMode(mode);  // a stored value, cannot fail
  return mode;
}

}  // namespace

Status CServer2HAL::SendBlocks() {
  const auto revision = m_work.Program().Blocks()->Revision();
  if (m_work.Program().Blocks()->IsModified()) {
    const Status status = CreateBlocks();
    if (status != S_OK) return status;
  }
  const Status status = SendChangedBlocks();
  if (status != S_OK) return status;
  // What was edited meanwhile is still to be created.
  if (m_work.Program().Blocks()->Revision() == revision)
    (void)m_work.Program().Blocks()->SetModified(0);
  return S_OK;
}

Status CServer2HAL::CreateBlocks() {
  for (int module = 0; module < ModuleCount(); ++module) {
    if (CSorrelModule* hardware = HardwareAt(module)) (void)hardware->DeleteAllBlocks();
    for (int i = 0; i < m_work.Program().BlockCount(); ++i) {
      if (AbortRequested()) return PG_E_ABORTED;
      BLOCK* block = m_work.Program().BlockAt(i);
      if (!block) return ReportMissing(PG_E_INTERNAL);
      (void)block->SetChanged(1);  // a plain store
      if (CSorrelModule* hardware = HardwareAt(module))
        (void)hardware->CreateDataBlock(i, block->GetBlockSize());
      if (!YieldAndReport(i, m_work.Program().BlockCount())) return ReportMissing(PG_E_INTERNAL);
    }
  }
  return S_OK;
}

Status CServer2HAL::SendChangedBlocks() {
  for (int i = 0; i < m_work.Program().BlockCount(); ++i) {
    BLOCK* block = m_work.Program().BlockAt(i);
    if (!block) return ReportMissing(PG_E_INTERNAL);
    if (!block->IsChanged()) continue;
    const int count = m_work.Program().BlockCount();
    (void)block->SetChanged(0);  // before the first yield: an edit in it must be sent again
    const Status status = GuardAllocation([&] { return SendBlock(i); });
    block = m_work.Program().BlockAt(i);
    if (Failed(status)) {
      if (block) (void)block->SetChanged(1);
      return status;
    }
    if (!ReportProgress(i, count)) return ReportMissing(PG_E_INTERNAL);
  }
  return S_OK;
}

// S_OK also for a block that the library refused: the next one may fare better.
Status CServer2HAL::SendBlock(int index) {
  if (AbortRequested()) return PG_E_ABORTED;
  const ChannelMode mode = ModeOf(*m_work.Instrument());
  const int size = m_work.Program().BlockAt(index)->GetBlockSize();
  for (const PACK_RUN& run : SplitIntoRuns(mode, size)) {
    const Status status = SendRun(index, mode, run);
    if (status != S_OK) return Failed(status) ? status : S_OK;
  }
  return S_OK;
}

// One transfer: the same unit range to every module, each with its own channels.
Status CServer2HAL::SendRun(int block, ChannelMode mode, const PACK_RUN& run) {
  assert(run.unitCount <= MAX_TRANSFER_UNITS);
  for (int module = 0; module < ModuleCount(); ++module) {
    if (!HardwareAt(module)) continue;
    const Status status = PackRun(block, mode, run, module);
    if (status != S_OK) return status;
    CSorrelModule* hardware = HardwareAt(module);  // anew: packing yields
    if (!hardware) continue;
    (void)hardware->DataVectorsSM(m_words.data(), block, run.firstUnit, run.unitCount, 0);
    std::string text;
    int error = 0;
    (void)hardware->GetLastError(text, error);
    if (error != 0) return kRefused;
  }
  return S_OK;
}

Status CServer2HAL::PackRun(int block, ChannelMode mode, const PACK_RUN& run, int module) {
  const CPatternPacker packer(mode, run.kind);
  const int baseChannel = module * GetChannelsPerModule(mode);
  const int groups = run.unitCount / packer.UnitsPerGroup();
  for (int done = 0; done < groups; done += kYieldBatch) {
    const BLOCK* rows = m_work.Program().BlockAt(block);  // anew: it may have been replaced
    if (!rows) return ReportMissing(PG_E_INTERNAL);
    const int batch = std::min(groups - done, kYieldBatch);
    packer.Pack({rows->Data(), rows->RowBytes(), rows->GetBlockSize()}, baseChannel,
                run.firstVector + std::int64_t{done} * packer.VectorsPerGroup(), batch,
                std::span(m_words).subspan(static_cast<std::size_t>(done) *
                                           static_cast<std::size_t>(packer.WordsPerGroup())));
    for (int i = 0; i < batch; ++i) {
      if (AbortRequested()) return PG_E_ABORTED;
      if (!m_work.Yield()) return ReportMissing(PG_E_INTERNAL);
    }
  }
  return S_OK;
}

}  // namespace quillpg
