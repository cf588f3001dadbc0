// Reglages : les réglages de l’application, en lecture seule.
//
// Rien n’est gardé en mémoire : chaque accès relit l’environnement ou le fichier. L’application ne crée ni ne
// modifie jamais ces fichiers ; le serveur, qui trouve seul son port et son jeton, les partage avec elle.
// Aucune opération ne signale d’erreur : une valeur absente ou illisible donne la valeur par défaut. Un
// fichier de plus d’un mébioctet compte pour illisible. Utilisables depuis tout fil : passé son lancement,
// l’application ne change plus son environnement.
#pragma once

#include <optional>
#include <string>

namespace keltrove::socle::Reglages {

// Le même que celui du serveur (serveur/lib/reglages.mjs) : ils doivent se trouver sans se parler.
inline constexpr int portParDefaut = 7777;

// HOME si elle est présente et non vide ; sinon le dossier personnel que le système connaît ; sinon « / ».
std::string maison();

// KELTROVE_ESSAI et KELTROVE_DISCRET : vrais exactement pour « 1 ».
bool modeEssai();
bool modeDiscret();
// L’un ou l’autre : une application d’appoint, qui n’est pas celle de l’utilisateur et ne le consulte pas.
bool accessoire();

// Dans le dossier « .zelcor » de la maison ; ni les fichiers ni ce dossier n’existent forcément.
std::string cheminEtatEssai();
std::string cheminJeton();
std::string dossierKeltroveInstalle();

// KELTROVE_ESSAI_QUITTER en secondes, en mode essai seulement ; 0 veut dire jamais. Le point sépare les
// décimales, quelle que soit la langue du processus ; un nombre négatif ou mal écrit compte pour 0.
double secondesAvantAuToQuitter();

// Le jeton d’accès au serveur, sans les blancs qui l’entourent ; rien s’il n’y en a pas ou s’il n’est pas en
// UTF-8. Un secret : il ne va ni au journal, ni à l’écran, ni à un autre compte.
std::optional<std::string> jeton();

// Le membre « port » du fichier de réglages s’il est un entier de 1 à 65535 ; sinon `portParDefaut`.
int portSouhaite();

} // namespace keltrove::socle::Reglages
