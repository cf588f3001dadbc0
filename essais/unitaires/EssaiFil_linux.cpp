#include "socle/Fil.hpp"

#include <array>
#include <string>
#include <thread>

#include <gtest/gtest.h>
#include <pthread.h>

namespace keltrove::socle {
namespace {

std::string nomVuDuSysteme(const char* nom) {
  std::array<char, 64> vu{};
  std::thread([&] {
    nommerLeFil(nom);
    ::pthread_getname_np(::pthread_self(), vu.data(), vu.size());
  }).join();
  return vu.data();
}

TEST(EssaiFil, UnFilPorteLeDernierMotDeSonNom) {
  EXPECT_EQ(nomVuDuSysteme("fr.zelcor.keltrove.moteur"), "moteur");
  EXPECT_EQ(nomVuDuSysteme("fr.zelcor.keltrove.utilitaire"), "utilitaire");
  EXPECT_EQ(nomVuDuSysteme("signaux"), "signaux");
}

TEST(EssaiFil, UnNomTropLongPourLeSystemeEstCoupe) {
  EXPECT_EQ(nomVuDuSysteme("anticonstitutionnellement"), "anticonstitutio");
}

} // namespace
} // namespace keltrove::socle
