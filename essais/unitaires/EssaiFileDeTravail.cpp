#include "Patience.hpp"
#include "socle/FileDeTravail.hpp"

#include <future>
#include <memory>
#include <vector>

#include <gtest/gtest.h>

namespace keltrove::socle {
namespace {

void attendreLaFin(std::future<void> fin) {
  ASSERT_EQ(fin.wait_for(essais::patience), std::future_status::ready);
}

TEST(EssaiFileDeTravail, SurUnSeulFilLesTachesSeSuiventDansLOrdre) {
  FileDeTravail file("essai", 1);
  std::promise<void> fini;
  std::vector<int> faites;
  for (int i = 0; i < 3; ++i)
    ASSERT_TRUE(file.deposer([&faites, i] { faites.push_back(i); }));
  ASSERT_TRUE(file.deposer([&fini] { fini.set_value(); }));
  attendreLaFin(fini.get_future());
  EXPECT_EQ(faites, (std::vector{0, 1, 2}));
}

TEST(EssaiFileDeTravail, AutantDeTachesALaFoisQueDeFils) {
  FileDeTravail file("essai", 2);
  std::promise<void> premiere;
  std::promise<void> seconde;
  // Chacune ne finit que si l’autre a commencé.
  ASSERT_TRUE(file.deposer([&premiere, autre = seconde.get_future().share()] {
    autre.wait();
    premiere.set_value();
  }));
  ASSERT_TRUE(file.deposer([&seconde] { seconde.set_value(); }));
  attendreLaFin(premiere.get_future());
}

// À sa destruction, en dépose une autre.
class Suite {
public:
  Suite(FileDeTravail& file, Tache tache) : file_(file), tache_(std::move(tache)) {}
  ~Suite() { EXPECT_TRUE(file_.deposer(std::move(tache_))); }
  Suite(const Suite&) = delete;
  Suite& operator=(const Suite&) = delete;

private:
  FileDeTravail& file_;
  Tache tache_;
};

TEST(EssaiFileDeTravail, CeQueDetruitUneTachePeutEnDeposer) {
  FileDeTravail file("essai", 1);
  std::promise<void> fini;
  auto suite = std::make_shared<Suite>(file, [&fini] { fini.set_value(); });
  ASSERT_TRUE(file.deposer([suite = std::move(suite)] {}));
  attendreLaFin(fini.get_future());
}

} // namespace
} // namespace keltrove::socle
