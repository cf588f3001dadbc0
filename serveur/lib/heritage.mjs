// Ce que le serveur tient de qui l’a lancé, et que ses interpréteurs doivent recevoir tel quel, ou pas du tout.
import { closeSync, readdirSync, readFileSync } from 'node:fs';
import { essayer } from '../page/essayer.js';

const FERMEE_AU_LANCEMENT = 0o2000000;

// Le nombre de fichiers ouverts que l’on avait avant que Node ne le porte au maximum ; rien quand le système ne le dit
// pas. Des programmes parcourent tous les descripteurs permis : un million de trop les ralentit, et select s’y perd.
export const limiteDeFichiers = essayer(() => (
  /^Max open files +(\d+)/m.exec(readFileSync(`/proc/${process.ppid}/limits`, 'utf8'))[1]
));

// Un descripteur laissé ouvert par un lanceur négligent irait jusque dans les interpréteurs. Tout ce que Node ouvre
// lui-même se ferme au lancement d’un programme : le reste vient d’avant.
export function fermerLesDescripteursRecus() {
  for (const nom of essayer(() => readdirSync('/proc/self/fd'), [])) {
    const drapeaux = essayer(() => /^flags:\s+(\d+)/m.exec(readFileSync(`/proc/self/fdinfo/${nom}`, 'utf8'))[1]);
    if (Number(nom) > 2 && drapeaux && (Number.parseInt(drapeaux, 8) & FERMEE_AU_LANCEMENT) === 0) essayer(() => closeSync(Number(nom)));
  }
}
