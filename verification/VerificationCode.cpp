#include "verification/VerificationCode.hpp"

#include "socle/Fichiers.hpp"
#include "socle/Texte.hpp"
#include "verification/ClePublique.hpp"
#include "verification/Empreintes.hpp"
#include "verification/Inventaire.hpp"
#include "verification/ListeFichiers.hpp"
#include "verification/OrdreCanonique.hpp"
#include "verification/Signature.hpp"

#include <algorithm>
#include <iterator>
#include <optional>
#include <utility>
#include <vector>

#include <fmt/format.h>
#include <openssl/crypto.h>

namespace keltrove::verification::VerificationCode {
namespace {

// De quoi lister plus d’un million de fichiers.
constexpr std::size_t inventaireMaximal = 256UL * 1024 * 1024;
constexpr std::size_t signatureMaximale = 64UL * 1024;

using Defaut = std::optional<std::string>;

std::optional<std::string> chargerSignature(const std::string& chemin) {
  const auto texte = socle::lireFichier(chemin, signatureMaximale);
  return texte ? lireSignature(*texte) : std::nullopt;
}

// Les textes de `a` qui ne sont pas dans `b`, toutes deux triées par octets.
std::vector<std::string> difference(const std::vector<std::string>& a, const std::vector<std::string>& b) {
  std::vector<std::string> restes;
  std::ranges::set_difference(a, b, std::back_inserter(restes));
  return restes;
}

Defaut comparerLesNoms(std::vector<std::string> presents, const Inventaire& inventaire) {
  std::ranges::sort(presents);
  std::vector<std::string> prevus;
  std::ranges::transform(inventaire, std::back_inserter(prevus), &Inventaire::value_type::first);
  if (const auto ajoutes = difference(presents, prevus); !ajoutes.empty())
    return "fichier ajouté, non prévu : " + premierSelonLOrdreCanonique(ajoutes);
  if (const auto manquants = difference(prevus, presents); !manquants.empty())
    return "fichier manquant : " + premierSelonLOrdreCanonique(manquants);
  return std::nullopt;
}

std::string direLeRefus(Refus refus, const std::string& dossier) {
  if (refus == Refus::illisible) return "impossible de lire le dossier " + dossier;
  const Mesure mesure;
  return fmt::format("dossier trop grand pour être vérifié (plus de {} niveaux, de {} dossiers revus par des "
                     "liens ou de {} Mio de noms) : {}",
                     mesure.niveaux, mesure.revus, mesure.octets / 1024 / 1024, dossier);
}

Defaut comparerLesEmpreintes(const std::string& dossier, const Inventaire& inventaire) {
  std::vector<std::string> chemins;
  std::ranges::transform(inventaire, std::back_inserter(chemins), &Inventaire::value_type::first);
  trierSelonLOrdreCanonique(chemins);
  Empreintes empreintes(dossier);
  for (const auto& chemin : chemins) {
    const auto empreinte = empreintes.calculer(chemin);
    if (!empreinte) return "fichier illisible : " + chemin;
    if (*empreinte != inventaire.at(chemin)) return "fichier modifié : " + chemin;
  }
  return std::nullopt;
}

Defaut chercherUnDefaut(const std::string& dossier, const std::string& cheminClePublique) {
  const auto cheminInventaire = socle::ajouterComposant(dossier, "inventaire.json");
  const auto cheminSignature = socle::ajouterComposant(dossier, "inventaire.sig");
  const auto octets = socle::lireFichier(cheminInventaire, inventaireMaximal);
  if (!octets) return "inventaire absent : " + cheminInventaire;
  const auto signature = chargerSignature(cheminSignature);
  if (!signature) return "signature absente ou illisible : " + cheminSignature;
  const auto cle = chargerClePublique(cheminClePublique);
  if (!cle) return "clé publique illisible : " + cheminClePublique;
  if (!cle->aSigne(*octets, *signature)) return "la signature de l'inventaire ne correspond pas";
  const auto inventaire = lireInventaire(*octets);
  if (!inventaire) return "inventaire illisible";
  auto presents = listerFichiers(dossier);
  if (!presents) return direLeRefus(presents.error(), dossier);
  if (const auto defaut = comparerLesNoms(std::move(*presents), *inventaire)) return defaut;
  return comparerLesEmpreintes(dossier, *inventaire);
}

} // namespace

Resultat verifier(const std::string& dossier, const std::string& cheminClePublique) {
  // Les réglages d’OpenSSL de la machine n’ont rien à dire ici, et coûtent à lire.
  OPENSSL_init_crypto(OPENSSL_INIT_NO_LOAD_CONFIG | OPENSSL_INIT_NO_LOAD_CRYPTO_STRINGS, nullptr);
  const auto defaut = chercherUnDefaut(dossier, cheminClePublique);
  return {.ok = !defaut, .message = defaut ? socle::enUTF8(*defaut) : ""};
}

} // namespace keltrove::verification::VerificationCode
