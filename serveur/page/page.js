import { recevoirLesChemins } from '/chemins.js';
import '/clavierVirtuel.js';
import '/depot.js';
import '/lecteur.js';
import { aviser } from '/avis.js';
import { poserLesMenus } from '/clicDroit.js';
import { direLaCoupure, direLaReprise } from '/coupure.js';
import { enregistrerLHistorique } from '/historique.js';
import { montrerLesInterpreteurs } from '/interpreteurs.js';
import { envoyer, relier } from '/liaison.js';
import { noterLaSortie, noterUnAppel } from '/notifications.js';
import { prendreLeFocusDesOnglets } from '/rangee.js';
import { ouvrirLaRecherche } from '/recherche.js';
import { changer, ouvrirLesReglages, valeurs } from '/reglages.js';
import { choisie, choisir, choisirAutour, choisirVers, diviser, ecrire, recommencer, rendreLeFocus, suivre, vues } from '/terminaux.js';
import '/zoom.js';

const alerte = document.querySelector('.alerte');
const question = document.querySelector('.question');

relier({
  accueil({ terminaux, alerte: texte }) {
    direLaReprise();
    alerter({ texte });
    recommencer(terminaux);
  },
  alerte: alerter,
  interpreteurs: montrerLesInterpreteurs,
  liste: ({ terminaux }) => suivre(terminaux),
  ouvert: ({ id }) => choisir(id),
  reprise: ({ id, texte }) => ecrire(id, texte),
  effacer: ({ id }) => vues.get(id)?.effacer(),
  sortie({ id, texte }) {
    ecrire(id, texte);
    noterLaSortie(id, texte.length);
  },
  appel: noterUnAppel,
  occupe({ id, programme }) {
    const phrase = `« ${programme} » tourne encore dans « ${vues.get(id)?.nom} ». Fermer ce terminal l’arrêtera.`;
    const confirmer = () => question.returnValue && envoyer({ type: 'fermer', id, certain: true });
    Object.assign(question, { returnValue: '', onclose: confirmer });
    question.querySelector('p').textContent = phrase;
    if (!question.open) question.showModal();
  },
  chemins: recevoirLesChemins,
  lu: ({ id, nombre }) => vues.get(id)?.lu(nombre),
  sourd({ id }) {
    vues.get(id)?.sourd();
    aviser({ texte: `Le programme de « ${vues.get(id)?.nom} » ne lit pas ce qu’on lui envoie : le reste n’est pas envoyé.` });
  },
  avis: aviser,
  coupure: direLaCoupure,
});

// Ce qui ne va pas et dure, jusqu’à ce que le serveur dise que c’est passé.
function alerter({ texte }) {
  alerte.hidden = texte === null;
  alerte.textContent = texte ?? '';
}

const ouvrir = () => envoyer({ type: 'ouvrir', depuis: choisie()?.id, ...choisie()?.taille });

const gestes = {
  b: () => envoyer({ type: 'accoler', id: choisie()?.id }),
  // Sans rien à copier, cette commande rend faux ; la touche, elle, interromprait le programme.
  c: () => void document.execCommand('copy'),
  d: () => diviser('colonnes'),
  e: () => diviser('lignes'),
  f: ouvrirLaRecherche,
  k: () => envoyer({ type: 'fermer', id: choisie()?.id }),
  l: () => choisie()?.commandes.selectionnerLaSortie(),
  o: prendreLeFocusDesOnglets,
  p: ouvrirLesReglages,
  s: () => enregistrerLHistorique(),
  t: ouvrir,
  arrowleft: () => choisirVers([-1, 0]),
  arrowright: () => choisirVers([1, 0]),
  arrowup: () => choisirVers([0, -1]) || choisie()?.commandes.aller(-1),
  arrowdown: () => choisirVers([0, 1]) || choisie()?.commandes.aller(1),
  pagedown: () => choisirAutour(1),
  pageup: () => choisirAutour(-1),
  '+': () => changer('corps', valeurs.corps + 1),
  '-': () => changer('corps', valeurs.corps - 1),
  _: () => changer('corps', valeurs.corps - 1),
  0: () => changer('corps'),
};

// Ctrl+lettre appartient à l’interpréteur : la page ne prend que des touches avec Ctrl+Maj. Elle les prend avant le
// terminal, et d’où que vienne la frappe ; une fenêtre de question, elle, les garde toutes.
addEventListener('keydown', (evenement) => {
  const { key, code, ctrlKey, shiftKey, altKey, metaKey } = evenement;
  if (!ctrlKey || !shiftKey || altKey || metaKey || document.querySelector('dialog[open]')) return;
  const touche = code === 'Digit0' ? '0' : key.toLowerCase();
  // Le navigateur colle de lui-même, et le terminal reçoit alors le collage.
  if (touche === 'v') return evenement.stopPropagation();
  // Ce qui n’a rien fait ici revient au programme.
  if (!gestes[touche] || gestes[touche]() === false) return;
  evenement.preventDefault();
  evenement.stopPropagation();
}, true);

poserLesMenus(gestes);
document.querySelector('.nouveau').addEventListener('click', ouvrir);
for (const bouton of document.querySelectorAll('.diviser')) bouton.addEventListener('click', () => diviser(bouton.name));
document.querySelector('.regler').addEventListener('click', ouvrirLesReglages);
for (const fenetre of document.querySelectorAll('dialog')) fenetre.addEventListener('close', rendreLeFocus);
