#include "MaisonTemporaire.hpp"

#include "Prise.hpp"
#include "moteur/ArbreProcessus.hpp"

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace keltrove::essais {

namespace fs = std::filesystem;

int portLibre() {
  const int prise = ouvrirUnePrise(AF_INET);
  sockaddr_in adresse{};
  adresse.sin_family = AF_INET;
  adresse.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t taille = sizeof adresse;
  auto* generique = reinterpret_cast<sockaddr*>(&adresse);
  const bool lue = ::bind(prise, generique, taille) == 0 && ::getsockname(prise, generique, &taille) == 0;
  ::close(prise);
  return lue ? ntohs(adresse.sin_port) : 0;
}

MaisonTemporaire::MaisonTemporaire() : port_(portLibre()) {
  auto modele = (fs::temp_directory_path() / "maison d’été XXXXXX").string();
  racine_ = ::mkdtemp(modele.data());
  if (const char* maison = std::getenv("HOME")) ancienneMaison_ = maison;
  ::setenv("HOME", racine_.c_str(), 1);
  ecrire(".zelcor/keltrove.json", "{\"port\": " + std::to_string(port_) + "}");
}

MaisonTemporaire::~MaisonTemporaire() {
  for (const auto enfant : moteur::descendants(::getpid(), 1))
    ::kill(enfant, SIGKILL);
  ::setenv("HOME", ancienneMaison_.c_str(), 1);
  std::error_code ignoree;
  fs::remove_all(racine_, ignoree);
}

void MaisonTemporaire::ecrire(std::string_view relatif, std::string_view contenu) const {
  fs::create_directories(fs::path(chemin(relatif)).parent_path());
  std::ofstream(chemin(relatif), std::ios::binary) << contenu;
}

void MaisonTemporaire::ecrireExecutable(std::string_view relatif, std::string_view contenu) const {
  ecrire(relatif, contenu);
  fs::permissions(chemin(relatif), fs::perms::owner_all);
}

void MaisonTemporaire::effacer(std::string_view relatif) const {
  fs::remove_all(chemin(relatif));
}

std::string MaisonTemporaire::lire(std::string_view relatif) const {
  std::ifstream fichier(chemin(relatif), std::ios::binary);
  return {std::istreambuf_iterator<char>(fichier), {}};
}

} // namespace keltrove::essais
