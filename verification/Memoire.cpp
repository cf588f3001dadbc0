#include "verification/Memoire.hpp"

#include <sys/mman.h>
#include <unistd.h>

namespace keltrove::verification {
namespace {

// Le système promet volontiers plus qu’il n’a, puis tue qui s’en sert.
std::size_t memoireDeLaMachine() {
  const auto pages = ::sysconf(_SC_PHYS_PAGES);
  const auto taille = ::sysconf(_SC_PAGESIZE);
  return pages > 0 && taille > 0 ? static_cast<std::size_t>(pages) * static_cast<std::size_t>(taille) : 0;
}

} // namespace

Memoire::Memoire(std::size_t taille) : taille_(taille) {
  if (taille_ > memoireDeLaMachine()) return;
  void* place = ::mmap(nullptr, taille_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANON, -1, 0);
  if (place == MAP_FAILED) return;
#ifdef MADV_HUGEPAGE
  ::madvise(place, taille_, MADV_HUGEPAGE); // moins de pages à préparer ; sans effet ailleurs
#endif
  octets_ = static_cast<char*>(place);
}

Memoire::~Memoire() {
  if (octets_ != nullptr) ::munmap(octets_, taille_);
}

} // namespace keltrove::verification
