#include <gtest/gtest.h>

#include "tests/faults/faults.h"

int main(int count, char** words) {
  kxrestore::faults::InstallFaults();
  testing::InitGoogleTest(&count, words);
  return RUN_ALL_TESTS();
}
