// A line to the test server that can be cut: passes on what comes to a free port of its own, until it is cut.
#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace kxrestore::dialog_test {

class CutLine {
 public:
  explicit CutLine(std::uint16_t target) : m_target(target) { Mend(); }
  ~CutLine() { Cut(); }
  CutLine(const CutLine&) = delete;
  CutLine& operator=(const CutLine&) = delete;

  std::uint16_t Port() const { return m_port; }

  // Ends all connections and refuses new ones.
  void Cut() {
    m_cut = true;
    if (m_thread.joinable()) m_thread.join();
  }
  void Mend() {
    m_cut = false;
    Socket listener;
    const int yes = 1;
    setsockopt(listener.handle, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
    sockaddr_in address = Address(m_port);
    socklen_t size = sizeof address;
    if (bind(listener.handle, reinterpret_cast<sockaddr*>(&address), size) != 0 ||
        listen(listener.handle, 8) != 0) {
      throw std::runtime_error("the port is taken");
    }
    getsockname(listener.handle, reinterpret_cast<sockaddr*>(&address), &size);
    m_port = ntohs(address.sin_port);
    m_thread = std::thread([this, entry = std::move(listener)] { PassOn(entry); });
  }

 private:
  struct Socket {
    explicit Socket(int opened = socket(AF_INET, SOCK_STREAM, 0)) : handle(opened) {}
    Socket(Socket&& other) noexcept : handle(std::exchange(other.handle, -1)) {}
    Socket& operator=(Socket&& other) noexcept {
      std::swap(handle, other.handle);
      return *this;
    }
    ~Socket() {
      if (handle >= 0) close(handle);
    }
    int handle;
  };
  struct Pair {
    Socket client, server;
  };

  static sockaddr_in Address(std::uint16_t port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
  }

  // Passes on what has come; false at the end.
  static bool Pass(const Socket& from, const Socket& to) {
    char buffer[16384];
    const ssize_t count = recv(from.handle, buffer, sizeof buffer, 0);
    for (ssize_t sent = 0; sent < count;) {
      const ssize_t now =
          send(to.handle, buffer + sent, static_cast<std::size_t>(count - sent), MSG_NOSIGNAL);
      if (now <= 0) return false;
      sent += now;
    }
    return count > 0;
  }

  void PassOn(const Socket& entry) {
    std::vector<Pair> pairs;
    while (!m_cut) {
      std::vector<pollfd> polled = {{entry.handle, POLLIN, 0}};
      for (const Pair& pair : pairs) {
        polled.push_back({pair.client.handle, POLLIN, 0});
        polled.push_back({pair.server.handle, POLLIN, 0});
      }
      if (poll(polled.data(), polled.size(), 5) <= 0 || m_cut) continue;
      for (std::size_t i = pairs.size(); i-- > 0;) {
        const bool goesOn = (!polled[2 * i + 1].revents || Pass(pairs[i].client, pairs[i].server)) &&
                            (!polled[2 * i + 2].revents || Pass(pairs[i].server, pairs[i].client));
        if (!goesOn) pairs.erase(pairs.begin() + static_cast<std::ptrdiff_t>(i));
      }
      if (polled[0].revents == 0) continue;
      Pair pair{Socket(accept(entry.handle, nullptr, nullptr)), Socket()};
      const sockaddr_in address = Address(m_target);
      if (connect(pair.server.handle, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0) {
        pairs.push_back(std::move(pair));
      }
    }
  }

  std::uint16_t m_target, m_port = 0;
  std::atomic<bool> m_cut = false;
  std::thread m_thread;
};

}  // namespace kxrestore::dialog_test
