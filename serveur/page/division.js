import { envoyer } from '/liaison.js';

// En pixels : de quoi lire encore un mot et quelques lignes.
const MINIMUM = { largeur: 120, hauteur: 64 };
// Plus étroites que cela, des colonnes se montrent l’une sous l’autre.
const COLONNE_LISIBLE = 280;
const FILET = 1;
const PAS_DU_CLAVIER = 24;
const AXES = {
  colonnes: { debut: 'x', taille: 'largeur', orientation: 'vertical', moins: 'ArrowLeft', plus: 'ArrowRight' },
  lignes: { debut: 'y', taille: 'hauteur', orientation: 'horizontal', moins: 'ArrowUp', plus: 'ArrowDown' },
};

const zone = document.querySelector('.zone');
// Gardés d’une disposition à l’autre : les refaire leur ôterait le focus, et la souris qui les tire.
const separateurs = [];
const etats = new WeakMap();
let montrees = new Map();
let racine = null;
let poses = 0;
let tire = false;

const estUneFeuille = (noeud) => typeof noeud === 'string';
const dessiner = (noeud) => JSON.stringify(noeud, (cle, valeur) => (cle === 'parts' ? undefined : valeur));
const additionner = (nombres) => nombres.reduce((somme, nombre) => somme + nombre, 0);

// Donne à chaque terminal montré sa place dans la page, et pose entre eux de quoi la changer.
export function disposer(vues, division) {
  montrees = new Map(vues.map((vue) => [vue.id, vue]));
  const neuve = structuredClone(division ?? vues[0].id);
  // Un bord que l’on tire ne revient pas sous la souris : chaque taille qu’il donne fait redire la liste.
  if (!tire || dessiner(neuve) !== dessiner(racine)) racine = neuve;
  etaler();
}

// Celui qui touche ce terminal de ce côté-là, en face de son milieu ; rien s’il n’y en a pas.
export function trouverLeVoisin(id, [dx, dy]) {
  const { left, right, top, bottom } = montrees.get(id).panneau.getBoundingClientRect();
  const [x, y] = [(left + right) / 2 + (dx * (right - left)) / 2 + dx * 4, (top + bottom) / 2 + (dy * (bottom - top)) / 2 + dy * 4];
  return [...montrees.values()].find(({ panneau }) => {
    const cadre = panneau.getBoundingClientRect();
    return x >= cadre.left - FILET && x <= cadre.right && y >= cadre.top - FILET && y <= cadre.bottom;
  })?.id;
}

function etaler() {
  poses = 0;
  poser(racine, { x: 0, y: 0, largeur: zone.clientWidth, hauteur: zone.clientHeight }, []);
  for (const separateur of separateurs.splice(poses)) separateur.remove();
}

function poser(noeud, cadre, chemin) {
  if (estUneFeuille(noeud)) return cadrer(montrees.get(noeud)?.panneau, cadre);
  const nombre = noeud.enfants.length;
  const sens = cadre.largeur / nombre < COLONNE_LISIBLE ? 'lignes' : noeud.sens;
  const axe = AXES[sens];
  const total = cadre[axe.taille] - FILET * (nombre - 1);
  const minima = noeud.enfants.map((enfant) => mesurer(enfant, sens));
  const tailles = partager(total, noeud.parts, minima);
  let debut = cadre[axe.debut];
  for (const [rang, enfant] of noeud.enfants.entries()) {
    const sien = { ...cadre, [axe.debut]: debut, [axe.taille]: tailles[rang] };
    poser(enfant, sien, [...chemin, rang]);
    if (rang < nombre - 1) poserUnSeparateur({ noeud, chemin, rang, axe, tailles, minima, total, debut }, sien);
    debut += tailles[rang] + FILET;
  }
}

function cadrer(panneau, { x, y, largeur, hauteur }) {
  Object.assign(panneau?.style ?? {}, { left: `${x}px`, top: `${y}px`, width: `${largeur}px`, height: `${hauteur}px` });
}

function mesurer(noeud, sens) {
  if (estUneFeuille(noeud)) return MINIMUM[AXES[sens].taille];
  const minima = noeud.enfants.map((enfant) => mesurer(enfant, sens));
  return noeud.sens === sens ? additionner(minima) + FILET * (minima.length - 1) : Math.max(...minima);
}

// À chacun sa part, en pixels entiers, et au moins son minimum tant qu’il y a la place : les plus grands la cèdent.
function partager(total, parts, minima) {
  const voulues = parts.map((part) => part * total);
  const marges = voulues.map((taille, rang) => Math.max(0, taille - minima[rang]));
  const manque = additionner(voulues.map((taille, rang) => Math.max(0, minima[rang] - taille)));
  const cede = Math.min(1, manque / (additionner(marges) || 1));
  const cedees = voulues.map((taille, rang) => taille - marges[rang] * cede);
  const possible = manque > 0 && additionner(marges) >= manque;
  const exactes = possible ? cedees.map((taille, rang) => Math.max(taille, minima[rang])) : voulues;
  const bords = exactes.map((_, rang) => Math.round(additionner(exactes.slice(0, rang + 1))));
  return bords.map((bord, rang) => bord - (bords[rang - 1] ?? 0));
}

