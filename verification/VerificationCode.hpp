// VerificationCode : un dossier de code est-il exactement celui que sa liste signée décrit ?
//
// La liste, « inventaire.json », nomme chaque fichier et son empreinte SHA-256 ; « inventaire.sig » la signe
// (Ed25519, RFC 8032). Rien n’est modifié, et aucun fichier listé n’est ouvert avant que la signature ne soit
// bonne. Rien n’attend : un tube, une prise ou un périphérique à la place d’un fichier attendu est illisible,
// aussitôt. Ce que horsInventaire() écarte, dont les modules de Node, n’est pas vérifié. Bloquante, le temps
// de lire tous les fichiers listés ; une vérification à la fois dans un processus (voir Memoire).
#pragma once

#include <string>

namespace keltrove::verification::VerificationCode {

struct Resultat {
  bool ok = false;
  std::string message; // vide si tout va bien ; sinon le premier défaut, en UTF-8
  bool operator==(const Resultat&) const = default;
};

// Dans l’ordre : inventaire lisible, signature, clé, signature juste, contenu de l’inventaire, puis les noms
// (ajoutés avant manquants) et les empreintes. Le premier défaut arrête tout.
Resultat verifier(const std::string& dossier, const std::string& cheminClePublique);

} // namespace keltrove::verification::VerificationCode
