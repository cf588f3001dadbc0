import { randomBytes } from 'node:crypto';
import { closeSync, fsyncSync, openSync, renameSync, rmSync, writeFileSync } from 'node:fs';

// Le fichier est toujours l’ancien ou le nouveau en entier, même si la machine s’éteint au milieu.
export function ecrireAtomiquement(chemin, texte) {
  const provisoire = `${chemin}.${randomBytes(4).toString('hex')}.tmp`;
  try {
    const fichier = openSync(provisoire, 'wx', 0o600);
    try {
      writeFileSync(fichier, texte);
      fsyncSync(fichier);
    } finally {
      closeSync(fichier);
    }
    renameSync(provisoire, chemin);
  } catch (erreur) {
    rmSync(provisoire, { force: true });
    throw erreur;
  }
}
