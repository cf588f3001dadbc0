import { randomBytes } from 'node:crypto';
import { chmodSync, closeSync, fsyncSync, openSync, renameSync, rmSync, statSync, writeFileSync } from 'node:fs';

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

// Copié ou restauré, un fichier peut revenir lisible de tous.
export function rendrePrive(chemin) {
  if ((statSync(chemin).mode & 0o077) !== 0) chmodSync(chemin, 0o600);
}
