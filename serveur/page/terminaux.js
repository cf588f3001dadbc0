import { disposer, trouverLeVoisin } from '/division.js';
import { Lectures } from '/lectures.js';
import { envoyer } from '/liaison.js';
import { VueTerminal } from '/vueTerminal.js';

const CLE_DU_CHOISI = 'keltrove-terminal-choisi';

const zone = document.querySelector('.zone');
const rangee = document.querySelector('.onglets');
const lectures = new Lectures();
let idChoisi = null;

// Les terminaux de la page, dans l’ordre des onglets. L’un est choisi, et d’autres peuvent se montrer avec lui ;
// ce qui change s’annonce par un événement « choix ».
export const vues = new Map();
export const choisie = () => vues.get(idChoisi);
export const rendreLeFocus = () => choisie()?.terminal.focus();

export function choisir(id, { avecLeFocus = true } = {}) {
  if (!vues.has(id)) return;
  idChoisi = id;
  localStorage.setItem(CLE_DU_CHOISI, id);
  montrer();
  choisie().onglet.scrollIntoView({ block: 'nearest', inline: 'nearest' });
  if (avecLeFocus) rendreLeFocus();
}

export function choisirAutour(pas) {
  const ids = [...vues.keys()];
  choisir(ids[(ids.indexOf(idChoisi) + pas + ids.length) % ids.length]);
}

// Un terminal neuf à côté du choisi (« colonnes ») ou au-dessous (« lignes »), qui lui laisse la moitié de sa place.
export const diviser = (sens) => envoyer({ type: 'ouvrir', depuis: idChoisi, aCote: true, sens });

// Faux quand rien ne se montre de ce côté.
export function choisirVers(direction) {
  const id = zone.contains(document.activeElement) && trouverLeVoisin(idChoisi, direction);
  if (id) choisir(id);
  return Boolean(id);
}

export function ecrire(id, texte) {
  const vue = vues.get(id);
  if (vue?.montree) vue.ecrire(texte);
  else if (vue) lectures.ajouter(vue, (quandLu) => vue.ecrire(texte, quandLu));
}

// Les panneaux sont refaits : ce que le serveur rejoue, et qu’ils attendent, est alors seul à s’y afficher.
export function recommencer(descriptions) {
  const souhaite = idChoisi ?? localStorage.getItem(CLE_DU_CHOISI);
  vues.forEach(retirer);
  idChoisi = null;
  suivre(descriptions, { souhaite, reprise: true });
}

// Ce qui est déjà là est gardé : le refaire perdrait le focus et un nom en cours de saisie.
export function suivre(descriptions, { souhaite, reprise = false } = {}) {
  const ids = descriptions.map(({ id }) => id);
  const ancienRang = [...vues.keys()].indexOf(idChoisi);
  const focus = rangee.contains(document.activeElement) && document.activeElement;
  for (const [id, vue] of vues) if (!ids.includes(id)) retirer(vue);
  for (const [rang, description] of descriptions.entries()) {
    const vue = vues.get(description.id) ?? new VueTerminal(description, reprise);
    vue.decrire(description);
    vue.onglet.classList.toggle('joint', descriptions[rang - 1]?.groupe === vue.groupe);
    if (rangee.children[rang] !== vue.onglet) rangee.insertBefore(vue.onglet, rangee.children[rang] ?? null);
    if (!vues.has(vue.id)) zone.append(vue.panneau);
    // Remis à la fin, chacun à son tour : leur ordre est celui des descriptions.
    vues.delete(vue.id);
    vues.set(vue.id, vue);
  }
  // Changer de place ôte le focus.
  if (focus) focus.focus();
  if (vues.has(idChoisi)) return montrer();
  // Le choisi vient de disparaître : son voisin prend la place.
  choisir(ids.includes(souhaite) ? souhaite : ids[Math.min(Math.max(ancienRang, 0), ids.length - 1)]);
}

// Se montrent ensemble ceux qui se suivent dans le même groupe.
function montrer() {
  const toutes = [...vues.values()];
  let debut = toutes.indexOf(choisie());
  let fin = debut + 1;
  while (toutes[debut - 1]?.groupe === choisie().groupe) debut -= 1;
  while (toutes[fin]?.groupe === choisie().groupe) fin += 1;
  disposer(toutes.slice(debut, fin), choisie().division);
  for (const [rang, vue] of toutes.entries()) {
    const montree = rang >= debut && rang < fin;
    if (montree && !vue.montree) lectures.rattraper(vue);
    vue.montrer({ montree, choisie: vue === choisie(), seule: fin - debut === 1 });
  }
  dispatchEvent(new Event('choix'));
}

function retirer(vue) {
  lectures.oublier(vue);
  vues.delete(vue.id);
  vue.retirer();
}

zone.addEventListener('focusin', ({ target }) => {
  const id = target.closest('.panneau')?.dataset.terminal;
  if (id && id !== idChoisi) choisir(id, { avecLeFocus: false });
});
zone.addEventListener('keydown', (evenement) => {
  if (evenement.key !== 'Escape' || !evenement.target.matches('.separateur')) return;
  evenement.preventDefault();
  rendreLeFocus();
});
addEventListener('reglages', () => vues.forEach((vue) => vue.regler()));
