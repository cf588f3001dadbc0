#include "moteur/ErreurServeur.hpp"

#include "socle/Texte.hpp"

#include <fmt/format.h>

namespace keltrove::moteur {
namespace {

template <typename... Cas>
struct Selon : Cas... {
  using Cas::operator()...;
};

} // namespace

std::string titreCourt(const ErreurServeur& erreur) {
  return std::visit(Selon{
                        [](const CodeIntrouvable&) { return "Le code de keltrove est introuvable"; },
                        [](const LancementImpossible&) { return "Le serveur n’a pas pu démarrer"; },
                        [](const MortAuDemarrage&) { return "Le serveur s’est arrêté aussitôt"; },
                        [](const PasDeReponse&) { return "Le serveur ne répond pas"; },
                        [](const PerduEnRoute&) { return "Le serveur s’est arrêté"; },
                        [](const NodeIntrouvable&) { return "Il manque Node sur cet ordinateur"; },
                        [](const CodeModifie&) { return "Cette copie de keltrove a été modifiée"; },
                    },
                    erreur);
}

std::string explication(const ErreurServeur& erreur) {
  using std::string;
  return std::visit(
      Selon{
          [](const CodeIntrouvable& e) -> string {
            std::vector<string> lignes;
            lignes.reserve(e.essayes.size());
            for (const auto& chemin : e.essayes)
              lignes.push_back("  • " + chemin);
            return "L’application n’a pas retrouvé le fichier « serveur.mjs ». Elle a regardé ici :\n" +
                   socle::joindre(lignes, "\n");
          },
          [](const LancementImpossible& e) -> string {
            return "macOS a refusé de lancer le serveur. Il dit : " + e.raison;
          },
          [](const MortAuDemarrage&) -> string {
            return "Le serveur a démarré puis s’est arrêté tout de suite. Ce qu’il a écrit avant de partir "
                   "est en dessous : c’est là que se trouve la vraie raison.";
          },
          [](const PasDeReponse& e) -> string {
            return fmt::format(
                "Le serveur a été lancé, il n’a pas planté, mais au bout de {} secondes il ne "
                "répond toujours pas sur le port {}. Ce qu’il a écrit jusque-là est en dessous.",
                e.secondes, e.port);
          },
          [](const PerduEnRoute&) -> string {
            return "Le serveur de keltrove tournait, et il vient de s’arrêter. Les terminaux qui étaient "
                   "ouverts sont fermés ; leur liste, elle, a été notée et reviendra au prochain démarrage.";
          },
          [](const NodeIntrouvable&) -> string {
            return "keltrove a besoin du programme « Node » pour fonctionner, et il n’est nulle part sur cet "
                   "ordinateur. Cette version de l’application ne l’emporte pas encore avec elle.";
          },
          [](const CodeModifie&) -> string {
            return "Cette copie de keltrove a été modifiée. Réinstallez-la depuis " KELTROVE_SITE;
          },
      },
      erreur);
}

std::string conseil(const ErreurServeur& erreur) {
  const auto reessayer = [] {
    return "Cliquez sur « Réessayer ». Si cela recommence, montrez le détail ci-dessous.";
  };
  return std::visit(
      Selon{
          [](const CodeIntrouvable&) { return "Réinstallez l’application depuis l’installateur fourni."; },
          [&](const LancementImpossible&) { return reessayer(); },
          [&](const MortAuDemarrage&) { return reessayer(); },
          [&](const PasDeReponse&) { return reessayer(); },
          [&](const PerduEnRoute&) { return reessayer(); },
          [](const NodeIntrouvable&) {
            return "Installez Node, ou attendez la version de l’application qui l’emporte avec elle.";
          },
          [](const CodeModifie&) {
            return "Réinstallez-la depuis " KELTROVE_SITE " : ne lancez pas une copie modifiée.";
          },
      },
      erreur);
}

std::optional<std::string> journal(const ErreurServeur& erreur) {
  auto texte = std::visit(
      []<typename Cas>(const Cas& e) -> std::string {
        if constexpr (requires { e.journal; })
          return e.journal;
        else
          return "";
      },
      erreur);
  if (texte.empty()) return std::nullopt;
  return texte;
}

} // namespace keltrove::moteur
