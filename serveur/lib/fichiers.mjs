import { randomBytes } from 'node:crypto';
import { chmodSync, readdirSync, renameSync, rmSync, statSync, writeFileSync } from 'node:fs';
import { open, rename, rm } from 'node:fs/promises';
import { join } from 'node:path';

const PROVISOIRE = /^keltrove-(carnet\.json|jeton)\.[0-9a-f]{8}\.tmp$/;

const nommerUnProvisoire = (chemin) => `${chemin}.${randomBytes(4).toString('hex')}.tmp`;

// Le fichier est toujours l’ancien ou le nouveau en entier, même si la machine s’éteint au milieu. Attendre le disque
// ne doit pas retarder une touche : cette écriture-là se répète tant qu’un terminal parle.
export async function ecrireAtomiquement(chemin, texte) {
  const provisoire = nommerUnProvisoire(chemin);
  try {
    const fichier = await open(provisoire, 'wx', 0o600);
    try {
      await fichier.writeFile(texte);
      await fichier.sync();
    } finally {
      await fichier.close();
    }
    await rename(provisoire, chemin);
  } catch (erreur) {
    await rm(provisoire, { force: true });
    throw erreur;
  }
}

// Au démarrage, avant de répondre à quiconque.
export function ecrireToutDeSuite(chemin, texte) {
  const provisoire = nommerUnProvisoire(chemin);
  try {
    writeFileSync(provisoire, texte, { flag: 'wx', mode: 0o600 });
    renameSync(provisoire, chemin);
  } catch (erreur) {
    rmSync(provisoire, { force: true });
    throw erreur;
  }
}

// Ce qu’un serveur tué au milieu d’une écriture a laissé.
export function balayerLesProvisoires(dossier) {
  for (const nom of readdirSync(dossier)) if (PROVISOIRE.test(nom)) rmSync(join(dossier, nom), { force: true });
}

// Copié ou restauré, un fichier peut revenir lisible de tous.
export function rendrePrive(chemin) {
  if ((statSync(chemin).mode & 0o077) !== 0) chmodSync(chemin, 0o600);
}
