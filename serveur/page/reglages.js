import { essayer } from '/essayer.js';

const CLE = 'keltrove-reglages';

// Ce que devient une valeur gardée ; celle d’origine, si elle n’a pas de sens ou s’il n’y en a pas.
const ouiOuNon = (origine) => (valeur) => (typeof valeur === 'boolean' ? valeur : origine);
const entier = (origine, { de, a }) => (valeur) => (Number.isInteger(valeur) ? Math.min(Math.max(valeur, de), a) : origine);

const REGLAGES = {
  // De zéro, écrit par mégarde, il ne laisserait plus rien voir pour le corriger.
  corps: entier(14, { de: 8, a: 32 }),
  lecteur: ouiOuNon(false),
  collage: ouiOuNon(true),
  prevenir: ouiOuNon(true),
};

const panneau = document.querySelector('.reglages');
const formulaire = panneau.querySelector('form');
const lire = () => essayer(() => JSON.parse(localStorage.getItem(CLE))) ?? {};
const verifier = (gardees) => Object.fromEntries(Object.entries(REGLAGES).map(([nom, juger]) => [nom, juger(gardees[nom])]));

// Les préférences de l’utilisateur, gardées par le navigateur. Un changement s’annonce par un événement « reglages ».
export let valeurs = verifier(lire());

// Sans valeur, celle d’origine.
export function changer(nom, valeur) {
  valeurs = { ...valeurs, [nom]: REGLAGES[nom](valeur) };
  // Le reste demeure tel qu’il est gardé, fût-il d’une autre version de la page.
  essayer(() => localStorage.setItem(CLE, JSON.stringify({ ...lire(), [nom]: valeurs[nom] })));
  dispatchEvent(new Event('reglages'));
}

export function ouvrirLesReglages() {
  for (const [nom, valeur] of Object.entries(valeurs)) {
    // Une case ne se coche que par « checked », le reste ne s’écrit que dans « value ».
    Object.assign(formulaire.elements[nom], { checked: valeur, value: valeur });
  }
  if (!panneau.open) panneau.showModal();
}

formulaire.addEventListener('change', ({ target }) => {
  const { name, type, validity } = target;
  if (!(name in REGLAGES) || !validity.valid) return;
  changer(name, target[{ checkbox: 'checked', number: 'valueAsNumber' }[type] ?? 'value']);
});
