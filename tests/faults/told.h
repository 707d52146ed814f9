// How the campaign is driven and what it leaves: a sample of each sweep in a test run, more of it when the
// environment asks for more, and a line for each case in a table.
//
//   KX_FAULTS_SEED   seed of random choices (default 1)
//   KX_FAULTS_TIMES  density relative to the sample (default 1)
//   KX_FAULTS_TABLE  a file to which "case<tab>tried<tab>held" is added at the end of the program
#pragma once

#include <string>

namespace kxrestore::faults {

unsigned Seed();
unsigned Times();
// One trial of a case, and whether the guarantees held.
void Tell(const std::string& name, bool held);

}  // namespace kxrestore::faults
