// Memoire : de la place pour un grand fichier entier, rendue au système aussitôt après.
#pragma once

#include <cstddef>

namespace keltrove::verification {

class Memoire {
public:
  explicit Memoire(std::size_t taille);
  Memoire(const Memoire&) = delete;
  Memoire& operator=(const Memoire&) = delete;
  ~Memoire();

  // Nul si la machine n’a pas cette place.
  char* octets() const { return octets_; }

private:
  std::size_t taille_;
  char* octets_ = nullptr;
};

} // namespace keltrove::verification
