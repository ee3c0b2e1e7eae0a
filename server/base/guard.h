#pragma once

#include "quillpg/result_codes.h"

#include <exception>
#include <string>
#include <utility>

namespace quillpg {

/// Runs an operation that allocates in proportion to its arguments and turns every exception into a
/// status: nothing thrown leaves the engine.
template <typename Operation>
Status GuardAllocation(Operation&& operation, Status onException = E_FAIL) {
  try {
    return std::forward<Operation>(operation)();
  } catch (const std::exception&) {
    return onException;
  }
}

/// Assigns `text`; E_FAIL, with `target` as it was, when memory runs out.
inline Status StoreText(std::string& target, const std::string& text) {
  return GuardAllocation([&] {
    target = text;
    return S_OK;
  });
}

}  // namespace quillpg
