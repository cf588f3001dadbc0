import { changer, valeurs } from '/reglages.js';

// Tout ce qui agirait comme une touche : Échap, qui fait sortir du collage encadré, et le reste. Un collage n’est que du
// texte, des tabulations et des lignes.
const COMMANDES = /[\0-\x08\x0b\x0c\x0e-\x1f\x7f-\x9f]/g;
const COLLAGES = /^insertFrom(Paste|Drop|Yank)$/;
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

// Le bouton du milieu, et Maj+Inser que l’application annonce, collent la sélection et non le presse-papiers.
let laSelection = false;
addEventListener('mousedown', ({ button }) => (laSelection = button === 1), true);
addEventListener('keydown', () => (laSelection = false), true);
addEventListener('collerlaselection', () => (laSelection = true));

// Tout ce que l’on colle dans ce panneau va à `prendre`, au lieu de la zone de saisie.
export function prendreLesCollages(panneau, prendre) {
  const detourner = (evenement, texte) => {
    evenement.preventDefault();
    evenement.stopPropagation();
    if (texte) prendre(texte);
  };
  const ecouter = (nom, quand) => panneau.addEventListener(nom, quand, true);
  ecouter('paste', (evenement) => {
    if (!laSelection) return detourner(evenement, evenement.clipboardData?.getData('text/plain'));
    // WebKit montre ici le presse-papiers : on lit la sélection une fois écrite.
    evenement.stopPropagation();
    evenement.target.value = '';
  });
  ecouter('beforeinput', (evenement) => {
    if (!laSelection && COLLAGES.test(evenement.inputType)) detourner(evenement, evenement.dataTransfer?.getData('text/plain'));
  });
  ecouter('input', (evenement) => {
    if (!COLLAGES.test(evenement.inputType)) return;
    const { value } = evenement.target;
    evenement.target.value = '';
    detourner(evenement, value);
  });
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
