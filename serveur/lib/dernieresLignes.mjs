import { setImmediate as cederLaMain } from 'node:timers/promises';
import { bornerLesRepetitions } from '../page/bornes.js';
import { grouperSurDemande } from '../page/graphemes.js';
import { compterLesLargeurs } from '../page/largeurs.js';
import { lireLesLignes } from '../page/lignes.js';

export const NOMBRE_DE_LIGNES = 200;
const FIN_DE_SESSION = '── fin de la session précédente ──';
const LIGNES_D_UNE_INVITE = 3;
// Relue d’un trait, une longue sortie retarderait les touches de tous les terminaux. La bibliothèque passe d’un morceau
// au suivant par un minuteur, et des minuteurs échus s’enchaînent sans qu’une touche passe entre eux.
const MORCEAU = 4096;

let bibliotheque = null;

// Longue à charger : après la première page, mais sans attendre le jour où les descripteurs manqueraient.
export const chargerLaBibliotheque = () => (bibliotheque ??= Promise.all([import('@xterm/headless'), import('@xterm/addon-unicode11')]));

// Des couleurs, une annonce, le collage encadré : ce qui ne déplace pas le curseur.
const SANS_MOUVEMENT = /\x1b\[[\d;:]*m|\x1b\](?:0|2|7|9|99|133|777);[^\x00-\x1f]*(?:\x07|\x1b\\)|\x1b\[\?2004[hl]/g;
const AUTRE_COMMANDE = /[\x00-\x09\x0b-\x1f\x7f-\x9f]/;

// Ce qu’imprime le plus souvent un bavard se lit sans terminal, pour cent fois moins ; rien si ce n’est pas si simple.
function lireDuTexte(sortie) {
  if (/(^|[^\r])\n/.test(sortie)) return null;
  const texte = sortie.replace(SANS_MOUVEMENT, '').replace(/\r+\n/g, '\n');
  return AUTRE_COMMANDE.test(texte) ? null : texte.split('\n');
}

// Le texte, sans couleurs ni curseur, que cette sortie laisse à l’écran ; rien tant qu’un programme occupe l’écran de
// remplacement, qui disparaîtra avec lui. Seul un vrai terminal sait ce que deviennent les lignes éditées.
export async function lireLesDernieresLignes(sortie, taille) {
  const lues = lireDuTexte(sortie) ?? (await lireUnEcran(sortie, taille));
  while (lues?.at(-1) === '') lues.pop();
  return lues?.slice(-NOMBRE_DE_LIGNES) ?? null;
}

async function lireUnEcran(sortie, { colonnes, lignes }) {
  const [{ default: { Terminal } }, { default: { Unicode11Addon } }] = await chargerLaBibliotheque();
  const terminal = new Terminal({ cols: colonnes, rows: lignes, scrollback: NOMBRE_DE_LIGNES, allowProposedApi: true });
  bornerLesRepetitions(terminal);
  compterLesLargeurs(terminal, Unicode11Addon);
  grouperSurDemande(terminal, async () => (await import('@xterm/addon-unicode-graphemes')).default.UnicodeGraphemesAddon);
  for (let debut = 0; debut < sortie.length; debut += MORCEAU) {
    await new Promise((suite) => terminal.write(sortie.slice(debut, debut + MORCEAU), suite));
    await cederLaMain();
  }
  const tampon = terminal.buffer.active;
  const lues = tampon.type === 'normal' ? lireLesLignes(tampon) : null;
  terminal.dispose();
  return lues;
}

// La liste est un fichier : ce qu’on y lit n’a pas le droit de commander au terminal.
export function rejouerLesLignes(lignes) {
  if (!Array.isArray(lignes) || lignes.length === 0) return '';
  const propres = lignes.slice(-NOMBRE_DE_LIGNES).map((ligne) => `${String(ligne).replace(/\p{Cc}/gu, '')}\r\n`);
  return `${propres.join('')}\x1b[2m${FIN_DE_SESSION}\x1b[0m\r\n`;
}

// Rien, après les lignes passées, qu’une invite où rien n’a été tapé. La garder en mettrait une de plus à chaque session.
export function nAjoutentQuUneInvite(lues, passees) {
  const fin = lues.lastIndexOf(FIN_DE_SESSION);
  return fin > 0 && lues.length - fin - 1 <= LIGNES_D_UNE_INVITE && passees.slice(-fin).join('\n') === lues.slice(0, fin).join('\n');
}
