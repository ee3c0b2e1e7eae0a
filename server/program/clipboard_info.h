#pragma once

#include "quillpg/api.h"
#include "quillpg/engine_types.h"
#include "quillpg/result_codes.h"

#include <string>

namespace quillpg {

class CSorrelGridWnd;

/// What the user has copied from one grid and where it goes; CAppServer::Paste carries it out.
/// Positions are those of the model, never grid geometry: First and Last are list positions or
/// vectors, columns are group positions or channel numbers. The windows stay the front end's.
class QUILLPG_API CClipboardInfo {
 public:
  /// Restores the values below: nothing copied.
  Status Initialize();

  Status SetSourceWnd(CSorrelGridWnd* window);
  Status SetTargetWnd(CSorrelGridWnd* window);
  CSorrelGridWnd* GetSourceWnd() const { return m_sourceWnd; }
  CSorrelGridWnd* GetTargetWnd() const { return m_targetWnd; }

  /// 1 always.
  int CanEnableCopy() const { return 1; }
  /// 1 when something was copied.
  int CanEnablePaste() const { return contentType != ContentType::None ? 1 : 0; }

  int sourceFirst = -1;
  int sourceLast = -1;
  int sourceFirstColumn = -1;
  int sourceLastColumn = -1;
  int targetFirst = -1;
  int targetLast = -1;
  int targetFirstColumn = -1;
  int targetLastColumn = -1;
  std::string sourceName;  ///< for the front end
  std::string targetName;  ///< for the front end
  ContentType contentType = ContentType::None;
  int insert = 1;      ///< 1: insert before the target; 0: list pastes append
  int sourceItem = 0;  ///< index of the block, event or subsequence that the source grid shows
  int targetItem = 0;  ///< the same for the target grid
  int spare1 = 0;      ///< kept and copied
  int spare2 = 0;      ///< kept and copied

 private:
  CSorrelGridWnd* m_sourceWnd = nullptr;
  CSorrelGridWnd* m_targetWnd = nullptr;
};

}  // namespace quillpg
