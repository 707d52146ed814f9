// Fault injection: memory of C++, memory of the embedded database, or its files fail at a chosen call, once
// or from that call on. Linking this installs the hooks, which do nothing until Arm.
#pragma once

#include <functional>

namespace kxrestore::faults {

enum class Failing { kNothing, kMemory, kDatabaseMemory, kFiles, kFullDisk };

const char* NameOf(Failing failing);

// Makes the call with the number `at` fail, and with `forever` all later ones too. Calls of this kind are
// counted from 1; with 0 none fails.
void Arm(Failing failing, long at, bool forever);
// Ends the faults and returns the number of calls since Arm.
long Disarm();
// Whether any call has failed since Arm.
bool HasFailed();

// Runs `trial` with a fault in about `sample` of its calls, evenly distributed; KX_FAULTS_TIMES multiplies
// them. Faults happen once in one sweep and from the call on in a second one. The trial calls Arm itself and
// returns the number of calls.
void Sweep(long sample, const std::function<long(long at, bool forever)>& trial);

// Excludes this thread from faults and from the count during its lifetime: for code of the test itself.
class Pause {
 public:
  Pause();
  ~Pause();
  Pause(const Pause&) = delete;
  Pause& operator=(const Pause&) = delete;
};

}  // namespace kxrestore::faults
