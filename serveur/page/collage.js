import { changer, valeurs } from '/reglages.js';

// Tout ce qui agirait comme une touche : Échap, qui fait sortir du collage encadré, et le reste. Un collage n’est que du
// texte, des tabulations et des lignes.
const COMMANDES = /[\0-\x08\x0b\x0c\x0e-\x1f\x7f-\x9f]/g;
const LONGUEUR_MONTREE = 4000;

const question = document.querySelector('.collage');
const apercu = question.querySelector('pre');
const formulaire = question.querySelector('form');
const { neplus } = formulaire.elements;

// Colle dans ce terminal, tel que le programme y attend un collage. S’il n’en attend pas, chaque ligne partirait comme
// validée par Entrée : on demande d’abord. Sinon, c’est fait au retour : ce qui se tape ensuite doit arriver après.
export function coller(terminal, texte) {
  const propre = texte.replace(COMMANDES, '');
  const valide = /[\r\n]/.test(propre) && !terminal.modes.bracketedPasteMode && valeurs.collage;
  if (valide) demander(propre, (choisi) => terminal.paste(choisi));
  else terminal.paste(propre);
}

// `quandChoisi(texte)` dès la réponse, et non quand la question s’est refermée : la touche suivante doit venir après.
function demander(texte, quandChoisi) {
  if (question.open) return;
  apercu.textContent = texte.slice(0, LONGUEUR_MONTREE) + (texte.length > LONGUEUR_MONTREE ? '\n…' : '');
  neplus.checked = false;
  formulaire.onsubmit = ({ submitter: { value: choix } }) => {
    if (choix === '') return;
    if (neplus.checked) changer('collage', false);
    quandChoisi(choix === 'ligne' ? texte.trim().replace(/\s*[\r\n]+\s*/g, ' ') : texte);
  };
  question.showModal();
}
