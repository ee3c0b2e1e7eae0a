// The root's paste: what the clipboard holds decides who carries it out.

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

Status CAppServer::PasteBlock(CClipboardInfo* /*info*/) {
  return E_FAIL;  // Not built yet.
}

Status CAppServer::PasteEvent(CClipboardInfo* /*info*/) {
  return E_FAIL;  // Not built yet.
}

Status CAppServer::PasteEventDef(CClipboardInfo* /*info*/) {
  return E_FAIL;  // Not built yet.
}

Status CAppServer::PasteSeq(CClipboardInfo* /*info*/) {
  return E_FAIL;  // Not built yet.
}

Status CAppServer::PasteSubSeq(CClipboardInfo* /*info*/) {
  return E_FAIL;  // Not built yet.
}

Status CAppServer::PasteSubSeqDef(CClipboardInfo* /*info*/) {
  return E_FAIL;  // Not built yet.
}

Status CAppServer::PasteRows(CClipboardInfo* /*info*/) {
  return E_FAIL;  // Not built yet.
}

Status CAppServer::PasteColumn(CClipboardInfo* /*info*/) {
  return E_FAIL;  // Not built yet.
}

Status CAppServer::PasteChannelCol(CClipboardInfo* /*info*/) {
  return E_FAIL;  // Not built yet.
}

}  // namespace quillpg
