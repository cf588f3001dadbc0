// Memoire : un grand fichier entier en mémoire, rendue au système aussitôt après.
#pragma once

#include <cstddef>
#include <functional>
#include <span>

namespace keltrove::verification {

class Memoire {
public:
  // Projette le fichier ; là où le système de fichiers ne le permet pas, le lit.
  Memoire(int descripteur, std::size_t taille);
  Memoire(const Memoire&) = delete;
  Memoire& operator=(const Memoire&) = delete;
  ~Memoire();

  // Confie les octets à `usage` et rend sa réponse ; faux si le fichier est illisible, ou s’il rétrécit sous
  // lui. Un fil à la fois.
  bool confier(const std::function<bool(std::span<const char>)>& usage) const;

private:
  char* octets_ = nullptr;
  std::size_t taille_;
};

// Lit exactement ces octets ; faux s’il en manque.
bool lireExactement(int descripteur, std::span<char> octets);

} // namespace keltrove::verification
