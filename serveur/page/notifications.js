import { annoncer } from '/diction.js';
import { direLaFin } from '/fins.js';
import { valeurs } from '/reglages.js';
import { choisir, vues } from '/terminaux.js';
import { SILENCE } from '/veille.js';

const APPEL = 'Ce terminal vous appelle.';
const ATTENTE = 'Ce terminal s’est tu et semble vous attendre.';
const SANS_TEXTE = ['sonnerie', 'silence'];
const ETATS = {
  accorde: 'Les notifications sont autorisées.',
  refuse: 'Les notifications sont refusées dans les réglages du système.',
  attente: 'Le système n’a pas encore demandé votre accord.',
  absent: 'Aucun service de notification ne répond sur ce bureau.',
  sansPont: 'Les notifications demandent l’application Keltrove : cette page est ouverte dans un navigateur.',
};

// Prévient, par l’application, qu’un terminal attend ; et le marque, avec ou sans elle.
const pont = window.webkit?.messageHandlers?.keltroveNotifications;
const systeme = document.querySelector('.systeme');
const minuteurs = new Map();

let devant = false;
window.keltrovePont = {
  etat: direLEtat,
  ouvrir: choisir,
  // L’application le sait mieux que la page, à qui ses menus et ses boîtes prennent le clavier.
  regard(oui) {
    devant = oui;
    relire();
  },
};
systeme.addEventListener('click', () => pont.postMessage({ action: 'reglages' }));
if (pont) pont.postMessage({ action: 'etat' });
else direLEtat('sansPont');

// Quels terminaux sont sous les yeux de l’utilisateur : à redire dès que cela change.
for (const nom of ['focus', 'blur', 'visibilitychange', 'choix']) addEventListener(nom, relire, true);
addEventListener('sonnerie', ({ target }) => appeler(vues.get(target.dataset.terminal), 'sonnerie', APPEL));

export function noterLaSortie(id, nombre) {
  vues.get(id)?.veille.sortir(nombre, performance.now());
  clearTimeout(minuteurs.get(id));
  minuteurs.set(id, setTimeout(noterLeSilence, SILENCE, id));
}

// Ce que le serveur a lu dans la sortie : un message d’un programme, ou la fin d’une longue commande.
export function noterUnAppel({ id, sorte, corps, ...fin }) {
  if (vues.has(id)) appeler(vues.get(id), sorte, corps ?? direLaFin(fin));
}

// À l’invite, un interpréteur attend toujours : ce n’est pas une nouvelle.
function noterLeSilence(id) {
  const vue = vues.get(id);
  if (vue?.veille.echeance && !vue.aLInvite) appeler(vue, 'silence', ATTENTE);
}

function relire() {
  for (const vue of vues.values()) {
    const regarde = vue.montree && !document.hidden && (devant || document.hasFocus());
    vue.veille.regarder(regarde);
    if (regarde) vue.marquer(false);
  }
}

// Chaque sorte d’appel a son réglage, du même nom.
function appeler(vue, sorte, corps) {
  if (vue.veille.regarde) return;
  // Loin de la page, c’est la notification qui se fait lire.
  if (!vue.attend && document.hasFocus()) annoncer(`« ${vue.nom} » vous attend.`);
  vue.marquer(true);
  if (!valeurs.prevenir || !valeurs[sorte]) return;
  const neuf = SANS_TEXTE.includes(sorte) ? vue.veille.annoncer(performance.now()) : vue.veille.appeler(performance.now());
  if (neuf) pont?.postMessage({ action: 'notifier', id: vue.id, titre: vue.nom, corps });
}

function direLEtat(etat) {
  document.querySelector('.etat').textContent = ETATS[etat] ?? '';
  systeme.hidden = etat === 'absent' || etat === 'sansPont';
}
