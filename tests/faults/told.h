// The settings of the fault tests, and the table of their results. The environment sets:
//
//   KX_FAULTS_SEED   the seed of random choices (default 1)
//   KX_FAULTS_TIMES  how many times more faults are tried than in a normal test run (default 1)
//   KX_FAULTS_TABLE  a file to which the program appends "case<tab>tried<tab>held" for each case when it ends
#pragma once

#include <string>

namespace kxrestore::faults {

unsigned Seed();
unsigned Times();
// Counts one trial of a case, and whether its guarantees held.
void Tell(const std::string& name, bool held);

}  // namespace kxrestore::faults
