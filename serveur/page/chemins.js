import { envoyer } from '/liaison.js';
import { survoler } from '/liens.js';
import { placer, repererLaLigne } from '/lignes.js';
import { valeurs } from '/reglages.js';
import { reconnaitreLesChemins } from '/traces.js';

const attentes = new Map();
let demandes = 0;

// Un chemin suivi d’une ligne, s’il mène à un vrai fichier : c’est le serveur qui le sait.
export function chercherLesChemins(terminal, id) {
  terminal.registerLinkProvider({
    provideLinks(y, rendre) {
      const ligne = repererLaLigne(terminal.buffer.active, y - 1);
      const candidats = reconnaitreLesChemins(ligne.texte);
      if (candidats.length === 0) return rendre();
      demandes += 1;
      attentes.set(demandes, ({ existent }) => rendre(candidats.filter((_, rang) => existent[rang]).flatMap((candidat) => (
        enLien(terminal, id, ligne, candidat)
      ))));
      envoyer({ type: 'chemins', id, demande: demandes, chemins: candidats.map(({ chemin }) => chemin) });
    },
  });
}

// La réponse du serveur. Celles qui ne sont pas venues ne viendront plus : la souris est passée.
export function recevoirLesChemins(reponse) {
  attentes.get(reponse.demande)?.(reponse);
  for (const demande of attentes.keys()) if (demande <= reponse.demande) attentes.delete(demande);
}

function enLien(terminal, id, dansLaLigne, { texte, index, chemin, ligne, colonne }) {
  const places = placer(terminal.buffer.active, dansLaLigne, index, texte.length);
  if (places.length === 0) return [];
  const [debut, fin] = [places[0], places.at(-1)];
  const ouvrir = () => envoyer({ type: 'editer', id, chemin, ligne, colonne, commande: valeurs.editeur });
  return {
    range: { start: { x: debut.colonne + 1, y: debut.rang + 1 }, end: { x: fin.colonne + fin.largeur, y: fin.rang + 1 } },
    text: texte,
    hover: () => survoler({ texte: `${chemin}, ligne ${ligne}`, ouvrir }),
    leave: () => survoler(null),
    activate: ({ ctrlKey, metaKey }) => (ctrlKey || metaKey) && ouvrir(),
  };
}
