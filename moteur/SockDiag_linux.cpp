#include "moteur/SockDiag_linux.hpp"

#include "socle/Descripteur.hpp"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <span>

#include <arpa/inet.h>
#include <linux/inet_diag.h>
#include <linux/netlink.h>
#include <linux/sock_diag.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

namespace keltrove::moteur {
namespace {

constexpr std::size_t tailleDUneReponse = 32UL * 1024; // le noyau n’en fait pas de plus grande

struct Question {
  nlmsghdr entete;
  inet_diag_req_v2 quoi;
};

enum class Lecture { continue_, finie, ratee };

PriseALEcoute priseDe(const inet_diag_msg& recue) {
  PriseALEcoute prise{.adresse = {},
                      .port = ntohs(recue.id.idiag_sport),
                      .compte = recue.idiag_uid,
                      .numero = std::to_string(recue.idiag_inode)};
  const bool courte = recue.idiag_family == AF_INET;
  const std::size_t debut = courte ? 12 : 0;
  if (courte) prise.adresse[10] = prise.adresse[11] = 0xff;
  std::memcpy(prise.adresse.data() + debut, &recue.id.idiag_src, prise.adresse.size() - debut);
  return prise;
}

bool demander(int prise, std::uint8_t famille) {
  Question question{};
  question.entete.nlmsg_len = sizeof question;
  question.entete.nlmsg_type = SOCK_DIAG_BY_FAMILY;
  question.entete.nlmsg_flags = NLM_F_REQUEST | NLM_F_DUMP;
  question.quoi.sdiag_family = famille;
  question.quoi.sdiag_protocol = IPPROTO_TCP;
  question.quoi.idiag_states = 1U << TCP_LISTEN;
  return ::send(prise, &question, sizeof question, 0) == sizeof question;
}

// Une réponse interrompue finit comme une autre, sur un code d’erreur.
bool estEntiere(std::span<const char> fin) {
  int code = 0;
  if (fin.size() < NLMSG_HDRLEN + sizeof code) return false;
  std::memcpy(&code, fin.data() + NLMSG_HDRLEN, sizeof code);
  return code >= 0;
}

Lecture lire(std::span<const char> recu, std::vector<PriseALEcoute>& prises) {
  while (recu.size() >= sizeof(nlmsghdr)) {
    nlmsghdr entete{};
    std::memcpy(&entete, recu.data(), sizeof entete);
    if (entete.nlmsg_len < sizeof entete || entete.nlmsg_len > recu.size()) return Lecture::ratee;
    if (entete.nlmsg_type == NLMSG_DONE) return estEntiere(recu) ? Lecture::finie : Lecture::ratee;
    if (entete.nlmsg_type != SOCK_DIAG_BY_FAMILY || entete.nlmsg_len < NLMSG_LENGTH(sizeof(inet_diag_msg)))
      return Lecture::ratee;
    inet_diag_msg message{};
    std::memcpy(&message, recu.data() + NLMSG_HDRLEN, sizeof message);
    prises.push_back(priseDe(message));
    recu = recu.subspan(std::min<std::size_t>(NLMSG_ALIGN(entete.nlmsg_len), recu.size()));
  }
  return Lecture::continue_;
}

bool ajouterCellesDe(int prise, std::uint8_t famille, std::vector<PriseALEcoute>& prises) {
  if (!demander(prise, famille)) return false;
  std::vector<char> place(tailleDUneReponse);
  auto lecture = Lecture::continue_;
  while (lecture == Lecture::continue_) {
    const auto recu = ::recv(prise, place.data(), place.size(), MSG_TRUNC);
    if (recu < 0 && errno == EINTR) continue;
    if (recu <= 0 || static_cast<std::size_t>(recu) > place.size()) return false;
    lecture = lire({place.data(), static_cast<std::size_t>(recu)}, prises);
  }
  return lecture == Lecture::finie;
}

} // namespace

std::optional<std::vector<PriseALEcoute>> ecoutesParSockDiag() {
  const socle::Descripteur prise(::socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC, NETLINK_SOCK_DIAG));
  std::vector<PriseALEcoute> prises;
  if (!prise || !ajouterCellesDe(prise.numero(), AF_INET, prises) ||
      !ajouterCellesDe(prise.numero(), AF_INET6, prises))
    return std::nullopt;
  return prises;
}

} // namespace keltrove::moteur
