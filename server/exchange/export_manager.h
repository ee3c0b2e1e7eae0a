#pragma once

#include "exchange/exchange_manager.h"

namespace quillpg {

/// Writes pattern data to exchange files. The formats are not built yet.
class QUILLPG_API CExportManager : public CExchangeManager {};

}  // namespace quillpg
