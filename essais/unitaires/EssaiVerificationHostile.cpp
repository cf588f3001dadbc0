#include "DossierSigne.hpp"
#include "Patience.hpp"
#include "socle/Descripteur.hpp"
#include "socle/Texte.hpp"
#include "verification/Empreintes.hpp"
#include "verification/Memoire.hpp"

#include <algorithm>
#include <chrono>
#include <climits>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <fstream>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace keltrove::verification {
namespace {

namespace fs = std::filesystem;
using Verdict = std::string; // vide : tout va bien

void creerUnePrise(const std::string& chemin) {
  // Le nom d’une prise tient dans une centaine d’octets : elle naît ailleurs, sous un nom que nul autre essai
  // ne prend.
  const auto provisoire = "/tmp/prise-d-essai-" + std::to_string(::getpid());
  const int prise = ::socket(AF_UNIX, SOCK_STREAM, 0);
  sockaddr_un adresse{.sun_family = AF_UNIX, .sun_path = {}};
  std::strcpy(adresse.sun_path, provisoire.c_str());
  ASSERT_EQ(::bind(prise, reinterpret_cast<sockaddr*>(&adresse), sizeof adresse), 0);
  ::close(prise);
  fs::rename(provisoire, chemin);
}

// Ce qui peut prendre la place d’un fichier et ferait attendre un lecteur naïf.
const std::vector<std::pair<std::string, std::function<void(const std::string&)>>> pieges{
    {"un tube", [](const std::string& chemin) { ::mkfifo(chemin.c_str(), 0600); }},
    {"une prise", creerUnePrise},
    {"un périphérique sans fin", [](const std::string& chemin) { fs::create_symlink("/dev/zero", chemin); }},
    {"un terminal", [](const std::string& chemin) { fs::create_symlink("/dev/tty", chemin); }},
    {"un dossier", [](const std::string& chemin) { fs::create_directory(chemin); }},
    {"un lien brisé", [](const std::string& chemin) { fs::create_symlink("/nulle/part", chemin); }},
    {"un fichier sans mesure",
     [](const std::string& chemin) {
       const int fichier = ::open(chemin.c_str(), O_CREAT | O_WRONLY, 0600);
       ASSERT_EQ(::ftruncate(fichier, 1LL << 42), 0);
       ::close(fichier);
     }},
};

class EssaiHostile : public testing::Test {
protected:
  EssaiHostile() { code.lister("a", "contenu"); }
  Verdict verdict() const {
    const auto debut = std::chrono::steady_clock::now();
    const auto resultat = code.verifier();
    // Une réponse, jamais une attente.
    EXPECT_LT(std::chrono::steady_clock::now() - debut, essais::patience);
    EXPECT_TRUE(socle::estUTF8(resultat.message));
    return resultat.message;
  }
  essais::DossierSigne code;
};

TEST_F(EssaiHostile, UnPiegeALaPlaceDeLInventaireDeLaSignatureOuDeLaCleEstIllisible) {
  code.signer();
  for (const auto& [nom, poser] : pieges) {
    SCOPED_TRACE(nom);
    for (const auto& [chemin, attendu] :
         {std::pair(code.chemin("inventaire.json"), "inventaire absent : " + code.chemin("inventaire.json")),
          std::pair(code.chemin("inventaire.sig"),
                    "signature absente ou illisible : " + code.chemin("inventaire.sig")),
          std::pair(code.cle(), "clé publique illisible : " + code.cle())}) {
      // Hors du dossier, le fichier mis de côté ne compte pas.
      const auto cote = fs::path(code.dossier()).parent_path() / "garde";
      fs::rename(chemin, cote);
      poser(chemin);
      EXPECT_EQ(verdict(), attendu);
      fs::remove_all(chemin);
      fs::rename(cote, chemin);
    }
  }
  EXPECT_EQ(verdict(), "");
}

TEST_F(EssaiHostile, UnPiegeALaPlaceDUnFichierListeEstIllisible) {
  code.signer();
  for (const auto& [nom, poser] : pieges) {
    if (nom == "un dossier" || nom == "un lien brisé" || nom == "un fichier sans mesure") continue;
    SCOPED_TRACE(nom);
    fs::remove(code.chemin("a"));
    poser(code.chemin("a"));
    EXPECT_EQ(verdict(), "fichier illisible : a");
  }
}

TEST_F(EssaiHostile, UnDossierOuUnLienBriseALaPlaceDUnFichierListeManque) {
  code.signer();
  fs::remove(code.chemin("a"));
  fs::create_directory(code.chemin("a"));
  EXPECT_EQ(verdict(), "fichier manquant : a");
  fs::remove(code.chemin("a"));
  fs::create_symlink("/nulle/part", code.chemin("a"));
  EXPECT_EQ(verdict(), "fichier manquant : a");
}

TEST_F(EssaiHostile, DesLiensVersUnAncetreSontUnEchecImmediat) {
  code.signer();
  fs::create_directories(code.chemin("x/y"));
  for (int i = 0; i < 20; ++i)
    fs::create_directory_symlink(code.dossier(), code.chemin("x/y/l" + std::to_string(i)));
  EXPECT_EQ(verdict(), "impossible de lire le dossier " + code.dossier());
}

TEST_F(EssaiHostile, UnLienVersSonPropreDossierAussi) {
  code.signer();
  fs::create_directory_symlink(".", code.chemin("moi"));
  EXPECT_EQ(verdict(), "impossible de lire le dossier " + code.dossier());
}

TEST_F(EssaiHostile, DesLiensCroisesQuiDoublentAChaqueNiveauSontDitsDemesures) {
  code.signer();
  for (int i = 0; i < 40; ++i) {
    fs::create_directory(code.chemin("n" + std::to_string(i)));
    for (const char* cote : {"/g", "/d"})
      fs::create_directory_symlink(code.chemin("n" + std::to_string(i + 1)),
                                   code.chemin("n" + std::to_string(i) + cote));
  }
  fs::create_directory(code.chemin("n40"));
  EXPECT_EQ(verdict(),
            "dossier trop grand pour être vérifié (plus de 10000 niveaux, de 100000 dossiers revus par "
            "des liens ou de 512 Mio de noms) : " +
                code.dossier());
}

TEST_F(EssaiHostile, DeuxCentsNiveauxEtDesNomsDeDeuxCentCinquanteCinqOctetsPassent) {
  std::string profond;
  for (int i = 0; i < 200; ++i)
    profond += "d/";
  code.lister(profond + "f", "profond");
  code.lister(std::string(255, 'n'), "long");
  code.signer();
  EXPECT_EQ(verdict(), "");
  code.ecrire(profond + "g", "");
  EXPECT_EQ(verdict(), "fichier ajouté, non prévu : " + profond + "g");
}

// Répété, met sous Linux une barre juste à la longueur que le système refuse.
const std::string etage(240, 'e');

// Un chemin trop long pour le système se crée de proche en proche.
void ecrireAuFond(const std::string& dossier, int niveaux, const std::string& nom) {
  int ici = ::open(dossier.c_str(), O_RDONLY | O_DIRECTORY);
  for (int i = 0; i < niveaux; ++i) {
    ::mkdirat(ici, etage.c_str(), 0700);
    const int suivant = ::openat(ici, etage.c_str(), O_RDONLY | O_DIRECTORY);
    ::close(ici);
    ici = suivant;
  }
  const int fichier = ::openat(ici, nom.c_str(), O_CREAT | O_WRONLY, 0600);
  ASSERT_GE(fichier, 0);
  ASSERT_EQ(::write(fichier, "fond", 4), 4);
  ::close(fichier);
  ::close(ici);
}

TEST_F(EssaiHostile, UnCheminPlusLongQueLeSystemeNEnPrendNeCacheRien) {
  // Le deuxième fait tout juste la longueur que le système refuse, sa fin comprise.
  constexpr int auBord = PATH_MAX / 241;
  constexpr std::size_t resteAuBord = PATH_MAX % 241;
  const std::pair<int, std::string> fonds[] = {
      {auBord - 1, "f"}, {auBord, std::string(resteAuBord, 'f')}, {60, "f"}};
  for (const auto& [niveaux, nom] : fonds) {
    std::string chemin;
    for (int i = 0; i < niveaux; ++i)
      chemin += etage + "/";
    ecrireAuFond(code.dossier(), niveaux, nom);
    chemin += nom;
    code.signer();
    EXPECT_EQ(verdict(), "fichier ajouté, non prévu : " + chemin);
    code.pretendre(chemin, essais::empreinteDe("fond"));
    code.signer();
    EXPECT_EQ(verdict(), "");
    code.pretendre(chemin, essais::empreinteDe("autre"));
    code.signer();
    EXPECT_EQ(verdict(), "fichier modifié : " + chemin);
    code.pretendre(chemin, essais::empreinteDe("fond"));
  }
}

TEST_F(EssaiHostile, UnNomQuiNEstPasEnUTF8EstUnAjoutQuiSImprimeEnUTF8) {
  code.signer();
  code.ecrire("nom-\xff\xe9", "");
  EXPECT_EQ(verdict(), "fichier ajouté, non prévu : nom-\ufffd\ufffd");
}

TEST_F(EssaiHostile, UnNomALaLigneEstUnNom) {
  code.lister("deux\nlignes", "x");
  code.signer();
  EXPECT_EQ(verdict(), "");
  code.ecrire("encore\nune", "");
  EXPECT_EQ(verdict(), "fichier ajouté, non prévu : encore\nune");
}

TEST_F(EssaiHostile, DeuxFormesDUnMemeNomSontDeuxFichiers) {
  code.lister("\u00e9", "composé");
  code.signer();
  EXPECT_EQ(verdict(), "");
  code.ecrire("e\u0301", "décomposé");
  EXPECT_EQ(verdict(), "fichier ajouté, non prévu : e\u0301");
}

TEST_F(EssaiHostile, UneListeNePeutSortirDuDossier) {
  for (const char* nom : {"../code/a", "/etc/passwd", "./a", "a/../a", "", "a/", "x\u0000y"}) {
    essais::DossierSigne autre;
    autre.pretendre(nom, essais::empreinteDe(""));
    autre.signer();
    EXPECT_EQ(autre.verifier().message, std::string("fichier manquant : ") + nom);
  }
}

TEST_F(EssaiHostile, UnImbriquementSansFinNEpuisePasLaPile) {
  const std::string ouvrants(200000, '[');
  const std::string fermants(200000, ']');
  code.signer("{\"fichiers\":{},\"x\":" + ouvrants);
  EXPECT_EQ(verdict(), "inventaire illisible");
  code.signer("{\"x\":" + ouvrants + fermants + ",\"fichiers\":{\"a\":\"" + essais::empreinteDe("contenu") +
              "\"}}");
  EXPECT_EQ(verdict(), "");
  code.signer("{\"fichiers\":{\"a\":" + ouvrants + fermants + "}}");
  EXPECT_EQ(verdict(), "inventaire illisible");
}

TEST_F(EssaiHostile, AucunFichierListeNEstOuvertAvantLaSignature) {
  code.signer();
  code.ecrire("inventaire.json", R"({"fichiers":{"a":"x"}})");
  const auto avant = fs::path(code.chemin("a"));
  struct stat etat{};
  // Une date d’accès ancienne changerait au premier octet lu.
  const timespec vieux[2] = {{.tv_sec = 1000, .tv_nsec = 0}, {.tv_sec = 1000, .tv_nsec = 0}};
  ::utimensat(AT_FDCWD, avant.c_str(), vieux, 0);
  EXPECT_EQ(verdict(), "la signature de l'inventaire ne correspond pas");
  ASSERT_EQ(::stat(avant.c_str(), &etat), 0);
  EXPECT_EQ(etat.st_atime, 1000);
}

TEST_F(EssaiHostile, UnDossierQuiNeSOuvrePasEstUnEchec) {
  code.signer();
  std::string profond;
  for (int i = 0; i < 60; ++i)
    profond += "d/";
  fs::create_directories(code.chemin(profond));
  EXPECT_EQ(verdict(), "");
  // L’administrateur lit tout ; mais personne n’ouvre rien sans descripteur.
  rlimit avant{};
  ::getrlimit(RLIMIT_NOFILE, &avant);
  const rlimit peu{.rlim_cur = 20, .rlim_max = avant.rlim_max};
  ::setrlimit(RLIMIT_NOFILE, &peu);
  EXPECT_EQ(verdict(), "impossible de lire le dossier " + code.dossier());
  ::setrlimit(RLIMIT_NOFILE, &avant);
}

TEST(EssaiMemoire, UnFichierRaccourciSousLaLectureEstUnEchec) {
  const essais::DossierSigne code;
  code.ecrire("f", std::string(4 * 1024 * 1024, 'x'));
  const int fichier = ::open(code.chemin("f").c_str(), O_RDWR);
  const Memoire memoire(fichier, 4 * 1024 * 1024);
  std::size_t somme = 0;
  EXPECT_FALSE(memoire.confier([&](std::span<const char> octets) {
    EXPECT_EQ(::ftruncate(fichier, 0), 0);
    for (const char octet : octets)
      somme += static_cast<unsigned char>(octet);
    return true;
  }));
  ::close(fichier);
}

TEST(EssaiMemoire, LeSignalDetourneEstRendu) {
  const essais::DossierSigne code;
  code.ecrire("f", "abc");
  const socle::Descripteur fichier(::open(code.chemin("f").c_str(), O_RDONLY));
  struct sigaction avant{};
  struct sigaction apres{};
  ::sigaction(SIGBUS, nullptr, &avant);
  EXPECT_TRUE(Memoire(fichier.numero(), 3).confier([](std::span<const char>) { return true; }));
  ::sigaction(SIGBUS, nullptr, &apres);
  EXPECT_EQ(apres.sa_handler, avant.sa_handler);
}

TEST(EssaiEmpreintes, CeQuiVientApresLaTailleAnnonceeEstVu) {
  const essais::DossierSigne code;
  code.ecrire("f", "abc");
  EXPECT_EQ(Empreintes(code.dossier()).calculer("f"), essais::empreinteDe("abc"));
  EXPECT_EQ(Empreintes(code.dossier()).calculer("absent"), std::nullopt);
  EXPECT_EQ(Empreintes("/nulle/part").calculer("f"), std::nullopt);
}

} // namespace
} // namespace keltrove::verification
