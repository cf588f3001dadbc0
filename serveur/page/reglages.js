import { essayer } from '/essayer.js';

const CLE = 'keltrove-reglages';
const PAR_DEFAUT = { corps: 14, lecteur: false, prevenir: true, collage: true };

const panneau = document.querySelector('.reglages');
const formulaire = panneau.querySelector('form');

// Les préférences de l’utilisateur, gardées par le navigateur. Un changement s’annonce par un événement « reglages ».
export let valeurs = verifier({ ...PAR_DEFAUT, ...essayer(() => JSON.parse(localStorage.getItem(CLE))) });

export function changer(nom, valeur = PAR_DEFAUT[nom]) {
  valeurs = verifier({ ...valeurs, [nom]: valeur });
  localStorage.setItem(CLE, JSON.stringify(valeurs));
  dispatchEvent(new Event('reglages'));
}

export function ouvrirLesReglages() {
  for (const [nom, valeur] of Object.entries(valeurs)) {
    // Une case ne se coche que par « checked », un nombre ne s’écrit que dans « value ».
    Object.assign(formulaire.elements[nom], { checked: valeur, value: valeur });
  }
  if (!panneau.open) panneau.showModal();
}

formulaire.addEventListener('change', ({ target: { name, type, checked, valueAsNumber, validity } }) => {
  if (validity.valid) changer(name, type === 'checkbox' ? checked : valueAsNumber);
});

// Un corps de zéro, écrit par mégarde, ne laisserait plus rien voir pour le corriger.
function verifier({ corps, lecteur, prevenir, collage }) {
  const entier = Number.isInteger(corps) ? Math.min(Math.max(corps, 8), 32) : PAR_DEFAUT.corps;
  return { corps: entier, lecteur: lecteur === true, prevenir: prevenir === true, collage: collage === true };
}
