#pragma once

#include "quillpg/api.h"

#include <cstdint>
#include <span>
#include <string_view>
#include <variant>

namespace quillpg {

/// One argument of a call: whole numbers and enumerations, reals in their own precision, a pod
/// letter, a text. Pointers are no arguments.
using CALL_ARGUMENT = std::variant<std::int64_t, double, float, char, std::string_view>;

/// A call that reached a simulated module. Everything it refers to is valid during OnCall only.
struct MODULE_CALL {
  int module;                  ///< index over the whole system
  std::string_view operation;  ///< its name, for example "SetClockPeriod"
  std::span<const CALL_ARGUMENT> arguments;
  std::span<const std::uint16_t> words;  ///< pattern words of DataVectorsSM, else empty
};

/// True for the calls that only ask: Get..., Is..., VisaStub.
QUILLPG_API bool IsQuery(std::string_view operation);

/// Is told of every call before it is carried out, in order.
class QUILLPG_API CCallSink {
 public:
  virtual ~CCallSink() = default;
  /// Do not add or remove sinks, or replace modules, from here.
  virtual void OnCall(const MODULE_CALL& call) = 0;
};

}  // namespace quillpg
