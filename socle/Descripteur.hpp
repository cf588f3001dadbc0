// Descripteur : un descripteur de fichier et son propriétaire, qui le ferme.
//
// Négatif, il n’en est pas un : ce que rend une ouverture refusée se confie donc tel quel.
#pragma once

#include <utility>

#include <unistd.h>

namespace keltrove::socle {

class Descripteur {
public:
  Descripteur() = default;
  explicit Descripteur(int numero) : numero_(numero) {}
  Descripteur(Descripteur&& autre) noexcept : numero_(std::exchange(autre.numero_, -1)) {}
  Descripteur& operator=(Descripteur&& autre) noexcept {
    if (this != &autre) {
      fermer();
      numero_ = std::exchange(autre.numero_, -1);
    }
    return *this;
  }
  ~Descripteur() { fermer(); }

  // Prêté : reste à nous de le fermer.
  int numero() const { return numero_; }
  explicit operator bool() const { return numero_ >= 0; }
  // Faux si le système refuse : des écritures peuvent alors être perdues. Une seconde fois, ne fait rien.
  bool fermer() { return numero_ < 0 || ::close(std::exchange(numero_, -1)) == 0; }

private:
  int numero_ = -1;
};

} // namespace keltrove::socle
