// A relay in front of a server. It counts round trips, and can behave like a network that drops packets.
#pragma once

#include <atomic>
#include <cstdint>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace kxrestore::bench {

class Relay {
 public:
  // Relays from a free port of the loopback address to `host`, an IPv4 address.
  Relay(std::string host, int port);
  ~Relay();
  Relay(const Relay&) = delete;
  Relay& operator=(const Relay&) = delete;

  int Port() const { return m_port; }
  // How often clients have sent after they had received.
  std::int64_t RoundTrips() const { return m_roundTrips; }
  // While stalled, connections stay open and new ones are accepted, but nothing is forwarded.
  void Stall(bool stalled) { m_stalled = stalled; }

 private:
  struct Pair {
    int client, server;
    bool answered;
  };

  void Run();
  void Accept();
  bool Pass(Pair& pair, bool fromClient);  // false at the end of either side

  std::string m_host;
  int m_serverPort;
  int m_listener = -1, m_port = 0;
  std::vector<Pair> m_pairs;
  std::atomic<std::int64_t> m_roundTrips = 0;
  std::atomic<bool> m_stalled = false, m_stop = false;
  std::thread m_thread;
};

}  // namespace kxrestore::bench
