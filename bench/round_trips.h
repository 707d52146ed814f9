// A relay in front of a server that counts round trips: how often the client sends after it has received.
#pragma once

#include <atomic>
#include <cstdint>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace kxrestore::bench {

class RoundTrips {
 public:
  // Relays from a free port of the loopback address.
  RoundTrips(const std::string& host, int port);
  ~RoundTrips();
  RoundTrips(const RoundTrips&) = delete;
  RoundTrips& operator=(const RoundTrips&) = delete;

  int Port() const { return m_port; }
  std::int64_t Count() const { return m_count; }

 private:
  struct Pair {
    int client, server;
    bool answered;
  };

  void Relay();
  void Accept();
  bool Pass(Pair& pair, bool fromClient);  // false at the end of either side

  std::string m_host;
  int m_serverPort;
  int m_listener = -1, m_port = 0;
  std::vector<Pair> m_pairs;
  std::atomic<std::int64_t> m_count = 0;
  std::atomic<bool> m_stop = false;
  std::thread m_thread;
};

}  // namespace kxrestore::bench
