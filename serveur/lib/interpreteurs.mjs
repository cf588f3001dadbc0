import { accessSync, constants, realpathSync, statSync } from 'node:fs';
import { basename, dirname, isAbsolute, join } from 'node:path';
import { essayer } from '../page/essayer.js';
import { auDossierCache, ecrireAtomiquement, lirePrive, lireUnFichier, suivreLesLiens } from './reglages.mjs';

const PERMIS = '/etc/shells';
const auChoix = () => auDossierCache('keltrove-interpreteur');
// Rien tant qu’on ne l’a pas lu.
let garde;

export const estExecutable = (chemin) => essayer(() => accessSync(chemin, constants.X_OK) ?? statSync(chemin).isFile(), false);

// Ceux que le système admet, et eux seuls : nul autre programme ne se choisit. Bien des systèmes nomment deux fois le même,
// par deux dossiers qui n’en font qu’un.
export function lireLesInterpreteurs() {
  const lignes = essayer(() => lireUnFichier(PERMIS).texte, '').split('\n').map((ligne) => ligne.trim());
  const chemins = lignes.filter((ligne) => isAbsolute(ligne) && estExecutable(ligne));
  const parVraiChemin = new Map(chemins.reverse().map((chemin) => [join(realpathSync(dirname(chemin)), basename(chemin)), chemin]));
  const permis = [...parVraiChemin.values()].reverse();
  garde ??= essayer(() => lirePrive(auChoix()).trim(), '');
  return { permis, choisi: permis.includes(garde) ? garde : null };
}

// Pour les terminaux qui s’ouvriront ; sans choix, celui du compte.
export async function choisirUnInterpreteur(chemin) {
  if (chemin !== null && !lireLesInterpreteurs().permis.includes(chemin)) return;
  garde = chemin ?? '';
  await ecrireAtomiquement(suivreLesLiens(auChoix()), `${garde}\n`);
}
