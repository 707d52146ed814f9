// Expects a statement to raise the component's error with this number.
#pragma once

#include <gtest/gtest.h>

#include "base/error.h"

namespace kxrestore {

template <typename Statement>
int NumberRaisedBy(Statement statement) {
  try {
    statement();
  } catch (const Error& error) {
    return error.Number();
  }
  return 0;
}

}  // namespace kxrestore

#define EXPECT_RAISES(number, statement) EXPECT_EQ(number, kxrestore::NumberRaisedBy([&] { statement; }))
