// Ce que le serveur tient de qui l’a lancé, et que ses interpréteurs doivent recevoir tel quel, ou pas du tout.
import { closeSync, readdirSync, readFileSync } from 'node:fs';
import { essayer } from '../page/essayer.js';

const FERMEE_AU_LANCEMENT = 0o2000000;

// Le nombre de fichiers ouverts que l’on avait avant que Node ne le porte au maximum ; rien quand le système ne le dit
// pas. Des programmes parcourent tous les descripteurs permis : un million de trop les ralentit, et select s’y perd.
const limiteDeFichiers = essayer(() => (
  /^Max open files +(\d+)/m.exec(readFileSync(`/proc/${process.ppid}/limits`, 'utf8'))[1]
));
const AVEC_LA_LIMITE = ['/bin/sh', '-c', 'ulimit -S -n "$1" 2>/dev/null; shift; exec "$@"', 'sh'];

// Ces variables décrivent un autre terminal, celui d’où le serveur a peut-être été lancé, ou le serveur lui-même.
const OTEES = /^(COLUMNS|LINES|STY|TERMCAP|TERM_PROGRAM(_VERSION)?|TMUX(_PANE)?|VTE_VERSION|WINDOW(ID)?|KELTROVE_.*)$/;

// Le serveur, lui, garde la limite que Node a portée au maximum.
export const avecSaLimite = (commande) => (limiteDeFichiers === null ? commande : [...AVEC_LA_LIMITE, limiteDeFichiers, ...commande]);
export const environnementTransmis = () => Object.fromEntries(Object.entries(process.env).filter(([variable]) => !OTEES.test(variable)));

// Un descripteur laissé ouvert par un lanceur négligent irait jusque dans les interpréteurs. Tout ce que Node ouvre
// lui-même se ferme au lancement d’un programme : le reste vient d’avant.
export function fermerLesDescripteursRecus() {
  for (const nom of essayer(() => readdirSync('/proc/self/fd'), [])) {
    const drapeaux = essayer(() => /^flags:\s+(\d+)/m.exec(readFileSync(`/proc/self/fdinfo/${nom}`, 'utf8'))[1]);
    if (Number(nom) > 2 && drapeaux && (Number.parseInt(drapeaux, 8) & FERMEE_AU_LANCEMENT) === 0) essayer(() => closeSync(Number(nom)));
  }
}
