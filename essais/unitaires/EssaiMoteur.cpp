// Le moteur avec de vrais processus et de vraies prises ; seules ses attentes sont accélérées.

#include "BoucleVirtuelle.hpp"
#include "HorlogeAcceleree.hpp"
#include "MaisonTemporaire.hpp"
#include "ServeurFactice.hpp"
#include "moteur/ArbreProcessus.hpp"
#include "moteur/MoteurServeur.hpp"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <sstream>
#include <thread>
#include <utility>

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

namespace keltrove::moteur {
namespace {

using socle::Environnement;

// Chaque serveur note son numéro dans « pid » : l’essai le signale, et le nettoie s’il rate.
constexpr const char* entete = R"(
import http from 'node:http';
import fs from 'node:fs';
fs.appendFileSync('pid', process.pid + '\n');
const servir = (port, hote) => http.createServer((_, r) => r.end('<meta name="keltrove-jeton">')).listen(port, hote);
)";

// Une session à lui, donc un groupe à lui. Il se note après le serveur.
const std::string unTerminal =
    "import { spawn } from 'node:child_process'; "
    "fs.appendFileSync('pid', spawn('sleep', ['1000'], { detached: true }).pid + '\\n'); ";

class EssaiMoteur : public testing::Test {
protected:
  ~EssaiMoteur() override {
    moteur->quandLeServeurMeurt = nullptr; // ce qu’il touche a fini avec l’essai
    for (const auto pid : pids())
      ::kill(pid, SIGKILL);
    boucle->attendre([] { return ::waitpid(-1, nullptr, WNOHANG) < 0 && errno == ECHILD; });
    EXPECT_TRUE(::waitpid(-1, nullptr, WNOHANG) < 0 && errno == ECHILD) << "un zombie est resté";
  }

  void poser(const std::string& code) const {
    auto complet = entete + code;
    for (std::size_t i; (i = complet.find("PORT")) != std::string::npos;)
      complet.replace(i, 4, std::to_string(maison.port()));
    maison.ecrire("ressources/keltrove/serveur.mjs", complet);
  }
  void poserLaPorte(const std::string& script) const {
    maison.ecrireExecutable("ressources/demarrer-keltrove.sh", "#!/bin/sh\n" + script);
  }
  std::vector<pid_t> pids() const {
    std::vector<pid_t> numeros;
    for (const auto* fichier : {"ressources/keltrove/pid", "ressources/pid"}) {
      std::istringstream texte(maison.lire(fichier));
      for (pid_t pid; texte >> pid;)
        numeros.push_back(pid);
    }
    return numeros;
  }

  std::pair<Identite, Identite> serveurEtTerminal() const {
    EXPECT_EQ(pids().size(), 2U);
    return {identifier(pids().at(0)), identifier(pids().at(1))};
  }

  std::optional<Demarrage> demarrer() {
    std::optional<Demarrage> issue;
    moteur->demarrer([&](const Demarrage& recue) { issue = recue; });
    EXPECT_TRUE(boucle->attendre([&] { return issue.has_value(); }));
    return issue;
  }
  // Les quarante secondes ne passent qu’une fois le serveur au travail.
  std::optional<Demarrage> demarrerSansReponse() {
    horloge->presser([this, deja = pids().size()] { return pids().size() > deja; });
    auto issue = demarrer();
    horloge->patienter();
    return issue;
  }
  std::string arreter() {
    std::optional<std::string> message;
    moteur->arreter([&](const std::string& recu) { message = recu; });
    EXPECT_TRUE(boucle->attendre([&] { return message.has_value(); }));
    return message.value_or("rien");
  }
  static Demarrage echec(ErreurServeur erreur) { return std::unexpected(std::move(erreur)); }
  static bool vivant(pid_t pid) { return enVie(identifier(pid)); }

