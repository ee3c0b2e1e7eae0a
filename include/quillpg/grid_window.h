#pragma once

#include "quillpg/api.h"

namespace quillpg {

class CInstrument;

/// A grid of the front end, as far as the clipboard needs to know it. Referenced, never owned.
class QUILLPG_API CSorrelGridWnd {
 public:
  virtual ~CSorrelGridWnd() = default;

  /// The instrument whose data the grid shows; null when it shows none.
  virtual void GetInstrument(CInstrument** instrument) = 0;
};

}  // namespace quillpg
