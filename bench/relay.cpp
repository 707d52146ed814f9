#include "bench/relay.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <cstddef>

#include "base/error.h"

namespace kxrestore::bench {
namespace {

constexpr int kWait = 5;  // milliseconds between checks for a stall or the end

sockaddr_in Address(const std::string& host, int port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<std::uint16_t>(port));
  if (inet_pton(AF_INET, host.c_str(), &address.sin_addr) != 1)
    throw Error(1, "'" + host + "' is no address");
  return address;
}

void SendAtOnce(int socket) {
  const int on = 1;
  setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
}

}  // namespace

Relay::Relay(std::string host, int port) : m_host(std::move(host)), m_serverPort(port) {
  sockaddr_in address = Address("127.0.0.1", 0);
  auto* plain = reinterpret_cast<sockaddr*>(&address);
  socklen_t size = sizeof address;
  m_listener = socket(AF_INET, SOCK_STREAM, 0);
  if (bind(m_listener, plain, size) != 0 || listen(m_listener, 16) != 0 ||
      getsockname(m_listener, plain, &size) != 0) {
    close(m_listener);
    throw Error(1, "there is no port to relay from");
  }
  m_port = ntohs(address.sin_port);
  m_thread = std::thread([this] { Run(); });
}

Relay::~Relay() {
  m_stop = true;
  m_thread.join();
  close(m_listener);
  for (const Pair& pair : m_pairs) {
    close(pair.client);
    close(pair.server);
  }
}

void Relay::Accept() {
  const int client = accept(m_listener, nullptr, nullptr);
  const int server = socket(AF_INET, SOCK_STREAM, 0);
  const sockaddr_in address = Address(m_host, m_serverPort);
  if (client < 0 || connect(server, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
    close(client);
    close(server);
    return;
  }
  SendAtOnce(client);
  SendAtOnce(server);
  m_pairs.push_back({client, server, true});
}

bool Relay::Pass(Pair& pair, bool fromClient) {
  char bytes[1 << 16];
  const ssize_t count = recv(fromClient ? pair.client : pair.server, bytes, sizeof bytes, 0);
  if (count <= 0) return false;
  if (fromClient && pair.answered) ++m_roundTrips;
  pair.answered = !fromClient;
  for (ssize_t sent = 0; sent < count;) {
    const ssize_t more = send(fromClient ? pair.server : pair.client, bytes + sent,
                              static_cast<std::size_t>(count - sent), MSG_NOSIGNAL);
    if (more <= 0) return false;
    sent += more;
  }
  return true;
}

void Relay::Run() {
  while (!m_stop) {
    if (m_stalled) {
      std::this_thread::sleep_for(std::chrono::milliseconds(kWait));
      continue;
    }
    std::vector<pollfd> waiting = {{m_listener, POLLIN, 0}};
    for (const Pair& pair : m_pairs) {
      waiting.push_back({pair.client, POLLIN, 0});
      waiting.push_back({pair.server, POLLIN, 0});
    }
    if (poll(waiting.data(), waiting.size(), kWait) <= 0 || m_stalled) continue;
    for (std::size_t i = m_pairs.size(); i-- > 0;) {
      const bool goesOn = (waiting[2 * i + 1].revents == 0 || Pass(m_pairs[i], true)) &&
                          (waiting[2 * i + 2].revents == 0 || Pass(m_pairs[i], false));
      if (goesOn) continue;
      close(m_pairs[i].client);
      close(m_pairs[i].server);
      m_pairs.erase(m_pairs.begin() + static_cast<std::ptrdiff_t>(i));
    }
    if (waiting[0].revents != 0) Accept();
  }
}

}  // namespace kxrestore::bench
