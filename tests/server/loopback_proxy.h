// A proxy on the loopback address between the driver and the server, which can stop forwarding, as a network
// does that swallows packets.
#pragma once

#include <atomic>
#include <string>
#include <thread>
#include <vector>

namespace kxrestore::server_test {

class LoopbackProxy {
 public:
  // `server`: "127.0.0.1;PORT=N".
  explicit LoopbackProxy(const std::string& server);
  ~LoopbackProxy();
  LoopbackProxy(const LoopbackProxy&) = delete;
  LoopbackProxy& operator=(const LoopbackProxy&) = delete;

  std::string Server() const { return "127.0.0.1;PORT=" + std::to_string(m_port); }
  void Swallow(bool swallow) { m_swallowing = swallow; }
  std::size_t Connections() const { return m_accepted; }

 private:
  struct Pair {
    int client = -1, server = -1;
  };
  void Serve();

  int m_listener = -1;
  unsigned short m_port = 0, m_serverPort = 0;
  std::atomic<bool> m_swallowing{false}, m_ending{false};
  std::atomic<std::size_t> m_accepted{0};
  std::vector<Pair> m_pairs;
  std::thread m_thread;
};

}  // namespace kxrestore::server_test
