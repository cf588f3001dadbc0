// Memoire : un grand fichier entier en mémoire, rendue au système aussitôt après.
//
// Lire la projection d’un fichier que quelqu’un raccourcit lève SIGBUS : confier() en fait un échec, et
// détourne pour cela ce signal dans tout le processus, le temps de son appel.
#pragma once

#include <cstddef>
#include <functional>
#include <span>

namespace keltrove::verification {

class Memoire {
public:
  // Projette le fichier ; là où le système de fichiers ne le permet pas, le lit, s’il tient dans la mémoire
  // de la machine. Le descripteur reste à l’appelant. Un échec se sait à confier().
  Memoire(int descripteur, std::size_t taille);
  Memoire(const Memoire&) = delete;
  Memoire& operator=(const Memoire&) = delete;
  ~Memoire();

  // Confie les octets à `usage` et rend sa réponse ; faux si le fichier est illisible, ou s’il rétrécit sous
  // lui : `usage` est alors quitté sans que rien n’y soit détruit, et ne doit donc rien posséder. Un fil à la
  // fois dans tout le processus.
  bool confier(const std::function<bool(std::span<const char>)>& usage) const;

private:
  char* octets_ = nullptr;
  std::size_t taille_;
};

// Lit exactement ces octets, de là où en est le descripteur ; faux s’il en manque.
bool lireExactement(int descripteur, std::span<char> octets);

} // namespace keltrove::verification
