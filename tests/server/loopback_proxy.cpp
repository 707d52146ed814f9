#include "tests/server/loopback_proxy.h"

#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <stdexcept>

namespace kxrestore::server_test {
namespace {

sockaddr_in Loopback(unsigned short port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  return address;
}

// Whether there was something to forward.
bool Forward(int from, int to) {
  char buffer[16384];
  const ssize_t size = recv(from, buffer, sizeof buffer, 0);
  for (ssize_t sent = 0; sent < size;) {
    const ssize_t now = send(to, buffer + sent, static_cast<std::size_t>(size - sent), MSG_NOSIGNAL);
    if (now <= 0) return false;
    sent += now;
  }
  return size > 0;
}

}  // namespace

LoopbackProxy::LoopbackProxy(const std::string& server)
    : m_serverPort(static_cast<unsigned short>(std::stoi(server.substr(server.find('=') + 1)))) {
  m_listener = socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address = Loopback(0);
  socklen_t size = sizeof address;
  if (bind(m_listener, reinterpret_cast<sockaddr*>(&address), size) != 0 || listen(m_listener, 16) != 0 ||
      getsockname(m_listener, reinterpret_cast<sockaddr*>(&address), &size) != 0) {
    throw std::runtime_error("no port for a proxy");
  }
  m_port = ntohs(address.sin_port);
  m_thread = std::thread([this] { Serve(); });
}

LoopbackProxy::~LoopbackProxy() {
  m_ending = true;
  m_thread.join();
  close(m_listener);
  for (const Pair& pair : m_pairs) {
    close(pair.client);
    close(pair.server);
  }
}

void LoopbackProxy::Serve() {
  while (!m_ending) {
    if (m_swallowing) {  // connections are made by the system all the same
      usleep(5000);
      continue;
    }
    std::vector<pollfd> waiting{{m_listener, POLLIN, 0}};
    for (const Pair& pair : m_pairs) {
      waiting.push_back({pair.client, POLLIN, 0});
      waiting.push_back({pair.server, POLLIN, 0});
    }
    if (poll(waiting.data(), waiting.size(), 5) <= 0 || m_swallowing) continue;
    std::vector<Pair> kept;
    for (std::size_t i = 0; i < m_pairs.size(); ++i) {
      const Pair& pair = m_pairs[i];
      const bool alive = (waiting[1 + 2 * i].revents == 0 || Forward(pair.client, pair.server)) &&
                         (waiting[2 + 2 * i].revents == 0 || Forward(pair.server, pair.client));
      if (alive) {
        kept.push_back(pair);
      } else {
        close(pair.client);
        close(pair.server);
      }
    }
    m_pairs = std::move(kept);
    if ((waiting[0].revents & POLLIN) == 0) continue;
    Pair made{accept(m_listener, nullptr, nullptr), socket(AF_INET, SOCK_STREAM, 0)};
    sockaddr_in address = Loopback(m_serverPort);
    if (connect(made.server, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) {
      close(made.client);
      close(made.server);
      continue;
    }
    m_pairs.push_back(made);
    ++m_accepted;
  }
}

}  // namespace kxrestore::server_test
