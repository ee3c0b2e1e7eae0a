#pragma once

#include <span>
#include <string_view>

namespace quillpg {

/// The lines with which a simulation configuration file begins, without line ends: what it is, how
/// to edit it, its syntax, and the directives that hold for all modules.
std::span<const std::string_view> VisaStubHeader();

}  // namespace quillpg
