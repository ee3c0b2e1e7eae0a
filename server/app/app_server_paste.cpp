// The root's paste: what the clipboard holds decides who carries it out.

#include "base/guard.h"
#include "program/clipboard_info.h"
#include "quillpg/app_server.h"
#include "quillpg/host_services.h"

namespace quillpg {

Status CAppServer::Paste(CClipboardInfo* info) {
  const CWaitCursor cursor;  // also for a paste that fails at once
  if (!info || !info->GetSourceWnd()) return E_FAIL;
  if (!info->GetTargetWnd()) {
    info->contentType = ContentType::None;
    return E_FAIL;
  }
  return GuardAllocation([&] { return PasteContent(info); });
}

Status CAppServer::PasteContent(CClipboardInfo* info) {
  switch (info->contentType) {
    case ContentType::Block:
      return PasteBlock(info);
    case ContentType::Event:
      return PasteEvent(info);
    case ContentType::EventDef:
      return PasteEventDef(info);
    case ContentType::SequenceLine:
      return PasteSeq(info);
    case ContentType::SubSequence:
      return PasteSubSeq(info);
    case ContentType::SubSequenceDef:
      return PasteSubSeqDef(info);
    case ContentType::Rows:
      return PasteRows(info);
    case ContentType::GroupColumn:
    case ContentType::GroupWave:
      return PasteColumn(info);
    case ContentType::ChannelColumn:
    case ContentType::ChannelWave:
      return PasteChannelCol(info);
    default:
      return E_FAIL;
  }
}

}  // namespace quillpg
