import { recevoirLesDepots } from '/depot.js';
import { Liaison } from '/liaison.js';
import { Notifications } from '/notifications.js';
import { Onglets } from '/onglets.js';
import { demander } from '/question.js';
import { ecouterLesRaccourcis } from '/raccourcis.js';
import { Recherche } from '/recherche.js';
import { CORPS, Reglages } from '/reglages.js';
import { Terminaux } from '/terminaux.js';
import { suivreLApparence } from '/themes.js';

// De quoi lire un avis, même long.
const DUREE_D_UN_AVIS = 4000;
const DUREE_D_UN_SIGNE = 70;

const avis = document.querySelector('.avis');
const lien = document.querySelector('.lien');
const rendreLeFocus = () => terminaux.choisi?.prendreLeFocus();

const reglages = new Reglages({
  quandChange: appliquerLesReglages,
  quandFerme: rendreLeFocus,
  quandSysteme: () => notifications.ouvrirLesReglages(),
});

const terminaux = new Terminaux(document.querySelector('.zone'), reglages, {
  creerLesQuand,
  quandChoisi(id) {
    onglets.choisir(id);
    notifications.relire();
    recherche.suivre(terminaux.choisi);
  },
  quandRetire: (id) => notifications.oublier(id),
});

const onglets = new Onglets(document.querySelector('.onglets'), {
  quandChoisi: (id) => terminaux.choisir(id),
  quandRenomme: (id, nom) => liaison.envoyer({ type: 'renommer', id, nom }),
  quandDeplace: (id, rang) => liaison.envoyer({ type: 'deplacer', id, rang }),
  quandFerme: (id) => liaison.envoyer({ type: 'fermer', id }),
  quandQuitte: rendreLeFocus,
});

const notifications = new Notifications({
  nommer: (id) => terminaux.nom(id),
  estRegarde: (id) => terminaux.estMontre(id) && !document.hidden && document.hasFocus(),
  marquer: (id, oui) => onglets.marquer(id, oui),
  choisir: (id) => terminaux.choisir(id),
});

const recherche = new Recherche(rendreLeFocus);

const liaison = new Liaison({
  jeton: document.querySelector('meta[name=keltrove-jeton]').content,
  quandMessage: (message) => receptions[message.type]?.(message),
  quandCoupure: () => {
    avis.textContent = 'Connexion au serveur perdue';
  },
});

const receptions = {
  accueil({ terminaux: descriptions }) {
    avis.textContent = '';
    onglets.montrer(descriptions);
    terminaux.recommencer(descriptions);
  },
  liste({ terminaux: descriptions }) {
    onglets.montrer(descriptions);
    terminaux.suivre(descriptions);
    notifications.relire();
  },
  ouvert: ({ id }) => terminaux.choisir(id),
  reprise: ({ id, texte }) => terminaux.rejouer(id, texte),
  sortie({ id, texte }) {
    terminaux.ecrire(id, texte);
    notifications.sortie(id, texte.length);
  },
  async occupe({ id, programme }) {
    const phrase = `« ${programme} » tourne encore dans « ${terminaux.nom(id)} ». Fermer ce terminal l’arrêtera.`;
    if (await demander(phrase)) liaison.envoyer({ type: 'fermer', id, certain: true });
    rendreLeFocus();
  },
  avis: ({ texte }) => aviser(texte),
};

function creerLesQuand(id) {
  notifications.suivre(id);
  return {
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
    quandTrouve: (trouvailles) => recherche.dire(trouvailles),
    quandLien(adresse) {
      lien.textContent = adresse ? `Ctrl+clic pour ouvrir ${adresse}` : '';
    },
  };
}

function ouvrirUnTerminal(aCote = false) {
  liaison.envoyer({ type: 'ouvrir', depuis: terminaux.idChoisi, aCote, ...(aCote ? {} : terminaux.choisi?.taille) });
}

function appliquerLesReglages(valeurs) {
  notifications.prevenir = valeurs.prevenir;
  terminaux.chacun((vue) => vue.regler(valeurs));
}

function aviser(texte) {
  avis.textContent = texte;
  setTimeout(() => {
    if (avis.textContent === texte) avis.textContent = '';
  }, DUREE_D_UN_AVIS + texte.length * DUREE_D_UN_SIGNE);
}

const grossir = (pas) => reglages.changer('corps', reglages.valeurs.corps + pas);

ecouterLesRaccourcis({
  b: () => liaison.envoyer({ type: 'accoler', id: terminaux.idChoisi }),
  c: () => document.execCommand('copy'),
  d: () => ouvrirUnTerminal(true),
  f: () => recherche.ouvrir(terminaux.choisi),
  k: () => liaison.envoyer({ type: 'fermer', id: terminaux.idChoisi }),
  o: () => onglets.prendreLeFocus(),
  p: () => reglages.ouvrir(),
  t: () => ouvrirUnTerminal(),
  pagedown: () => terminaux.choisirAutour(1),
  pageup: () => terminaux.choisirAutour(-1),
  '+': () => grossir(1),
  '-': () => grossir(-1),
  _: () => grossir(-1),
  0: () => reglages.changer('corps', CORPS),
});

document.querySelector('.nouveau').addEventListener('click', () => ouvrirUnTerminal());
document.querySelector('.partager').addEventListener('click', () => ouvrirUnTerminal(true));
document.querySelector('.regler').addEventListener('click', () => reglages.ouvrir());
recevoirLesDepots({
  idChoisi: () => terminaux.idChoisi,
  coller(id, texte) {
    terminaux.choisir(id);
    terminaux.vue(id)?.coller(texte);
  },
});
suivreLApparence(() => terminaux.chacun((vue) => vue.habiller()));
notifications.quandEtat = (etat) => reglages.direLEtat(etat);
if (notifications.reliees) notifications.demanderLEtat();
else reglages.direLEtat('sansPont');
appliquerLesReglages(reglages.valeurs);
