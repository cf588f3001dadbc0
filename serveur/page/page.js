import { recevoirLesDepots } from '/depot.js';
import { Liaison } from '/liaison.js';
import { Notifications } from '/notifications.js';
import { Onglets } from '/onglets.js';
import { Reglages } from '/reglages.js';
import { suivreLApparence } from '/themes.js';
import { VueTerminal } from '/vueTerminal.js';

const CLE_DU_CHOISI = 'keltrove-terminal-choisi';
const DUREE_D_UN_AVIS = 4000;

const zone = document.querySelector('.zone');
const avis = document.querySelector('.avis');
const vues = new Map();
const noms = new Map();
let ordre = [];
let idChoisi = null;

const onglets = new Onglets(document.querySelector('.onglets'), {
  quandChoisi: (id) => choisir(id),
  quandRenomme: (id, nom) => liaison.envoyer({ type: 'renommer', id, nom }),
  quandFerme: (id) => liaison.envoyer({ type: 'fermer', id }),
  quandQuitte: () => vues.get(idChoisi)?.prendreLeFocus(),
});

const notifications = new Notifications({
  nommer: (id) => noms.get(id),
  estRegarde: (id) => vues.get(id)?.panneau.hidden === false && !document.hidden && document.hasFocus(),
  marquer: (id, oui) => onglets.marquer(id, oui),
  choisir,
});

const reglages = new Reglages({
  quandChange: appliquerLesReglages,
  quandFerme: () => vues.get(idChoisi)?.prendreLeFocus(),
  quandSysteme: () => notifications.ouvrirLesReglages(),
});

const liaison = new Liaison({
  jeton: document.querySelector('meta[name=keltrove-jeton]').content,
  quandMessage: (message) => receptions[message.type]?.(message),
  quandCoupure: () => {
    avis.textContent = 'Connexion au serveur perdue';
  },
});

const receptions = {
  // À chaque connexion les panneaux sont refaits : ce que le serveur rejoue est alors seul à s’y afficher.
  accueil({ terminaux }) {
    avis.textContent = '';
    for (const id of vues.keys()) retirerUneVue(id);
    const garde = idChoisi ?? localStorage.getItem(CLE_DU_CHOISI);
    idChoisi = null;
    afficherLaListe(terminaux, garde);
  },
  liste: ({ terminaux }) => afficherLaListe(terminaux, idChoisi),
  ouvert: ({ id }) => choisir(id),
  reprise: ({ id, texte }) => vues.get(id)?.rejouer(texte),
  sortie({ id, texte }) {
    vues.get(id)?.ecrire(texte);
    notifications.sortie(id, texte.length);
  },
  avis: ({ texte }) => aviser(texte),
};

function afficherLaListe(terminaux, souhaite) {
  const ancienRang = ordre.indexOf(idChoisi);
  ordre = terminaux.map(({ id }) => id);
  for (const id of vues.keys()) {
    if (!ordre.includes(id)) retirerUneVue(id);
  }
  for (const description of terminaux) {
    noms.set(description.id, description.nom);
    if (!vues.has(description.id)) ajouterUneVue(description);
  }
  onglets.montrer(terminaux);
  if (ordre.includes(idChoisi)) return;
  // Le choisi vient de disparaître : son voisin prend la place.
  choisir(ordre.includes(souhaite) ? souhaite : ordre[Math.min(Math.max(ancienRang, 0), ordre.length - 1)]);
}

function ajouterUneVue(description) {
  const { id } = description;
  const vue = new VueTerminal(description, {
    quandSaisie(texte) {
      notifications.saisie(id, texte);
      liaison.envoyer({ type: 'saisie', id, texte });
    },
    quandTaille(taille) {
      notifications.taille(id);
      liaison.envoyer({ type: 'taille', id, ...taille });
    },
    quandLu: (nombre) => liaison.envoyer({ type: 'recu', id, nombre }),
    quandSonnerie: () => notifications.sonnerie(id),
    quandTouche,
  });
  vue.panneau.id = `panneau-${id}`;
  vue.panneau.dataset.terminal = id;
  vue.panneau.setAttribute('aria-labelledby', `onglet-${id}`);
  zone.append(vue.panneau);
  vues.set(id, vue);
  notifications.suivre(id);
}

function retirerUneVue(id) {
  vues.get(id).retirer();
  vues.delete(id);
  noms.delete(id);
  notifications.oublier(id);
}

function choisir(id) {
  if (!vues.has(id)) return;
  if (id !== idChoisi) vues.get(idChoisi)?.cacher();
  idChoisi = id;
  localStorage.setItem(CLE_DU_CHOISI, id);
  onglets.choisir(id);
  vues.get(id).montrer();
  vues.get(id).prendreLeFocus();
  notifications.relire();
}

function choisirAutour(pas) {
  choisir(ordre[(ordre.indexOf(idChoisi) + pas + ordre.length) % ordre.length]);
}

function ouvrirUnTerminal() {
  liaison.envoyer({ type: 'ouvrir', ...vues.get(idChoisi)?.taille });
}

// Ctrl+lettre appartient à l’interpréteur : la page ne prend que des touches avec Ctrl+Maj.
const RACCOURCIS = {
  c: () => document.execCommand('copy'),
  o: () => onglets.prendreLeFocus(),
  p: () => reglages.ouvrir(),
  t: ouvrirUnTerminal,
  pagedown: () => choisirAutour(1),
  pageup: () => choisirAutour(-1),
};

// Répond vrai quand la touche ne doit pas aller au terminal.
function quandTouche(evenement) {
  const { key, ctrlKey, shiftKey, altKey, metaKey, type } = evenement;
  if (!ctrlKey || !shiftKey || altKey || metaKey) return false;
  const touche = key.toLowerCase();
  // Le navigateur colle de lui-même, et le terminal reçoit alors le collage.
  if (touche === 'v') return true;
  const raccourci = RACCOURCIS[touche];
  if (!raccourci) return false;
  evenement.preventDefault();
  if (type === 'keydown') raccourci();
  return true;
}

function aviser(texte) {
  avis.textContent = texte;
  setTimeout(() => {
    if (avis.textContent === texte) avis.textContent = '';
  }, DUREE_D_UN_AVIS);
}

function appliquerLesReglages({ prevenir }) {
  notifications.prevenir = prevenir;
}

document.querySelector('.nouveau').addEventListener('click', ouvrirUnTerminal);
document.querySelector('.regler').addEventListener('click', () => reglages.ouvrir());
notifications.quandEtat = (etat) => reglages.direLEtat(etat);
if (notifications.reliees) notifications.demanderLEtat();
else reglages.direLEtat('sansPont');
appliquerLesReglages(reglages.valeurs);
new ResizeObserver(() => vues.get(idChoisi)?.ajuster()).observe(zone);
recevoirLesDepots({
  idChoisi: () => idChoisi,
  coller(id, texte) {
    choisir(id);
    vues.get(id)?.coller(texte);
  },
});
suivreLApparence(() => vues.forEach((vue) => vue.habiller()));
