import { statSync } from 'node:fs';
import { essayer } from '../page/essayer.js';
import { Annonces } from './Annonces.mjs';
import { lireLesDernieresLignes, nAjoutentQuUneInvite, NOMBRE_DE_LIGNES, rejouerLesLignes } from './dernieresLignes.mjs';
import { Interpreteur } from './Interpreteur.mjs';
import { maison } from './reglages.mjs';
import { Tampon } from './Tampon.mjs';

// Bien plus que les lignes gardées : des lignes longues, ou très colorées, y tiennent encore, et celles qu’un programme
// récrit sur place.
const SORTIE_RELUE = { caracteres: 40_000, lignes: 3 * NOMBRE_DE_LIGNES };
// Un bavard parle par morceaux de 4 Kio, qui feraient autant de messages : le premier part tout de suite, puis ce qui
// s’amasse pendant un répit, en millisecondes, part d’un trait.
const REPIT = 5;
// De même ; plus long que ce qui sépare deux relevés de la liste.
const PAROLE_RECENTE = 800;
// En millisecondes, avant de demander au système le nom d’une commande qui ne le dit pas : le temps qu’elle se lance.
const DELAI_D_UN_NOM = 2000;

const estUnDossier = (chemin) => essayer(() => statSync(chemin).isDirectory(), false);
const borner = (valeur, minimum, defaut) => (
  Number.isInteger(valeur) && valeur >= minimum && valeur <= 1000 ? valeur : defaut
);

// Un terminal de la liste : ouvert sur un interpréteur, ou éteint quand le système n’a pas pu lui en donner un ; et de
// quoi le montrer de nouveau à une page qui se recharge.
export class Terminal {
  quandSortie = () => {};
  quandAnnonce = () => {};
  quandAppel = () => {};
  quandFin = () => {};
  annonces = new Annonces({
    quandChangement: () => this.#noterLeChangement(),
    quandDossier: (chemin) => this.#noterLeDossier(chemin),
    quandAppel: (appel) => this.quandAppel(appel),
  });
  tampon = new Tampon();
  #interpreteur = null;
  #dossier;
  #dossierLu = null;
  #dernieresLignes;
  #lignesPerimees = false;
  #frappe = false;
  #aDire = '';
  #repit = null;
  #aParle = false;
  #heureDeParole = -Infinity;
  #programmeVu = null;
  #nommage = null;

  constructor({ id, nom, groupe, dossier, colonnes, lignes, lignesPassees = [] }) {
    Object.assign(this, { id, nom, groupe, colonnes: borner(colonnes, 2, 80), lignes: borner(lignes, 1, 24) });
    this.#dossier = dossier;
    this.#dernieresLignes = lignesPassees;
    this.tampon.ajouter(rejouerLesLignes(lignesPassees));
  }

  // Lève une exception quand le système ne donne plus de pseudo-terminal, ou de processus.
  ouvrir() {
    if (this.ouvert) return;
    const dossier = [this.#dossier, maison()].find(estUnDossier) ?? '/';
    this.#interpreteur = new Interpreteur({
      dossier,
      colonnes: this.colonnes,
      lignes: this.lignes,
      quandTexte: (morceau) => {
        this.#aDire += morceau;
        this.#repit ??= this.#dire();
      },
      quandFin: () => this.quandFin(),
    });
    this.#dossier = dossier;
  }

  get ouvert() {
    return this.#interpreteur !== null;
  }

  // Le dernier dossier connu : celui qu’un programme annonce, ou celui où l’interpréteur vient d’aller.
  get dossier() {
    const lu = this.#lireLeDossier();
    if (lu !== this.#dossierLu && estUnDossier(lu)) this.#dossier = lu;
    this.#dossierLu = lu;
    return this.#dossier;
  }

  get programme() {
    return this.#interpreteur?.programme ?? null;
  }

  // Le même, relu seulement quand il a pu changer : cinquante terminaux le demandent ensemble.
  get programmeVu() {
    if (this.vientDeParler) this.#programmeVu = this.programme;
    return this.#programmeVu;
  }

  get vientDeParler() {
    return performance.now() - this.#heureDeParole < PAROLE_RECENTE;
  }

  // Les dernières lignes lues ; relues d’abord, si on le demande et qu’elles ont pu changer.
  async dernieresLignes({ relire }) {
    if (!relire || !this.#lignesPerimees) return this.#dernieresLignes;
    this.#lignesPerimees = false;
    const lues = await lireLesDernieresLignes(this.tampon.rejouer(SORTIE_RELUE), this);
    const intactes = !lues || (!this.#frappe && nAjoutentQuUneInvite(lues, this.#dernieresLignes));
    if (!intactes) this.#dernieresLignes = lues;
    return this.#dernieresLignes;
  }

  noterUneFrappe() {
    this.#frappe = true;
  }

  // Faux quand le programme ne lit pas : rien de ce texte n’est alors gardé.
  saisir(texte, quandEcrit) {
    return this.#interpreteur?.saisir(texte, quandEcrit) ?? true;
  }

  oublierLaSaisie() {
    this.#interpreteur?.oublierLaSaisie();
  }

  dimensionner(colonnes, lignes) {
    this.colonnes = borner(colonnes, 2, this.colonnes);
    this.lignes = borner(lignes, 1, this.lignes);
    this.#interpreteur?.dimensionner(this.colonnes, this.lignes);
  }

  // Ce qui est effacé ne doit revenir ni à une page rechargée, ni par le carnet.
  effacer() {
    this.tampon.effacer();
    this.#lignesPerimees = true;
  }

  suspendre(oui) {
    this.#interpreteur?.suspendre(oui);
  }

  raccrocher() {
    this.#interpreteur?.raccrocher();
  }

  #dire() {
    const texte = this.#aDire;
    this.#aDire = '';
    this.#aParle = true;
    this.#heureDeParole = performance.now();
    this.#lignesPerimees = true;
    this.tampon.ajouter(texte);
    this.annonces.lire(texte);
    this.quandSortie(texte);
    return setTimeout(() => (this.#repit = this.#aDire === '' ? null : this.#dire()), REPIT);
  }

  #noterLeChangement() {
    if (this.annonces.commandes.estSansNom) this.#nommage ??= setTimeout(() => this.#nommerLaCommande(), DELAI_D_UN_NOM);
    this.quandAnnonce();
  }

  #nommerLaCommande() {
    this.#nommage = null;
    this.annonces.commandes.nommer(this.programme ?? '');
  }

  #noterLeDossier(chemin) {
    if (!estUnDossier(chemin)) return;
    this.#dossierLu = this.#lireLeDossier();
    this.#dossier = chemin;
    this.quandAnnonce();
  }

  // Avant sa première parole, l’interpréteur n’est peut-être pas encore dans son dossier.
  #lireLeDossier() {
    return (this.#aParle && this.#interpreteur?.dossier) || this.#dossierLu;
  }
}
