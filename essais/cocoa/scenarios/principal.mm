// Le processus d’un scénario : l’application entière, et le fil qui la mène dès qu’elle est lancée.

#include "Scenario.hpp"
#include "app/ModuleBureau.hpp"

#include <cstdio>
#include <cstdlib>
#include <map>
#include <thread>

extern "C" int keltroveLancerLeBureau(const char* executable);

namespace {

std::map<std::string, void (*)()>& scenarios() {
  static std::map<std::string, void (*)()> tous;
  return tous;
}

void jouerQuandLApplicationEstLancee(void (*scenario)()) {
  [NSNotificationCenter.defaultCenter addObserverForName:NSApplicationDidFinishLaunchingNotification
                                                  object:nil
                                                   queue:nil
                                              usingBlock:^(NSNotification*) {
                                                std::thread([scenario] {
                                                  @autoreleasepool {
                                                    scenario();
                                                  }
                                                }).detach();
                                              }];
}

} // namespace

essais::Inscription::Inscription(const char* nom, void (*jouer)()) {
  scenarios()[nom] = jouer;
}

int main(int argc, char** argv) {
  @autoreleasepool {
    // Pas en argument : l’application y verrait un document à ouvrir.
    const char* nom = std::getenv("KELTROVE_SCENARIO");
    if (nom == nullptr) {
      for (const auto& [connu, _] : scenarios())
        std::puts(connu.c_str());
      return EXIT_SUCCESS;
    }
    jouerQuandLApplicationEstLancee(scenarios().at(nom));
  }
  // Les ressources sont à côté du programme que l’essai nomme.
  return keltroveLancerLeBureau(std::getenv("KELTROVE_EXECUTABLE_D_ESSAI"));
}
