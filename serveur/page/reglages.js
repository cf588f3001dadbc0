import { essayer } from '/essayer.js';

const CLE = 'keltrove-reglages';

// Ce que devient une valeur gardée ; celle d’origine, si elle n’a pas de sens ou s’il n’y en a pas.
const ouiOuNon = (origine) => (valeur) => (typeof valeur === 'boolean' ? valeur : origine);
const entier = (origine, { de, a }) => (valeur) => (Number.isFinite(valeur) ? Math.min(Math.max(Math.round(valeur), de), a) : origine);
const parmi = (origine, ...choix) => (valeur) => (choix.includes(valeur) ? valeur : origine);
const texte = (origine, forme) => (valeur) => (typeof valeur === 'string' && forme.test(valeur) ? valeur : origine);

const REGLAGES = {
  // De zéro, écrit par mégarde, il ne laisserait plus rien voir pour le corriger.
  corps: entier(14, { de: 8, a: 32 }),
  theme: parmi('systeme', 'clair', 'sombre', 'contraste', 'papier', 'braise', 'nuit'),
  police: texte('', /^[^"\\\p{Cc}]{1,100}$/u),
  curseur: parmi('bloc', 'barre', 'souligne'),
  clignotant: ouiOuNon(false),
  historique: entier(10_000, { de: 1000, a: 100_000 }),
  images: ouiOuNon(true),
  editeur: texte('', /^\P{Cc}{1,300}$/u),
  lecteur: ouiOuNon(false),
  collage: ouiOuNon(true),
  copie: ouiOuNon(false),
  pressePapiers: ouiOuNon(false),
  prevenir: ouiOuNon(true),
  message: ouiOuNon(true),
  fin: ouiOuNon(true),
  sonnerie: ouiOuNon(true),
  silence: ouiOuNon(true),
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

// Ce que le bureau préfère, tant que l’utilisateur n’a rien choisi.
export function preferer(nom, valeur) {
  valeurs = { ...valeurs, [nom]: REGLAGES[nom](lire()[nom] ?? valeur) };
  montrer(nom);
  dispatchEvent(new Event('reglages'));
}

export function ouvrirLesReglages() {
  for (const nom of Object.keys(valeurs)) montrer(nom);
  if (!panneau.open) panneau.showModal();
}

// Une case ne se coche que par « checked », le reste ne s’écrit que dans « value ».
const montrer = (nom) => Object.assign(formulaire.elements[nom], { checked: valeurs[nom], value: valeurs[nom] });

formulaire.addEventListener('change', ({ target }) => {
  const { name, type } = target;
  if (!(name in REGLAGES)) return;
  changer(name, target[{ checkbox: 'checked', number: 'valueAsNumber' }[type] ?? 'value']);
  montrer(name);
});
