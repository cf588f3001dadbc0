// EssaiProcessus : un enfant, ce qu’il écrit, et rien qui en reste après l’essai.
#pragma once

#include "Patience.hpp"
#include "socle/Processus.hpp"

#include <cerrno>
#include <condition_variable>
#include <csignal>
#include <functional>
#include <mutex>

#include <gtest/gtest.h>
#include <sys/wait.h>

namespace keltrove::socle {

// Ce qu’un enfant écrit, et le moyen d’attendre qu’il l’ait écrit.
struct Ecoute {
  std::mutex verrou;
  std::condition_variable arrivee;
  std::string texte;
  std::size_t octets = 0;
  bool garder = true;

  Processus::QuandSortie appel() {
    return [this](std::string_view bloc) {
      const std::lock_guard garde(verrou);
      if (garder) texte += bloc;
      octets += bloc.size();
      arrivee.notify_all();
    };
  }
  bool attendre(const std::function<bool()>& condition) {
    std::unique_lock garde(verrou);
    return arrivee.wait_for(garde, essais::patience, condition);
  }
};

class EssaiProcessus : public testing::Test {
protected:
  ~EssaiProcessus() override {
    if (processus) ::kill(-processus->pid(), SIGKILL);
    if (processus) attendreLaFin();
    EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1) << "un zombie est resté";
    EXPECT_EQ(errno, ECHILD);
  }
  bool lancer(const std::string& programme, std::vector<std::string> arguments, std::string dossier = "/") {
    Environnement environnement;
    environnement.definir("PATH", "/usr/bin:/bin");
    environnement.definir("ACCENT", "é\n=");
    auto issue = Processus::lancer({programme, std::move(arguments), std::move(dossier), environnement},
                                   ecoute.appel());
    if (issue)
      processus = *issue;
    else
      raison = issue.error();
    return issue.has_value();
  }
  bool lancerLeShell(const std::string& script) { return lancer("/bin/sh", {"-c", script}); }
  bool attendreLaFin() {
    return essais::attendre([&] { return !processus->tourne(); });
  }
  std::string toutCeQuIlDit() {
    EXPECT_TRUE(attendreLaFin());
    processus->viderLaSortie();
    return ecoute.texte;
  }

  Ecoute ecoute;
  std::shared_ptr<Processus> processus;
  std::string raison;
};

} // namespace keltrove::socle
