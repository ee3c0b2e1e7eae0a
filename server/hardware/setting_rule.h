#pragma once

#include "base/guard.h"
#include "hardware/hardware_library.h"
#include "quillpg/result_codes.h"

#include <cmath>
#include <functional>
#include <type_traits>

// The one rule by which every hardware setting is changed: send, ask for the last error, read back,
// ask for the last error, compare, store. Setters of CModule and CInstrument only name the variant
// and the two operations of the library.

namespace quillpg {

/// What a read-back that differs from the value sent means. It is looked at with real hardware
/// alone; without, the value asked for is stored.
enum class SettingRule {
  Exact,         ///< it fails and nothing is stored: enumerations, flags, whole steps
  KeepReadBack,  ///< it fails, yet the value read back is stored: levels, thresholds, clock period
  TakeReadBack,  ///< it never fails, the value read back is stored: slew rate, delay
};

enum class SettingOutcome {
  Refused,   ///< the library reported an error, or the value is not finite; nothing stored
  Differs,   ///< read back another value; stored by KeepReadBack only
  Accepted,  ///< stored
};

constexpr Status ToStatus(SettingOutcome outcome) {
  return outcome == SettingOutcome::Accepted ? S_OK : E_FAIL;
}

/// S_OK with real hardware, PG_E_NO_HARDWARE without, E_FAIL when the library cannot say.
Status AskHardwarePresent();

/// True when the library reports that the call before this one failed. Its text is dropped.
bool ReportsError(CSorrelModule& module);

/// Makes one call into the library; true when it neither reports an error nor throws.
template <typename Call>
bool Completes(CSorrelModule& module, const Call& call) {
  return GuardAllocation([&] {
           (void)call();  // GetLastError tells, not the status
           return ReportsError(module) ? E_FAIL : S_OK;
         }) == S_OK;
}

/// Converts between what the model stores and what the library takes; a setting whose units differ
/// brings a type of its own with the same two operations.
struct AsItIs {
  template <typename Stored, typename Wire>
  static Stored ToStored(Wire wire) {
    return static_cast<Stored>(wire);
  }
  template <typename Wire, typename Stored>
  static Wire ToWire(Stored stored) {
    return static_cast<Wire>(stored);
  }
};

/// False for a floating-point value that is not finite: it could never compare equal.
template <typename Wire>
bool IsSendable(Wire wire) {
  if constexpr (std::is_floating_point_v<Wire>) {
    return std::isfinite(wire);
  } else {
    return true;
  }
}

/// Sends `wire` to one module and stores into `held`: `value` on agreement, what was read back
/// where the rule says so. Values are compared in the type that travels, so a double that was sent
/// as a float is stored as the caller gave it. `send` and `receive` are operations of CSorrelModule
/// (or anything callable so), `place` what they take before the value: pod letter, channel, index.
template <typename Conversion = AsItIs, typename Wire, typename Stored, typename Send,
          typename Receive, typename... Place>
SettingOutcome ApplySetting(CSorrelModule& module, SettingRule rule, Wire wire, Stored value,
                            Stored& held, const Send& send, const Receive& receive,
                            Place... place) {
  if (!IsSendable(wire)) return SettingOutcome::Refused;
  const auto sent = [&] { return std::invoke(send, module, place..., wire); };
  Wire readBack = wire;
  const auto received = [&] { return std::invoke(receive, module, place..., readBack); };
  if (!Completes(module, sent) || !Completes(module, received) || !IsSendable(readBack)) {
    return SettingOutcome::Refused;
  }

  if (AskHardwarePresent() != S_OK) {
    held = value;
    return SettingOutcome::Accepted;
  }
  if (rule == SettingRule::TakeReadBack) {
    held = Conversion::template ToStored<Stored>(readBack);
    return SettingOutcome::Accepted;
  }
  if (readBack == wire) {
    held = value;
    return SettingOutcome::Accepted;
  }
  if (rule == SettingRule::KeepReadBack) held = Conversion::template ToStored<Stored>(readBack);
  return SettingOutcome::Differs;
}

/// ApplySetting on every module of `modules` (a range of CSorrelModule*; null ones are skipped).
/// `held` gets `value` once all of them accepted it. The first module that does not ends the walk;
/// modules before it keep what they were sent, and `held` changes as ApplySetting says. `accepted`
/// is called with each module right after it took the value.
template <typename Modules, typename Value, typename Send, typename Receive, typename Accepted>
SettingOutcome ApplySettingToAll(const Modules& modules, SettingRule rule, Value value, Value& held,
                                 const Send& send, const Receive& receive,
                                 const Accepted& accepted) {
  if (!IsSendable(value)) return SettingOutcome::Refused;
  for (CSorrelModule* module : modules) {
    if (!module) continue;
    Value taken = held;
    const SettingOutcome outcome = ApplySetting(*module, rule, value, value, taken, send, receive);
    if (outcome != SettingOutcome::Accepted) {
      held = taken;
      return outcome;
    }
    accepted(*module);
  }
  held = value;
  return SettingOutcome::Accepted;
}

template <typename Modules, typename Value, typename Send, typename Receive>
SettingOutcome ApplySettingToAll(const Modules& modules, SettingRule rule, Value value, Value& held,
                                 const Send& send, const Receive& receive) {
  return ApplySettingToAll(modules, rule, value, held, send, receive, [](CSorrelModule&) {});
}

/// Reads one setting into `held`, which stays as it is when the library reports an error (false) or
/// leaves its output untouched.
template <typename Wire, typename Conversion = AsItIs, typename Stored, typename Receive,
          typename... Place>
bool ReadSetting(CSorrelModule& module, Stored& held, const Receive& receive, Place... place) {
  Wire wire = Conversion::template ToWire<Wire>(held);
  const auto received = [&] { return std::invoke(receive, module, place..., wire); };
  if (!Completes(module, received) || !IsSendable(wire)) return false;
  held = Conversion::template ToStored<Stored>(wire);
  return true;
}

}  // namespace quillpg
