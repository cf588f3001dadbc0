#include "ServeurFactice.hpp"

#include "Prise.hpp"

#include <csignal>
#include <utility>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace keltrove::essais {
namespace {

std::string lireLaRequete(int prise) {
  std::string requete;
  char bloc[4096];
  while (!requete.contains("\r\n\r\n")) {
    const auto lus = ::recv(prise, bloc, sizeof bloc, 0);
    if (lus <= 0) break;
    requete.append(bloc, static_cast<std::size_t>(lus));
  }
  return requete;
}

} // namespace

bool Connexion::envoyer(std::string_view octets) const {
  while (!octets.empty()) {
    const auto envoyes = ::send(prise_, octets.data(), octets.size(), 0);
    if (envoyes <= 0) return false;
    octets.remove_prefix(static_cast<std::size_t>(envoyes));
  }
  return true;
}

void Connexion::attendreSonDepart(double secondes) const {
  pollfd attente{.fd = prise_, .events = POLLIN, .revents = 0};
  ::poll(&attente, 1, static_cast<int>(secondes * 1000));
}

ServeurFactice::ServeurFactice(std::string reponse)
    : ServeurFactice(
          [reponse = std::move(reponse)](const Connexion& connexion) { connexion.envoyer(reponse); }) {}

ServeurFactice::ServeurFactice(std::function<void(const Connexion&)> jouer) : jouer_(std::move(jouer)) {
  ::signal(SIGPIPE, SIG_IGN); // un client parti ne nous emporte pas
  prise_ = ouvrirUnePrise(AF_INET);
  sockaddr_in adresse{};
  adresse.sin_family = AF_INET;
  adresse.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t taille = sizeof adresse;
  auto* generique = reinterpret_cast<sockaddr*>(&adresse);
  if (::bind(prise_, generique, taille) != 0 || ::listen(prise_, 16) != 0) return;
  ::getsockname(prise_, generique, &taille);
  port_ = ntohs(adresse.sin_port);
  accueil_ = std::thread([this] { accepter(); });
}

ServeurFactice::~ServeurFactice() {
  ::shutdown(prise_, SHUT_RDWR);
  if (accueil_.joinable()) accueil_.join();
  {
    const std::lock_guard garde(verrou_);
    for (const int ouverte : ouvertes_)
      ::shutdown(ouverte, SHUT_RDWR);
  }
  for (auto& fil : fils_)
    fil.join();
  for (const int ouverte : ouvertes_)
    ::close(ouverte);
  ::close(prise_);
}

void ServeurFactice::accepter() {
  for (;;) {
    const int prise = ::accept(prise_, nullptr, nullptr);
    if (prise < 0) return;
    const std::lock_guard garde(verrou_);
    ouvertes_.push_back(prise);
    fils_.emplace_back([this, prise] {
      const Connexion connexion(prise, lireLaRequete(prise));
      {
        const std::lock_guard liste(verrou_);
        requetes_.push_back(connexion.requete);
      }
      jouer_(connexion);
      ::shutdown(prise, SHUT_RDWR);
    });
  }
}

std::vector<std::string> ServeurFactice::requetes() const {
  const std::lock_guard garde(verrou_);
  return requetes_;
}

std::string reponseHTTP(std::string_view statut, std::string_view corps, std::string_view entetes) {
  return "HTTP/1.1 " + std::string(statut) + "\r\nContent-Length: " + std::to_string(corps.size()) + "\r\n" +
         std::string(entetes) + "Connection: close\r\n\r\n" + std::string(corps);
}

} // namespace keltrove::essais
