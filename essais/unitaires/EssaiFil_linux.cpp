#include "Patience.hpp"
#include "socle/Fil.hpp"
#include "socle/FileDeTravail.hpp"

#include <array>
#include <future>
#include <string>
#include <thread>

#include <gtest/gtest.h>
#include <pthread.h>

namespace keltrove::socle {
namespace {

std::string nomDeCeFil() {
  std::array<char, 64> vu{};
  ::pthread_getname_np(::pthread_self(), vu.data(), vu.size());
  return vu.data();
}

std::string nomVuDuSysteme(const char* nom) {
  std::string vu;
  std::thread([&] {
    nommerLeFil(nom);
    vu = nomDeCeFil();
  }).join();
  return vu;
}

TEST(EssaiFil, UnFilPorteLeDernierMotDeSonNom) {
  EXPECT_EQ(nomVuDuSysteme("fr.zelcor.keltrove.moteur"), "moteur");
  EXPECT_EQ(nomVuDuSysteme("fr.zelcor.keltrove.utilitaire"), "utilitaire");
  EXPECT_EQ(nomVuDuSysteme("signaux"), "signaux");
}

TEST(EssaiFil, UnNomTropLongPourLeSystemeEstCoupe) {
  EXPECT_EQ(nomVuDuSysteme("anticonstitutionnellement"), "anticonstitutio");
}

TEST(EssaiFil, UneFileDonneSonNomASesFils) {
  FileDeTravail file("fr.zelcor.keltrove.analyse", 1);
  std::promise<std::string> vu;
  ASSERT_TRUE(file.deposer([&vu] { vu.set_value(nomDeCeFil()); }));
  auto nom = vu.get_future();
  ASSERT_EQ(nom.wait_for(essais::patience), std::future_status::ready);
  EXPECT_EQ(nom.get(), "analyse");
}

} // namespace
} // namespace keltrove::socle
