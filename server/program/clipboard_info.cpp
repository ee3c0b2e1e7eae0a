#include "program/clipboard_info.h"

namespace quillpg {

Status CClipboardInfo::Initialize() {
  *this = CClipboardInfo();
  return S_OK;
}

Status CClipboardInfo::SetSourceWnd(CSorrelGridWnd* window) {
  m_sourceWnd = window;
  return S_OK;
}

Status CClipboardInfo::SetTargetWnd(CSorrelGridWnd* window) {
  m_targetWnd = window;
  return S_OK;
}

}  // namespace quillpg
