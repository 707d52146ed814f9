// One thing that fails at a chosen call, once or from then on: memory for C++, memory for the embedded
// database, or its files. Each program that links this has the hooks in it; they do nothing until something
// is armed.
//
// Call InstallFaults before anything else uses the embedded database.
#pragma once

#include <string>

namespace kxrestore::faults {

enum class Failing { kNothing, kMemory, kDatabaseMemory, kFiles, kFullDisk };

void InstallFaults();

// From now on the call number `at` (from 1; 0 for none) of this kind fails.
void Arm(Failing failing, long at, bool forever);
// Nothing fails any more. How many calls of the armed kind there were.
long Disarm();
// Whether any call has failed since Arm.
bool HasFailed();

// During its lifetime, nothing on this thread fails or counts: for code around the code under test.
class Pause {
 public:
  Pause();
  ~Pause();
  Pause(const Pause&) = delete;
  Pause& operator=(const Pause&) = delete;
};

}  // namespace kxrestore::faults
