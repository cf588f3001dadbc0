import { aviser } from '/avis.js';
import { essayer } from '/essayer.js';
import { valeurs } from '/reglages.js';

// En octets.
const TAILLE_MAXIMALE = 100_000;
const LONGUEUR_MAXIMALE = Math.ceil(TAILLE_MAXIMALE / 3) * 4;
const LONGUEUR_MONTREE = 2000;
// En millisecondes : qui écrit sans fin n’occupe pas la page, et le dernier mot reste.
const REPIT = 100;
// Où écrire, puis quoi, en base64. Un programme peut aussi n’y viser que la sélection, dont la page ne dispose pas.
const DEMANDE = /^([cpqs0-7]*);([A-Za-z0-9+/]+={0,2})$/;

const question = document.querySelector('.presse-papiers');
const reponses = new Map();
let repit = null;
let suivant = null;

// Ce qu’un programme de ce terminal écrit dans le presse-papiers (OSC 52), s’il y est autorisé. Jamais il n’y lit : sa
// demande reste sans réponse. `passe` : ce n’est qu’une sortie d’autrefois, que l’on relit.
export function prendreLesEcritures(vue, { passe }) {
  vue.terminal.parser.registerOscHandler(52, (donnees) => {
    const texte = valeurs.pressePapiers && !passe() ? lire(donnees) : null;
    if (texte) proposer(vue, texte);
    return true;
  });
}

// Dès que la souris a fini de sélectionner. Une recherche sélectionne aussi : ce n’est pas un choix de l’utilisateur.
export function copierEnSelectionnant({ panneau, terminal }) {
  let souris = false;
  panneau.addEventListener('mousedown', ({ button }) => {
    souris = button === 0;
    addEventListener('mouseup', () => (souris = false), { once: true });
  }, true);
  terminal.onSelectionChange(() => {
    if (valeurs.copie && souris && terminal.hasSelection()) document.execCommand('copy');
  });
}

function lire(donnees) {
  if (donnees.length > LONGUEUR_MAXIMALE + donnees.indexOf(';') + 1) return null;
  const [, ou, base64] = DEMANDE.exec(donnees) ?? [];
  if (base64 === undefined || (ou !== '' && !/[cs]/.test(ou))) return null;
  return essayer(() => new TextDecoder('utf-8', { fatal: true }).decode(Uint8Array.from(atob(base64), (signe) => signe.charCodeAt(0))));
}

function proposer(vue, texte) {
  const reponse = reponses.get(vue.id);
  if (reponse === true) ecrire(texte);
  if (reponse === undefined && !question.open) demander(vue, texte);
}

// La réponse vaut pour ce terminal tant que la page est ouverte : qui refuse n’est pas redérangé.
function demander(vue, texte) {
  question.querySelector('p').textContent = `Un programme de « ${vue.nom} » veut écrire dans le presse-papiers.`;
  question.querySelector('pre').textContent = texte.slice(0, LONGUEUR_MONTREE) + (texte.length > LONGUEUR_MONTREE ? '\n…' : '');
  Object.assign(question, { returnValue: '', onclose: () => reponses.set(vue.id, question.returnValue === 'oui') });
  // Dès la réponse, tant que le clic autorise à écrire.
  question.querySelector('form').onsubmit = ({ submitter: { value } }) => value === 'oui' && ecrire(texte);
  question.showModal();
}

function ecrire(texte) {
  if (repit !== null) return (suivant = texte);
  repit = setTimeout(() => {
    const attendu = suivant;
    repit = suivant = null;
    if (attendu !== null) ecrire(attendu);
  }, REPIT);
  const refus = () => aviser({ texte: 'Le presse-papiers n’a pas pu être écrit : cliquez dans la page, puis recommencez.' });
  navigator.clipboard.writeText(texte).catch(refus);
}
