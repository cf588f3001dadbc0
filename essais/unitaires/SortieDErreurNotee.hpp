// SortieDErreurNotee : tant qu’elle existe, ce que le processus écrit sur sa sortie d’erreur se lit ici.
#pragma once

#include <cstdio>
#include <string>
#include <vector>

#include <unistd.h>

namespace keltrove::essais {

class SortieDErreurNotee {
public:
  SortieDErreurNotee() { ::dup2(::fileno(notes_), STDERR_FILENO); }
  SortieDErreurNotee(const SortieDErreurNotee&) = delete;
  SortieDErreurNotee& operator=(const SortieDErreurNotee&) = delete;
  ~SortieDErreurNotee() {
    ::dup2(dOrigine_, STDERR_FILENO);
    ::close(dOrigine_);
    std::fclose(notes_);
  }

  // Les lignes entières, sans les blancs de leurs bouts.
  std::vector<std::string> lignes() const {
    std::vector<std::string> lues;
    std::string ligne;
    char octets[4096];
    off_t ou = 0;
    for (ssize_t lus = 0; (lus = ::pread(::fileno(notes_), octets, sizeof octets, ou)) > 0; ou += lus)
      for (const char octet : std::string_view(octets, static_cast<std::size_t>(lus))) {
        if (octet != '\n') {
          ligne += octet;
          continue;
        }
        lues.push_back(sansBlancs(ligne));
        ligne.clear();
      }
    return lues;
  }

private:
  static std::string sansBlancs(const std::string& ligne) {
    const auto debut = ligne.find_first_not_of(' ');
    if (debut == std::string::npos) return "";
    return ligne.substr(debut, ligne.find_last_not_of(' ') - debut + 1);
  }

  const int dOrigine_ = ::dup(STDERR_FILENO);
  std::FILE* const notes_ = std::tmpfile();
};

} // namespace keltrove::essais
