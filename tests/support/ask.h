#pragma once

#include "quillpg/result_codes.h"

#include <gtest/gtest.h>

#include <type_traits>

namespace quillpg {

/// What a query puts into its reference argument, so that it can stand in an expectation; that the
/// query fails is a failure of the test.
template <typename Object, typename Class, typename Value>
Value Ask(const Object& object, Status (Class::*query)(Value&) const) {
  Value value{};
  EXPECT_EQ((object.*query)(value), S_OK);
  return value;
}

/// The same of a query with one argument in front.
template <typename Object, typename Class, typename Key, typename Value>
Value Ask(const Object& object, Status (Class::*query)(Key, Value&) const,
          const std::type_identity_t<Key>& key) {
  Value value{};
  EXPECT_EQ((object.*query)(key, value), S_OK);
  return value;
}

}  // namespace quillpg
