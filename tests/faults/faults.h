// One thing that fails at a chosen call, once or from then on: memory for C++, memory for the embedded
// database, or its files. The hooks are in every program that links this, and do nothing until something is
// armed.
#pragma once

#include <functional>

namespace kxrestore::faults {

enum class Failing { kNothing, kMemory, kDatabaseMemory, kFiles, kFullDisk };

const char* NameOf(Failing failing);

// From now on the call number `at` (from 1; 0 for none) of this kind fails.
void Arm(Failing failing, long at, bool forever);
// Nothing fails any more. Returns how many calls of the armed kind there were.
long Disarm();
// Whether any call has failed since Arm.
bool HasFailed();

// Runs `trial` with a fault at some `sample` of its calls, or more when the environment asks for more: first
// in that call alone, then from it on. The trial arms the fault itself, for `at` 0 none, and returns the
// number of calls.
void Sweep(long sample, const std::function<long(long at, bool forever)>& trial);

// During its lifetime, nothing on this thread fails or counts: for code around the code under test.
class Pause {
 public:
  Pause();
  ~Pause();
  Pause(const Pause&) = delete;
  Pause& operator=(const Pause&) = delete;
};

}  // namespace kxrestore::faults
