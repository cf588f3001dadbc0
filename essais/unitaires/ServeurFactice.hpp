// ServeurFactice : une prise sur 127.0.0.1 qui répond ce que l’essai décide, y compris n’importe quoi.
#pragma once

#include <atomic>
#include <functional>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace keltrove::essais {

// Une connexion reçue. Les envois échouent sans bruit si l’autre bout est parti.
class Connexion {
public:
  Connexion(int prise, std::string recue) : requete(std::move(recue)), prise_(prise) {}
  bool envoyer(std::string_view octets) const;
  // Jusqu’à ce que l’autre bout ferme, ou `secondes` écoulées.
  void attendreSonDepart(double secondes) const;
  const std::string requete;

private:
  int prise_;
};

class ServeurFactice {
public:
  // `jouer` s’exécute sur un fil par connexion, une fois l’en-tête de la requête lu.
  explicit ServeurFactice(std::function<void(const Connexion&)> jouer);
  // Une même réponse HTTP à tout le monde.
  explicit ServeurFactice(std::string reponse);
  ServeurFactice(const ServeurFactice&) = delete;
  ServeurFactice& operator=(const ServeurFactice&) = delete;
  ~ServeurFactice();

  int port() const { return port_; }
  std::vector<std::string> requetes() const;

private:
  void accepter();

  std::function<void(const Connexion&)> jouer_;
  int prise_ = -1;
  int port_ = 0;
  mutable std::mutex verrou_; // les deux listes
  std::vector<std::string> requetes_;
  std::vector<std::thread> fils_;
  std::vector<int> ouvertes_;
  std::thread accueil_;
};

// Une réponse entière, avec sa longueur.
std::string reponseHTTP(std::string_view statut, std::string_view corps, std::string_view entetes = "");

} // namespace keltrove::essais