function poserUnSeparateur(etat, { x, y, largeur, hauteur }) {
  const separateur = (separateurs[poses] ??= creerUnSeparateur());
  poses += 1;
  etats.set(separateur, etat);
  const { axe: { orientation }, noeud: { enfants }, rang, tailles, minima } = etat;
  const [avant, apres] = [enfants[rang], enfants[rang + 1]].map((noeud) => montrees.get(trouverUneFeuille(noeud))?.nom);
  const ensemble = tailles[rang] + tailles[rang + 1];
  const enCentiemes = (taille) => String(Math.round((100 * taille) / ensemble));
  Object.assign(separateur, {
    ariaOrientation: orientation,
    ariaLabel: `Séparateur de « ${avant} » et « ${apres} »`,
    ariaValueNow: enCentiemes(tailles[rang]),
    ariaValueMin: enCentiemes(minima[rang]),
    ariaValueMax: enCentiemes(ensemble - minima[rang + 1]),
  });
  if (orientation === 'vertical') cadrer(separateur, { x: x + largeur - 1, y, largeur: 8, hauteur });
  else cadrer(separateur, { x, y: y + hauteur - 1, largeur, hauteur: 8 });
}

const trouverUneFeuille = (noeud) => (estUneFeuille(noeud) ? noeud : trouverUneFeuille(noeud.enfants[0]));

function creerUnSeparateur() {
  const separateur = document.createElement('div');
  Object.assign(separateur, { className: 'separateur', role: 'separator', tabIndex: 0 });
  // Avant les terminaux, qui gardent Tab pour eux : du bandeau, on y arrive.
  zone.insertBefore(separateur, zone.querySelector('.panneau'));
  return separateur;
}

// Met le bord à cette distance du début, en pixels.
function tirer(separateur, distance) {
  const { noeud, rang, tailles, minima, total } = etats.get(separateur);
  const ensemble = tailles[rang] + tailles[rang + 1];
  if (ensemble < minima[rang] + minima[rang + 1]) return;
  const bornee = Math.min(Math.max(distance, minima[rang]), ensemble - minima[rang + 1]);
  noeud.parts = tailles.map((taille) => taille / total);
  noeud.parts[rang] = bornee / total;
  noeud.parts[rang + 1] = (ensemble - bornee) / total;
  etaler();
}

function egaliser(separateur) {
  const { noeud } = etats.get(separateur);
  noeud.parts = noeud.parts.map(() => 1 / noeud.parts.length);
  etaler();
  finir(separateur);
}

// Le serveur garde le partage, et le dit aux autres pages.
function finir(separateur) {
  const { noeud: { parts }, chemin } = etats.get(separateur);
  envoyer({ type: 'repartir', id: trouverUneFeuille(racine), chemin, parts });
}

const ecouter = (nom, faire) => zone.addEventListener(nom, (evenement) => {
  if (evenement.target.matches('.separateur')) faire(evenement.target, evenement);
});

// Le tirer à la souris ne prend pas le clavier au terminal.
ecouter('mousedown', (_, evenement) => evenement.preventDefault());
ecouter('pointerdown', (separateur, { button, pointerId }) => {
  if (button !== 0) return;
  separateur.setPointerCapture(pointerId);
  tire = true;
});
ecouter('pointermove', (separateur, { pointerId, clientX, clientY }) => {
  if (!separateur.hasPointerCapture(pointerId)) return;
  const { axe, debut } = etats.get(separateur);
  const { left, top } = zone.getBoundingClientRect();
  tirer(separateur, (axe === AXES.colonnes ? clientX - left : clientY - top) - debut);
});
ecouter('lostpointercapture', (separateur) => {
  tire = false;
  finir(separateur);
});
ecouter('dblclick', egaliser);
ecouter('keydown', (separateur, evenement) => {
  const { key, ctrlKey, altKey, metaKey } = evenement;
  const { axe, rang, tailles } = etats.get(separateur);
  const distances = { [axe.moins]: tailles[rang] - PAS_DU_CLAVIER, [axe.plus]: tailles[rang] + PAS_DU_CLAVIER, Home: 0, End: Infinity };
  if (ctrlKey || altKey || metaKey || !(key in distances || key === 'Enter')) return;
  evenement.preventDefault();
  if (key === 'Enter') return egaliser(separateur);
  tirer(separateur, distances[key]);
  finir(separateur);
});

new ResizeObserver(() => racine && etaler()).observe(zone);
