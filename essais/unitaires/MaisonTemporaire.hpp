// MaisonTemporaire : un dossier personnel d’essai, au nom plein d’espaces et d’accents, avec son propre port.
//
// HOME le désigne tant qu’il existe ; il disparaît avec tout ce qu’il contient, et avec ce que l’essai a
// lancé : un serveur que l’application a lancé puis rejoint, elle le laisse.
#pragma once

#include <string>
#include <string_view>

namespace keltrove::essais {

class MaisonTemporaire {
public:
  MaisonTemporaire();
  MaisonTemporaire(const MaisonTemporaire&) = delete;
  MaisonTemporaire& operator=(const MaisonTemporaire&) = delete;
  ~MaisonTemporaire();

  const std::string& racine() const { return racine_; }
  std::string chemin(std::string_view relatif) const { return racine_ + "/" + std::string(relatif); }

  // Le port libre écrit dans .zelcor/keltrove.json.
  int port() const { return port_; }

  void ecrire(std::string_view relatif, std::string_view contenu) const; // crée les dossiers parents
  void ecrireExecutable(std::string_view relatif, std::string_view contenu) const;
  void effacer(std::string_view relatif) const;
  std::string lire(std::string_view relatif) const; // vide si le fichier manque

private:
  std::string racine_;
  std::string ancienneMaison_;
  int port_ = 0;
};

// Un port de 127.0.0.1 sur lequel personne n’écoute au moment de l’appel.
int portLibre();

} // namespace keltrove::essais
