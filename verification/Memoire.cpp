#include "verification/Memoire.hpp"

#include <cerrno>
#include <csetjmp>
#include <csignal>

#include <sys/mman.h>
#include <unistd.h>

namespace keltrove::verification {
namespace {

// Lire la projection d’un fichier que quelqu’un raccourcit lève SIGBUS : ce garde en fait un échec.
sigjmp_buf retour;

class GardeDeSIGBUS {
public:
  GardeDeSIGBUS() {
    struct sigaction action{};
    action.sa_handler = [](int) { siglongjmp(retour, 1); };
    ::sigaction(SIGBUS, &action, &avant_);
  }
  GardeDeSIGBUS(const GardeDeSIGBUS&) = delete;
  GardeDeSIGBUS& operator=(const GardeDeSIGBUS&) = delete;
  ~GardeDeSIGBUS() { ::sigaction(SIGBUS, &avant_, nullptr); }

private:
  struct sigaction avant_{};
};

// Le système promet volontiers plus qu’il n’a, puis tue qui s’en sert.
std::size_t memoireDeLaMachine() {
  const auto pages = ::sysconf(_SC_PHYS_PAGES);
  const auto page = ::sysconf(_SC_PAGESIZE);
  return pages > 0 && page > 0 ? static_cast<std::size_t>(pages) * static_cast<std::size_t>(page) : 0;
}

char* reserver(std::size_t taille, int drapeaux, int descripteur) {
  auto* place =
      ::mmap(nullptr, taille, PROT_READ | (descripteur < 0 ? PROT_WRITE : 0), drapeaux, descripteur, 0);
  return place == MAP_FAILED ? nullptr : static_cast<char*>(place);
}

} // namespace

Memoire::Memoire(int descripteur, std::size_t taille)
    : octets_(reserver(taille, MAP_PRIVATE, descripteur)), taille_(taille) {
  if (octets_ != nullptr || taille_ > memoireDeLaMachine()) return;
  octets_ = reserver(taille_, MAP_PRIVATE | MAP_ANON, -1);
  if (octets_ == nullptr || lireExactement(descripteur, {octets_, taille_})) return;
  ::munmap(octets_, taille_);
  octets_ = nullptr;
}

Memoire::~Memoire() {
  if (octets_ != nullptr) ::munmap(octets_, taille_);
}

bool Memoire::confier(const std::function<bool(std::span<const char>)>& usage) const {
  if (octets_ == nullptr) return false;
  const GardeDeSIGBUS garde;
  if (sigsetjmp(retour, 1) != 0) return false;
  return usage({octets_, taille_});
}

bool lireExactement(int descripteur, std::span<char> octets) {
  while (!octets.empty()) {
    const auto lus = ::read(descripteur, octets.data(), octets.size());
    if (lus < 0 && errno == EINTR) continue;
    if (lus <= 0) return false;
    octets = octets.subspan(static_cast<std::size_t>(lus));
  }
  return true;
}

} // namespace keltrove::verification
