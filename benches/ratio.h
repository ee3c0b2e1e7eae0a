#pragma once

#include <functional>
#include <string>

namespace quillpg::bench {

using Work = std::function<void()>;

/// Compares two ways of doing the same work, run interleaved. Prints
/// `ratio NAME VALUE`: median time of `plain` over median time of `engine`.
/// `least` is the value below which the bench program ends with an error.
void RegisterRatio(const std::string& name, double least, Work plain, Work engine);

/// Prints `ratio NAME VALUE`: median time of `engine` over median time of `reference`; a cost, with
/// no least value.
void RegisterCost(const std::string& name, Work engine, Work reference);

}  // namespace quillpg::bench
