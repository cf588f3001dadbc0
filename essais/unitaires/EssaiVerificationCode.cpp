#include "DossierSigne.hpp"
#include "socle/Fichiers.hpp"

#include <algorithm>
#include <cctype>
#include <filesystem>

#include <gtest/gtest.h>

namespace keltrove::verification::VerificationCode {

static void PrintTo(const Resultat& resultat, std::ostream* flux) {
  *flux << (resultat.ok ? "ok" : "défaut « " + resultat.message + " »");
}

namespace {

const Resultat toutVaBien{true, ""};
Resultat defaut(const std::string& message) {
  return {false, message};
}

class EssaiVerification : public testing::Test {
protected:
  EssaiVerification() {
    code.lister("serveur.mjs", "bonjour");
    code.lister("lib/outil.mjs", "outil");
    code.lister("page/a/b/c.css", "");
  }
  essais::DossierSigne code;
};

TEST_F(EssaiVerification, UnDossierExactementConformeEstBon) {
  code.signer();
  EXPECT_EQ(code.verifier(), toutVaBien);
}

TEST_F(EssaiVerification, SansInventaireIlEstAbsent) {
  EXPECT_EQ(code.verifier(), defaut("inventaire absent : " + code.chemin("inventaire.json")));
}

TEST_F(EssaiVerification, SansSignatureElleEstAbsente) {
  code.signer();
  std::filesystem::remove(code.chemin("inventaire.sig"));
  EXPECT_EQ(code.verifier(), defaut("signature absente ou illisible : " + code.chemin("inventaire.sig")));
}

TEST_F(EssaiVerification, SansCleElleEstIllisible) {
  code.signer();
  EXPECT_EQ(verifier(code.dossier(), ""), defaut("clé publique illisible : "));
  EXPECT_EQ(verifier(code.dossier(), "/nulle/part"), defaut("clé publique illisible : /nulle/part"));
}

TEST_F(EssaiVerification, UnOctetDePlusDansLInventaireRomptLaSignature) {
  code.signer(R"({"fichiers":{}})");
  code.ecrire("inventaire.json", R"({"fichiers":{}} )");
  EXPECT_EQ(code.verifier(), defaut("la signature de l'inventaire ne correspond pas"));
}

TEST_F(EssaiVerification, UnInventaireAltereEtIllisibleEstDAbordUneMauvaiseSignature) {
  code.signer();
  code.ecrire("inventaire.json", "{");
  EXPECT_EQ(code.verifier(), defaut("la signature de l'inventaire ne correspond pas"));
}

TEST_F(EssaiVerification, LaSignatureDUneAutreCleNeConvientPas) {
  const essais::DossierSigne autre;
  code.signer();
  EXPECT_EQ(verifier(code.dossier(), autre.cle()), defaut("la signature de l'inventaire ne correspond pas"));
}

TEST_F(EssaiVerification, LesAjoutsSeDisentAvantLesManquesEtLesManquesAvantLesEmpreintes) {
  code.pretendre("zzz", std::string(64, '0'));
  code.pretendre("serveur.mjs", std::string(64, '0'));
  code.signer();
  code.ecrire("b/y", "");
  code.ecrire("a/x", "");
  EXPECT_EQ(code.verifier(), defaut("fichier ajouté, non prévu : a/x"));
  std::filesystem::remove_all(code.chemin("a"));
  EXPECT_EQ(code.verifier(), defaut("fichier ajouté, non prévu : b/y"));
  std::filesystem::remove_all(code.chemin("b"));
  EXPECT_EQ(code.verifier(), defaut("fichier manquant : zzz"));
  code.ecrire("zzz", "");
  EXPECT_EQ(code.verifier(), defaut("fichier modifié : serveur.mjs"));
}

TEST_F(EssaiVerification, LePremierManquantEstNomme) {
  for (const char* nom : {"m/2", "m/10", "é", "Z"})
    code.pretendre(nom, std::string(64, '0'));
  code.signer();
  EXPECT_EQ(code.verifier(), defaut("fichier manquant : Z"));
}

TEST_F(EssaiVerification, LePremierModifieEstNomme) {
  code.signer();
  code.ecrire("serveur.mjs", "Bonjour");
  code.ecrire("lib/outil.mjs", "autre");
  EXPECT_EQ(code.verifier(), defaut("fichier modifié : lib/outil.mjs"));
}

// Décomposé, « é » commence par l’octet de « e » ; composé, il vient après toutes les lettres sans accent.
TEST_F(EssaiVerification, LePremierEstCeluiDeLOrdreCanoniqueEtNonCeluiDesOctets) {
  for (const char* nom : {"e\u0301", "f"})
    code.pretendre(nom, std::string(64, '0'));
  code.signer();
  EXPECT_EQ(code.verifier(), defaut("fichier manquant : f"));
  code.ecrire("e\u0301", "");
  code.ecrire("f", "");
  EXPECT_EQ(code.verifier(), defaut("fichier modifié : f"));
  code.ecrire("e\u0301-ajout", "");
  code.ecrire("f-ajout", "");
  EXPECT_EQ(code.verifier(), defaut("fichier ajouté, non prévu : f-ajout"));
}

TEST_F(EssaiVerification, UneEmpreinteEnMajusculesEstUneModification) {
  auto empreinte = essais::empreinteDe("bonjour");
  std::ranges::transform(empreinte, empreinte.begin(), [](unsigned char c) { return std::toupper(c); });
  code.pretendre("serveur.mjs", empreinte);
  code.signer();
  EXPECT_EQ(code.verifier(), defaut("fichier modifié : serveur.mjs"));
}

TEST_F(EssaiVerification, CeQuiEstHorsInventaireNeCompteNullePart) {
  code.signer();
  for (const char* nom : {".DS_Store", "lib/.DS_Store", "node_modules/ws/index.js", "lib/node_modules/a/b",
                          "lib/inventaire.json", "page/inventaire.sig"})
    code.ecrire(nom, "n’importe quoi");
  EXPECT_EQ(code.verifier(), toutVaBien);
  code.ecrire("node_modules.js", "");
  EXPECT_EQ(code.verifier(), defaut("fichier ajouté, non prévu : node_modules.js"));
}

TEST_F(EssaiVerification, UneEntreeDansNodeModulesManqueToujours) {
  code.lister("node_modules/ws/index.js", "module");
  code.signer();
  EXPECT_EQ(code.verifier(), defaut("fichier manquant : node_modules/ws/index.js"));
}

TEST_F(EssaiVerification, UnDossierVideNeChangeRien) {
  code.signer();
  std::filesystem::create_directories(code.chemin("vide/encore"));
  EXPECT_EQ(code.verifier(), toutVaBien);
}

TEST_F(EssaiVerification, UnFichierCacheCompte) {
  code.signer();
  code.ecrire(".cache", "");
  EXPECT_EQ(code.verifier(), defaut("fichier ajouté, non prévu : .cache"));
}

TEST_F(EssaiVerification, LesLiensSontSuivisSousLeurNom) {
  const essais::DossierSigne ailleurs;
  ailleurs.ecrire("f", "lointain");
  ailleurs.ecrire("sous/g", "profond");
  std::filesystem::create_symlink(ailleurs.chemin("f"), code.chemin("lien"));
  std::filesystem::create_directory_symlink(ailleurs.chemin("sous"), code.chemin("dossier"));
  std::filesystem::create_symlink("/nulle/part", code.chemin("brise"));
  std::filesystem::create_symlink("rond", code.chemin("rond"));
  std::filesystem::create_symlink("serveur.mjs/dedans", code.chemin("travers"));
  code.pretendre("lien", essais::empreinteDe("lointain"));
  code.pretendre("dossier/g", essais::empreinteDe("profond"));
  code.signer();
  EXPECT_EQ(code.verifier(), toutVaBien);
  ailleurs.ecrire("sous/g", "changé");
  EXPECT_EQ(code.verifier(), defaut("fichier modifié : dossier/g"));
}

TEST_F(EssaiVerification, UnGrandFichierEstCondenseToutEntier) {
  std::string grand(5 * 1024 * 1024 + 17, 'x');
  code.lister("grand", grand);
  code.signer();
  EXPECT_EQ(code.verifier(), toutVaBien);
  grand.back() = 'y';
  code.ecrire("grand", grand);
  EXPECT_EQ(code.verifier(), defaut("fichier modifié : grand"));
}

TEST_F(EssaiVerification, LaFormeDeLInventaireEstExacte) {
  for (const char* inventaire : {"",
                                 "[]",
                                 "12",
                                 "null",
                                 "\"x\"",
                                 "{}",
                                 R"({"fichiers":[]})",
                                 R"({"fichiers":null})",
                                 R"({"fichiers":{"a":12}})",
                                 R"({"fichiers":{"a":null}})",
                                 R"({"fichiers":{"a":["x"]}})",
                                 R"({"Fichiers":{}})",
                                 R"({"fichiers":{}} suite)",
                                 R"({"fichiers":{}}{})",
                                 R"({"fichiers":{},})",
                                 "{'fichiers':{}}",
                                 "{\"fichiers\":{}}\x01",
                                 R"({"fichiers":{"\ud800":"x"}})",
                                 "{\"fichiers\":{\"\xff\":\"x\"}}",
                                 R"(/**/{"fichiers":{}})"}) {
    code.signer(inventaire);
    EXPECT_EQ(code.verifier(), defaut("inventaire illisible")) << inventaire;
  }
}

TEST_F(EssaiVerification, UnOctetNulRendLInventaireIllisible) {
  for (const std::string& inventaire :
       {std::string("{\"fichiers\":{}}\0", 16), std::string("{\"fichiers\":{}}\0\0suite", 22),
        std::string("\0{\"fichiers\":{}}", 16)}) {
    code.signer(inventaire);
    EXPECT_EQ(code.verifier(), defaut("inventaire illisible"));
  }
}

TEST_F(EssaiVerification, DUneCleRepeteeLaDerniereValeurCompteEtLaMarqueDOrdreEstAdmise) {
  const auto fichiers = R"({"serveur.mjs":"faux","serveur.mjs":")" + essais::empreinteDe("bonjour") +
                        R"(","lib/outil.mjs":")" + essais::empreinteDe("outil") + R"(","page/a/b/c.css":")" +
                        essais::empreinteDe("") + "\"}";
  code.signer(R"({"fichiers":{},"fichiers":)" + fichiers + "}");
  EXPECT_EQ(code.verifier(), toutVaBien);
  code.signer("\xEF\xBB\xBF{\"autre\":[1,{}],\"fichiers\":" + fichiers + "}\n\t ");
  EXPECT_EQ(code.verifier(), toutVaBien);
}

TEST_F(EssaiVerification, UnLienQuiNeSeSuitPasSansEtreAbsentEstUnFichierDeTrop) {
  code.signer();
  std::filesystem::create_symlink(std::string(300, 'x'), code.chemin("lien"));
  EXPECT_EQ(code.verifier(), defaut("fichier ajouté, non prévu : lien"));
}

TEST_F(EssaiVerification, UneSignatureOuUneCleDemesureeNEstPasLue) {
  code.signer();
  const auto signature = socle::lireFichier(code.chemin("inventaire.sig"), 1000).value();
  const auto blancs = [](std::string texte, std::size_t taille) {
    texte.resize(taille, '\n');
    return texte;
  };
  code.ecrire("inventaire.sig", blancs(signature, 64UL * 1024));
  code.ecrireLaCle(blancs(code.cleNue(), 1024UL * 1024));
  EXPECT_EQ(code.verifier().message, "");
  code.ecrireLaCle(blancs(code.cleNue(), 1024UL * 1024 + 1));
  EXPECT_EQ(code.verifier().message, "clé publique illisible : " + code.cle());
  code.ecrire("inventaire.sig", blancs(signature, 64UL * 1024 + 1));
  EXPECT_EQ(code.verifier().message, "signature absente ou illisible : " + code.chemin("inventaire.sig"));
}

TEST_F(EssaiVerification, LaSignatureAdmetDesBlancsAutourMaisPasDedans) {
  const auto lire = [&](const std::string& texte) {
    code.ecrire("inventaire.sig", texte);
    return code.verifier();
  };
  const std::string inventaire = R"({"fichiers":{}})";
  code.signer(inventaire);
  const auto signature = code.signatureDe(inventaire);
  const auto lue = defaut("fichier ajouté, non prévu : lib/outil.mjs");
  const auto illisible = defaut("signature absente ou illisible : " + code.chemin("inventaire.sig"));
  EXPECT_EQ(lire(signature), lue);
  EXPECT_EQ(lire("\r\n \t\u00a0\u2028" + signature + "\n\n\u2003"), lue);
  EXPECT_EQ(lire(signature.substr(0, 40) + "\n" + signature.substr(40)), illisible);
  EXPECT_EQ(lire(signature.substr(0, 86)), illisible) << "le bourrage manque";
  EXPECT_EQ(lire(signature + "="), illisible);
  EXPECT_EQ(lire("\xff" + signature), illisible);
  EXPECT_EQ(lire(std::string(signature).replace(3, 1, "-")), illisible)
      << "l’alphabet des adresses n’est pas admis";
  EXPECT_EQ(lire(""), defaut("la signature de l'inventaire ne correspond pas"));
  EXPECT_EQ(lire("AAAA"), defaut("la signature de l'inventaire ne correspond pas"));
}

TEST_F(EssaiVerification, UnDossierVideDeNomDonneDesNomsNus) {
  EXPECT_EQ(verifier("", code.cle()), defaut("inventaire absent : inventaire.json"));
}

TEST_F(EssaiVerification, UnDossierDeNomVideNeSeListePas) {
  code.signer();
  const auto ici = std::filesystem::current_path();
  std::filesystem::current_path(code.dossier());
  EXPECT_EQ(verifier("", code.cle()), defaut("impossible de lire le dossier "));
  std::filesystem::current_path(ici);
}

TEST_F(EssaiVerification, LaBarreFinaleDuDossierNeComptePas) {
  code.signer();
  EXPECT_EQ(verifier(code.dossier() + "/", code.cle()), toutVaBien);
}

} // namespace
} // namespace keltrove::verification::VerificationCode
