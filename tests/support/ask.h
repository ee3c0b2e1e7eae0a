#pragma once

#include "quillpg/result_codes.h"

#include <gtest/gtest.h>

#include <string>
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

/// The same of a query with arguments in front.
template <typename Object, typename Class, typename Key, typename Value>
Value Ask(const Object& object, Status (Class::*query)(Key, Value&) const,
          const std::type_identity_t<Key>& key) {
  Value value{};
  EXPECT_EQ((object.*query)(key, value), S_OK);
  return value;
}

/// The object that a query hands out; null where there is none, whatever the status.
template <typename Object, typename Class, typename Found>
Found* Find(Object& object, Status (Class::*query)(Found**)) {
  Found* found = nullptr;
  (void)(object.*query)(&found);
  return found;
}
template <typename Object, typename Class, typename Found>
Found* Find(const Object& object, Status (Class::*query)(Found**) const) {
  Found* found = nullptr;
  (void)(object.*query)(&found);
  return found;
}
template <typename Object, typename Class, typename Found>
Found* Find(const Object& object, Status (Class::*query)(int, Found**) const, int position) {
  Found* found = nullptr;
  (void)(object.*query)(position, &found);
  return found;
}
template <typename Object, typename Class, typename Found>
Found* Find(Object& object, Status (Class::*query)(int, Found**), int position) {
  Found* found = nullptr;
  (void)(object.*query)(position, &found);
  return found;
}
template <typename Object, typename Class, typename Found>
Found* Find(const Object& object, Status (Class::*query)(const std::string&, Found**) const,
            const std::string& name) {
  Found* found = nullptr;
  (void)(object.*query)(name, &found);
  return found;
}

}  // namespace quillpg
