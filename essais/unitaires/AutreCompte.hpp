// AutreCompte : un serveur tenu par un autre compte de la machine, dans un processus à lui. Demande
// d’être administrateur.
#pragma once

#include <string>

#include <sys/types.h>

namespace keltrove::essais {

class AutreCompte {
public:
  // Écoute sur cette adresse, IPv4 ou IPv6, et sur ce port (0 : un port libre) ; répond `reponse` à tous.
  AutreCompte(const char* adresse, int port, const std::string& reponse);
  AutreCompte(const AutreCompte&) = delete;
  AutreCompte& operator=(const AutreCompte&) = delete;
  ~AutreCompte();

  int port() const { return port_; } // 0 si l’adresse ou l’autre compte n’a pas pu être pris
  int connexions() const;            // jusqu’ici

private:
  pid_t pid_ = -1;
  int port_ = 0;
  int nouvelles_ = -1; // le port, puis un octet par connexion
  mutable int connexions_ = 0;
};

} // namespace keltrove::essais