  essais::MaisonTemporaire maison;
  std::shared_ptr<essais::BoucleVirtuelle> boucle = std::make_shared<essais::BoucleVirtuelle>();
  std::shared_ptr<essais::HorlogeAcceleree> horloge = std::make_shared<essais::HorlogeAcceleree>();
  std::shared_ptr<MoteurServeur> moteur = std::make_shared<MoteurServeur>(
      MoteurServeur::Contexte{.boucle = boucle,
                              .horloge = horloge,
                              .emplacements = Emplacements(maison.chemin("ressources")),
                              .environnement = Environnement::duProcessus()});
};

TEST_F(EssaiMoteur, UnServeurANousQuiRepondEstRejointSansRienLancer) {
  const essais::ServeurFactice dejaLa(essais::reponseHTTP("200 OK", "keltrove-jeton"));
  maison.ecrire(".zelcor/keltrove.json", "{\"port\": " + std::to_string(dejaLa.port()) + "}");
  poser("servir(PORT);");
  EXPECT_EQ(demarrer(), Demarrage(Rattache{dejaLa.port()}));
  EXPECT_EQ(moteur->port(), dejaLa.port());
  EXPECT_FALSE(moteur->nousLavonsAllume());
  EXPECT_TRUE(pids().empty());
  EXPECT_EQ(arreter(),
            "Le serveur de keltrove continue de tourner : ce n’est pas cette application qui l’a allumé.");
}

TEST_F(EssaiMoteur, UnServeurAbsentEstAllumePuisFermeProprement) {
  poser("servir(PORT); process.on('SIGTERM', () => setTimeout(() => process.exit(0), 20));");
  EXPECT_EQ(demarrer(), Demarrage(Allume{maison.port()}));
  EXPECT_TRUE(moteur->nousLavonsAllume());
  const auto message = arreter();
  EXPECT_TRUE(message.starts_with("Serveur fermé proprement en ") && message.ends_with(" seconde(s)."))
      << message;
  EXPECT_EQ(message.find(','), std::string::npos);
  EXPECT_FALSE(vivant(pids().at(0)));
}

TEST_F(EssaiMoteur, SansNodeOuSansCodeLeDitPrecisement) {
  EXPECT_EQ(demarrer(), echec(CodeIntrouvable{{maison.chemin("ressources/keltrove/serveur.mjs"),
                                               maison.chemin(".zelcor/it/keltrove/serveur.mjs")}}));
  moteur = std::make_shared<MoteurServeur>(
      MoteurServeur::Contexte{.boucle = boucle,
                              .horloge = horloge,
                              .emplacements = Emplacements(maison.chemin("ressources"), {}),
                              .environnement = {}});
  poser("servir(PORT);");
  EXPECT_EQ(demarrer(), echec(NodeIntrouvable{}));
}

TEST_F(EssaiMoteur, UnLancementRefuseCiteLeSystemeEtNeChangeRien) {
  poserLaPorte("");
  maison.ecrireExecutable("ressources/demarrer-keltrove.sh", "#!/nulle/part\n");
  EXPECT_EQ(demarrer(), echec(LancementImpossible{"No such file or directory"}));
  EXPECT_FALSE(moteur->nousLavonsAllume());
  EXPECT_EQ(moteur->port(), std::nullopt);
}

TEST_F(EssaiMoteur, UneMortAuDemarrageRendToutCeQueLeServeurAEcrit) {
  poserLaPorte("printf 'un\\ndeux\\n' >&2; exit 1");
  EXPECT_EQ(demarrer(), echec(MortAuDemarrage{"un\ndeux"}));
  EXPECT_TRUE(moteur->nousLavonsAllume());
  EXPECT_EQ(moteur->port(), std::nullopt);
  EXPECT_EQ(arreter(),
            "Le serveur de keltrove continue de tourner : ce n’est pas cette application qui l’a allumé.");
}

TEST_F(EssaiMoteur, UneMortAussitotAvecUnDescendantQuiGardeLeTubeNAttendPas) {
  poserLaPorte("sleep 1000 & echo $! > pid; echo parti; exit 0");
  EXPECT_EQ(demarrer(), echec(MortAuDemarrage{"parti"}));
}

TEST_F(EssaiMoteur, UneCopieModifieeSeReconnaitASaMarqueQuoiQuElleEcriveDAutre) {
  poserLaPorte("echo bonjour; echo 'MODIFIE=serveur.mjs'; echo fin; exit 1");
  EXPECT_EQ(demarrer(), echec(CodeModifie{}));
}

TEST_F(EssaiMoteur, LaMarqueNEstRienSiLeServeurRepond) {
  poser("console.log('MODIFIE=non'); servir(PORT);");
  EXPECT_EQ(demarrer(), Demarrage(Allume{maison.port()}));
}

TEST_F(EssaiMoteur, UnLanceurQuiFinitAlorsQuUnServeurANousRepondEstUnRattachement) {
  // Le serveur ne se dit nôtre qu’une fois son lanceur parti.
  poser("const lanceur = process.ppid; "
        "const vit = () => { try { return process.kill(lanceur, 0); } catch {} }; "
        "http.createServer((_, r) => r.end(vit() ? '' : 'keltrove-jeton'))"
        ".listen(PORT, '127.0.0.1', () => fs.writeFileSync('pret', ''));");
  poserLaPorte("cd keltrove; node serveur.mjs & while [ ! -e pret ]; do :; done");
  EXPECT_EQ(demarrer(), Demarrage(Rattache{maison.port()}));
  EXPECT_FALSE(moteur->nousLavonsAllume());
  EXPECT_EQ(moteur->port(), maison.port());
}

TEST_F(EssaiMoteur, LeServeurEstChercheJusquAuxPetitsEnfantsDuScriptPasPlusLoin) {
  poser("servir(PORT, '127.0.0.1');");
  poserLaPorte("cd keltrove; sh -c 'sh -c \"node serveur.mjs; :\"; :'; :");
  ASSERT_EQ(demarrer(), Demarrage(Allume{maison.port()}));
  EXPECT_TRUE(arreter().starts_with("Serveur fermé proprement"));
  poserLaPorte("cd keltrove; sh -c 'sh -c \"sh -c \\\"node serveur.mjs; :\\\"; :\"; :'; :");
  ASSERT_EQ(demarrer(), Demarrage(Allume{maison.port()}));
  EXPECT_EQ(arreter(), "Le serveur n’a pas été retrouvé : rien à fermer.");
  ::kill(pids().back(), SIGKILL);
}

TEST_F(EssaiMoteur, QuaranteSecondesSansReponseLeDisentEtLaissentTournerLeServeur) {
  poser("console.log('je réfléchis'); setInterval(() => {}, 1000);");
  EXPECT_EQ(demarrerSansReponse(), echec(PasDeReponse{maison.port(), 40, "je réfléchis"}));
  EXPECT_EQ(horloge->sommeils(), 160);
  EXPECT_TRUE(moteur->nousLavonsAllume());
  EXPECT_TRUE(vivant(pids().at(0)));
  EXPECT_EQ(arreter(), "Le serveur n’a pas été retrouvé : rien à fermer.");
  EXPECT_FALSE(vivant(pids().at(0)));
}

TEST_F(EssaiMoteur, UnAutrePortSeTrouveAuHuitiemeTourAuPlusTotEnIPv4CommeEnIPv6) {
  for (const auto* hote : {"'127.0.0.1'", "'::'"}) {
    const int autre = essais::portLibre();
    poser("servir(" + std::to_string(autre) + ", " + hote + ");");
    const int avant = horloge->sommeils();
    EXPECT_EQ(demarrer(), Demarrage(Allume{autre}));
    EXPECT_EQ((horloge->sommeils() - avant) % 8, 7)
        << "entre le huitième tour, ou le seizième…, et le précédent";
    EXPECT_EQ(moteur->port(), autre);
    EXPECT_TRUE(arreter().starts_with("Serveur fermé proprement"));
  }
}

TEST_F(EssaiMoteur, UnAutrePortQuiNeRepondPasEnNotreNomNEstPasPris) {
  const int autre = essais::portLibre();
  poser("http.createServer((_, r) => r.end('bonjour')).listen(" + std::to_string(autre) + ", '127.0.0.1');");
  EXPECT_EQ(demarrerSansReponse(), echec(PasDeReponse{maison.port(), 40, ""}));
}

TEST_F(EssaiMoteur, LePetitEnfantQuiSertEstArreteAvecSonScript) {
  poser("servir(PORT); process.on('SIGTERM', () => { fs.writeFileSync('recu', 'TERM'); process.exit(0); });");
  poserLaPorte("cd keltrove; sh -c 'node serveur.mjs; :' ; true");
  EXPECT_EQ(demarrer(), Demarrage(Allume{maison.port()}));
  EXPECT_TRUE(arreter().starts_with("Serveur fermé proprement"));
  EXPECT_EQ(maison.lire("ressources/keltrove/recu"), "TERM");
}

TEST_F(EssaiMoteur, LeServeurLanceDirectementNeRecoitQuUnSignal) {
  poser("servir(PORT); process.on('SIGTERM', () => { fs.appendFileSync('recus', 'T'); "
        "setTimeout(() => process.exit(0), 100); });");
  EXPECT_EQ(demarrer(), Demarrage(Allume{maison.port()}));
  arreter();
  EXPECT_EQ(maison.lire("ressources/keltrove/recus"), "T");
}

TEST_F(EssaiMoteur, LeServeurQuiSertEstSeulSignaleEtNonSesTerminaux) {
  poser(unTerminal + "servir(PORT);");
  EXPECT_EQ(demarrer(), Demarrage(Allume{maison.port()}));
  const auto [serveur, terminal] = serveurEtTerminal();
  EXPECT_TRUE(arreter().starts_with("Serveur fermé proprement"));
  EXPECT_FALSE(enVie(serveur));
  EXPECT_TRUE(enVie(terminal));
}

TEST_F(EssaiMoteur, UnServeurSourdEstLaisseEnVieAuBoutDeDouzeSecondes) {
  poser("servir(PORT); process.on('SIGTERM', () => {});");
  EXPECT_EQ(demarrer(), Demarrage(Allume{maison.port()}));
  const double debut = horloge->maintenant();
  horloge->presser();
  EXPECT_EQ(arreter(), "Le serveur met du temps à se fermer : je le laisse finir d’écrire sa liste.");
  EXPECT_GE(horloge->maintenant() - debut, 12.0);
  EXPECT_LT(horloge->maintenant() - debut, 12.2);
  EXPECT_TRUE(vivant(pids().at(0)));
}

TEST_F(EssaiMoteur, LaMortEnServiceSAnnonceAvecLaSortieDuServeur) {
  poser("servir(PORT); console.log('prêt'); process.on('SIGUSR1', () => { console.log('adieu'); "
        "process.exit(1); });");
  std::optional<ErreurServeur> mort;
  moteur->quandLeServeurMeurt = [&](const ErreurServeur& erreur) { mort = erreur; };
  EXPECT_EQ(demarrer(), Demarrage(Allume{maison.port()}));
  ::kill(pids().at(0), SIGUSR1);
  ASSERT_TRUE(boucle->attendre([&] { return mort.has_value(); }));
  // Deux lectures : la fin de ligne de la première laisse une ligne vide.
  EXPECT_EQ(mort, ErreurServeur(PerduEnRoute{"prêt\n\nadieu"}));
}

TEST_F(EssaiMoteur, LaMortPendantUnArretNeSAnnoncePas) {
  poser("servir(PORT);");
  int morts = 0;
  moteur->quandLeServeurMeurt = [&](const ErreurServeur&) { ++morts; };
  EXPECT_EQ(demarrer(), Demarrage(Allume{maison.port()}));
  EXPECT_TRUE(arreter().starts_with("Serveur fermé proprement"));
  boucle->vider();
  EXPECT_EQ(morts, 0);
}

TEST_F(EssaiMoteur, UnServeurQuiRepondUneFoisPrieDeFinirResteEnArret) {
  bool morte = false;
  moteur->quandLeServeurMeurt = [&](const ErreurServeur&) { morte = true; };
  poser("setInterval(() => {}, 1000); process.on('SIGTERM', () => { servir(PORT); "
        "fs.watch('.', () => process.exit(0)); }); fs.writeFileSync('pret', 'oui');");
  std::optional<Demarrage> issue;
  moteur->demarrer([&](const Demarrage& recue) { issue = recue; });
  ASSERT_TRUE(boucle->attendre([&] { return maison.lire("ressources/keltrove/pret") == "oui"; }));
  std::optional<std::string> message;
  moteur->arreter([&](const std::string& recu) { message = recu; });
  ASSERT_TRUE(boucle->attendre([&] { return issue.has_value(); }));
  EXPECT_EQ(issue, Demarrage(Allume{maison.port()}));
  EXPECT_EQ(arreter(), ArretServeur::rienAArreter);
  maison.ecrire("ressources/keltrove/fin", "");
  ASSERT_TRUE(boucle->attendre([&] { return message.has_value() && !vivant(pids().at(0)); }));
  EXPECT_FALSE(morte);
}

TEST_F(EssaiMoteur, UnServeurRejointPuisMortNeSAnnoncePas) {
  int morts = 0;
  moteur->quandLeServeurMeurt = [&](const ErreurServeur&) { ++morts; };
  {
    const essais::ServeurFactice dejaLa(essais::reponseHTTP("200 OK", "keltrove-jeton"));
    maison.ecrire(".zelcor/keltrove.json", "{\"port\": " + std::to_string(dejaLa.port()) + "}");
    EXPECT_EQ(demarrer(), Demarrage(Rattache{dejaLa.port()}));
  }
  boucle->vider();
  EXPECT_EQ(morts, 0);
}

TEST_F(EssaiMoteur, UnNouvelEssaiApresUnEchecRepartDUneSortieVide) {
  poserLaPorte("echo premier; exit 1");
  EXPECT_EQ(demarrer(), echec(MortAuDemarrage{"premier"}));
  poserLaPorte("echo second; exit 1");
  EXPECT_EQ(demarrer(), echec(MortAuDemarrage{"second"}));
  maison.effacer("ressources/demarrer-keltrove.sh");
  poser("servir(PORT);");
  EXPECT_EQ(demarrer(), Demarrage(Allume{maison.port()}));
}

TEST_F(EssaiMoteur, SeRattacherNeVidePasLaSortieDuServeurQuiTourne) {
  poser("console.log('un mot'); servir(PORT);");
  EXPECT_EQ(demarrer(), Demarrage(Allume{maison.port()}));
  ASSERT_TRUE(boucle->attendre([&] { return moteur->lignesJournal().texte() == "un mot"; }));
  EXPECT_EQ(demarrer(), Demarrage(Rattache{maison.port()}));
  EXPECT_EQ(moteur->lignesJournal().texte(), "un mot");
}

TEST_F(EssaiMoteur, UnScriptArreteParSonPropreSignalEstMortAuDemarrage) {
  poserLaPorte("echo adieu; kill -KILL $$; sleep 60");
  EXPECT_EQ(demarrer(), echec(MortAuDemarrage{"adieu"}));
}

// Une fois l’arrêt commencé, tout dure quarante-deux centièmes de seconde.
class HorlogeDUnArret final : public socle::Horloge {
public:
  double maintenant() const override { return arret && regards++ > 0 ? 0.42 : 0; }
  void dormir(double) override { std::this_thread::sleep_for(std::chrono::milliseconds(5)); }
  std::atomic<bool> arret = false;
  mutable std::atomic<int> regards = 0;
};

TEST_F(EssaiMoteur, LaDureeDUneFermetureSeDitAuDixiemeAvecUnPoint) {
  const auto lente = std::make_shared<HorlogeDUnArret>();
  moteur = std::make_shared<MoteurServeur>(
      MoteurServeur::Contexte{.boucle = boucle,
                              .horloge = lente,
                              .emplacements = Emplacements(maison.chemin("ressources")),
                              .environnement = Environnement::duProcessus()});
  poser("servir(PORT); process.on('SIGTERM', () => process.exit(0));");
  EXPECT_EQ(demarrer(), Demarrage(Allume{maison.port()}));
  lente->arret = true;
  EXPECT_EQ(arreter(), "Serveur fermé proprement en 0.4 seconde(s).");
}

TEST_F(EssaiMoteur, UnServeurMuetPuisRemplaceEstArreteAvecSonRemplacant) {
  poser("setInterval(() => {}, 1000);");
  EXPECT_EQ(demarrerSansReponse(), echec(PasDeReponse{maison.port(), 40, ""}));
  poser("servir(PORT); process.on('SIGTERM', () => setTimeout(() => process.exit(0), 20));");
  EXPECT_EQ(demarrer(), Demarrage(Allume{maison.port()}));
  ASSERT_EQ(pids().size(), 2U);
  EXPECT_TRUE(arreter().starts_with("Serveur fermé proprement"));
  EXPECT_FALSE(vivant(pids().at(0)));
  EXPECT_FALSE(vivant(pids().at(1)));
}

TEST_F(EssaiMoteur, LesRemplacesSontTousSignalesEtPartagentLesDouzeSecondes) {
  const auto sourd = [](const char* nom) {
    return std::string("process.on('SIGTERM', () => fs.appendFileSync('recus', '") + nom + "'));";
  };
  for (const auto* nom : {"A", "B"}) {
    poser("setInterval(() => {}, 1000);" + sourd(nom));
    EXPECT_EQ(demarrerSansReponse(), echec(PasDeReponse{maison.port(), 40, ""}));
  }
  poser("servir(PORT); process.on('SIGTERM', () => { fs.appendFileSync('recus', 'C'); process.exit(0); });");
  EXPECT_EQ(demarrer(), Demarrage(Allume{maison.port()}));
  const double debut = horloge->maintenant();
  horloge->presser();
  EXPECT_TRUE(arreter().starts_with("Serveur fermé proprement en 12.0"));
  EXPECT_LT(horloge->maintenant() - debut, 12.2);
  // Envoyés dans l’ordre des lancements ; reçus quand chacun a la main.
  auto recus = maison.lire("ressources/keltrove/recus");
  std::ranges::sort(recus);
  EXPECT_EQ(recus, "ABC");
  EXPECT_TRUE(vivant(pids().at(0)));
}

TEST_F(EssaiMoteur, UnServeurRejointNEstPasSignaleMemeLancePresDUnAutreDesNotres) {
  poser("setInterval(() => {}, 1000);");
  EXPECT_EQ(demarrerSansReponse(), echec(PasDeReponse{maison.port(), 40, ""}));
  const essais::ServeurFactice dejaLa(essais::reponseHTTP("200 OK", "keltrove-jeton"));
  maison.ecrire(".zelcor/keltrove.json", "{\"port\": " + std::to_string(dejaLa.port()) + "}");
  EXPECT_EQ(demarrer(), Demarrage(Rattache{dejaLa.port()}));
  EXPECT_EQ(arreter(), ArretServeur::rienAArreter);
  EXPECT_TRUE(vivant(pids().at(0)));
}

TEST_F(EssaiMoteur, LeServeurDUnScriptQuiNEcoutePasEncoreEstPrieDeFinirAussi) {
  poser("setInterval(() => {}, 1000); process.on('SIGTERM', () => { fs.writeFileSync('recu', 'TERM'); "
        "process.exit(0); });");
  poserLaPorte("cd keltrove; sh -c 'node serveur.mjs; :'; :");
  EXPECT_EQ(demarrerSansReponse(), echec(PasDeReponse{maison.port(), 40, ""}));
  EXPECT_EQ(arreter(), "Le serveur n’a pas été retrouvé : rien à fermer.");
  EXPECT_EQ(maison.lire("ressources/keltrove/recu"), "TERM");
}

TEST_F(EssaiMoteur, UnTerminalDUnServeurQuiNEcoutePlusNEstPasSignale) {
  poser(unTerminal + "setInterval(() => {}, 1000);");
  EXPECT_EQ(demarrerSansReponse(), echec(PasDeReponse{maison.port(), 40, ""}));
  const auto [serveur, terminal] = serveurEtTerminal();
  arreter();
  EXPECT_FALSE(enVie(serveur));
  EXPECT_TRUE(enVie(terminal));
}

// À la première nouvelle qu’on lui poste, le serveur meurt, et celle de sa mort a le temps de passer devant.
class BoucleDevancee final : public socle::BoucleEvenements {
public:
  BoucleDevancee(std::shared_ptr<essais::BoucleVirtuelle> vraie, socle::Tache tuer)
      : vraie_(std::move(vraie)), tuer_(std::move(tuer)) {}
  void poster(socle::Tache tache) override {
    if (!dejaPoste_.exchange(true)) {
      tuer_();
      std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
    vraie_->poster(std::move(tache));
  }
  socle::Minuteur apres(double secondes, socle::Tache tache) override {
    return vraie_->apres(secondes, std::move(tache));
  }
  socle::Minuteur chaque(double secondes, socle::Tache tache) override {
    return vraie_->chaque(secondes, std::move(tache));
  }

private:
  const std::shared_ptr<essais::BoucleVirtuelle> vraie_;
  const socle::Tache tuer_;
  std::atomic_bool dejaPoste_ = false;
};

TEST_F(EssaiMoteur, LaMortDUnServeurNeDevanceJamaisLIssueQuiLeDitAllume) {
  poser("servir(PORT);");
  auto devancee = std::make_shared<BoucleDevancee>(boucle, [this] {
    const auto serveur = identifier(pids().at(0));
    ::kill(pids().at(0), SIGKILL);
    while (enVie(serveur))
      std::this_thread::yield();
  });
  moteur = std::make_shared<MoteurServeur>(
      MoteurServeur::Contexte{.boucle = std::move(devancee),
                              .horloge = horloge,
                              .emplacements = Emplacements(maison.chemin("ressources")),
                              .environnement = Environnement::duProcessus()});
  std::vector<std::string> nouvelles;
  moteur->quandLeServeurMeurt = [&](const ErreurServeur&) { nouvelles.emplace_back("mort"); };
  moteur->demarrer([&](const Demarrage& issue) { nouvelles.emplace_back(issue ? "allumé" : "échec"); });
  EXPECT_TRUE(boucle->attendre([&] { return nouvelles.size() == 2; }));
  EXPECT_EQ(nouvelles, (std::vector<std::string>{"allumé", "mort"}));
}

TEST_F(EssaiMoteur, LaMortDUnServeurQueLOnARejointDepuisSAnnonceEncore) {
  poser("servir(PORT);");
  std::optional<ErreurServeur> mort;
  moteur->quandLeServeurMeurt = [&](const ErreurServeur& erreur) { mort = erreur; };
  EXPECT_EQ(demarrer(), Demarrage(Allume{maison.port()}));
  EXPECT_EQ(demarrer(), Demarrage(Rattache{maison.port()}));
  ::kill(pids().at(0), SIGKILL);
  EXPECT_TRUE(boucle->attendre([&] { return mort.has_value(); }));
}

TEST_F(EssaiMoteur, LaMortDUnServeurRemplaceArriveTropTardPourCompter) {
  poser("servir(PORT);");
  int morts = 0;
  moteur->quandLeServeurMeurt = [&](const ErreurServeur&) { ++morts; };
  EXPECT_EQ(demarrer(), Demarrage(Allume{maison.port()}));
  ::kill(pids().at(0), SIGKILL);
  // La nouvelle est en route, mais la boucle ne l’a pas encore lue quand le suivant est lancé.
  ASSERT_TRUE(boucle->attendreDesTaches(1));
  std::optional<Demarrage> issue;
  moteur->demarrer([&](const Demarrage& recue) { issue = recue; });
  ASSERT_TRUE(boucle->attendreDesTaches(2));
  EXPECT_TRUE(boucle->attendre([&] { return issue.has_value(); }));
  EXPECT_EQ(issue, Demarrage(Allume{maison.port()}));
  EXPECT_EQ(morts, 0);
}

TEST_F(EssaiMoteur, PlusRienNeSeLanceUneFoisQueCEstInterdit) {
  poser("servir(PORT);");
  moteur->neLancerPlusRien();
  const auto issue = demarrer();
  ASSERT_TRUE(issue && !issue->has_value());
  EXPECT_TRUE(std::holds_alternative<LancementImpossible>(issue->error()));
  EXPECT_FALSE(moteur->nousLavonsAllume());
  EXPECT_TRUE(pids().empty());
}

TEST_F(EssaiMoteur, UnServeurBavardNeRetientNiLeDemarrageNiLaMemoire) {
  poserLaPorte("cd keltrove; yes 'une ligne du serveur bavard' & echo $! > ../pid; exec node serveur.mjs");
  poser("servir(PORT);");
  EXPECT_EQ(demarrer(), Demarrage(Allume{maison.port()}));
  EXPECT_LE(moteur->lignesJournal().lignes().size(), 60U);
  EXPECT_TRUE(arreter().starts_with("Serveur fermé proprement"));
}

TEST_F(EssaiMoteur, LeServeurRecoitLEnvironnementDuLancementEtNonLeCourant) {
  ::setenv("REGLAGE_DE_LA_BOITE", "1", 1);
  poser("fs.writeFileSync('env', JSON.stringify([process.env.REGLAGE_DE_LA_BOITE ?? null, process.env.HOME, "
        "process.env.PATH.startsWith('/usr/local/bin:/opt/homebrew/bin:/usr/bin:/bin:/usr/sbin:/sbin'), "
        "process.cwd()])); servir(PORT);");
  EXPECT_EQ(demarrer(), Demarrage(Allume{maison.port()}));
  EXPECT_EQ(maison.lire("ressources/keltrove/env"),
            "[null,\"" + maison.racine() + "\",true,\"" + maison.chemin("ressources/keltrove") + "\"]");
}

TEST(EnvironnementDuServeur, LePathHeriteSuitLesDossiersFixesSansDoublon) {
  Environnement herite;
  herite.definir("PATH", "/opt/homebrew/bin::/usr/bin:/custom");
  EXPECT_EQ(environnementDuServeur(herite, "/h").lire("PATH"),
            "/usr/local/bin:/opt/homebrew/bin:/usr/bin:/bin:/usr/sbin:/sbin:/custom");
  EXPECT_EQ(environnementDuServeur({}, "/h").lire("PATH"),
            "/usr/local/bin:/opt/homebrew/bin:/usr/bin:/bin:/usr/sbin:/sbin");
}

TEST(EnvironnementDuServeur, LangNEstDonneeQueSiElleManque) {
  Environnement vide;
  vide.definir("LANG", "");
  EXPECT_EQ(environnementDuServeur(vide, "/h").lire("LANG"), "");
  EXPECT_EQ(environnementDuServeur({}, "/h").lire("LANG"), "fr_FR.UTF-8");
}

TEST(EnvironnementDuServeur, HomeEstRemplaceeEtLeResteGarde) {
  Environnement herite;
  herite.definir("HOME", "/ancienne");
  herite.definir("AUTRE", "a=b");
  const auto environnement = environnementDuServeur(herite, "/neuve");
  EXPECT_EQ(environnement.lire("HOME"), "/neuve");
  EXPECT_EQ(environnement.lire("AUTRE"), "a=b");
  EXPECT_EQ(environnement.entrees().size(), 4U);
}

} // namespace
} // namespace keltrove::moteur
