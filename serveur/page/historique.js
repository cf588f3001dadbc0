import { envoyer } from '/liaison.js';
import { lireLesLignes } from '/lignes.js';
import { choisie } from '/terminaux.js';

// Sans couper un caractère, et sans dépasser ce que le serveur prend en un message.
const MORCEAUX = /[^]{1,65536}/gu;

// Le texte entier d’un terminal, dans un fichier que le serveur écrit : il est de cette machine et de ce compte, et dit
// où, dans l’application comme dans un navigateur. Pas l’écran d’un programme qui l’occupe tout entier : il passe.
export function enregistrerLHistorique(vue = choisie()) {
  if (!vue) return;
  const { id, nom, terminal } = vue;
  const texte = `${lireLesLignes(terminal.buffer.normal).join('\n').trimEnd()}\n`;
  for (const morceau of texte.match(MORCEAUX)) envoyer({ type: 'historique', id, texte: morceau });
  envoyer({ type: 'enregistrer', id, nom });
}
