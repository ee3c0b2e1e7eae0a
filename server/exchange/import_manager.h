#pragma once

#include "exchange/exchange_manager.h"

namespace quillpg {

/// Reads pattern data from exchange files. The formats are not built yet.
class QUILLPG_API CImportManager : public CExchangeManager {};

}  // namespace quillpg
