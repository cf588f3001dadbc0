import { essayer } from '../page/essayer.js';
import { LONGUE_DUREE } from '../page/veille.js';
import { nettoyer } from './Messages.mjs';

const LONGUEUR_D_UN_NOM = 60;

// Les commandes d’un interpréteur qui les annonce (OSC 133) : A et B, l’invite ; C, une commande commence ; D, elle finit,
// avec son statut.
export class Commandes {
  aLInvite = false;
  #enCours = null;
  #quandFin;
  #horloge;

  // `quandFin({ commande, duree, statut })` pour une longue commande seulement ; durées en millisecondes.
  constructor({ quandFin, horloge = () => performance.now() }) {
    this.#quandFin = quandFin;
    this.#horloge = horloge;
  }

  // Celle qui tourne sans que l’on sache encore laquelle.
  get estSansNom() {
    return this.#enCours?.commande === '';
  }

  lire(valeur) {
    const [sorte, ...attributs] = valeur.split(';');
    if (sorte === 'C') this.#commencer(attributs);
    else if (sorte === 'D') this.#finir(attributs[0]);
    if (['A', 'B', 'C', 'D'].includes(sorte)) this.aLInvite = sorte !== 'C';
  }

  nommer(nom) {
    if (this.estSansNom) this.#enCours.commande = abreger(nom);
  }

  #commencer(attributs) {
    const code = attributs.find((attribut) => attribut.startsWith('cmdline_url='))?.slice('cmdline_url='.length) ?? '';
    const nom = essayer(() => decodeURIComponent(code), '');
    // Une ligne tenue secrète par une espace reste sans nom ; fish, à partir de la version 4, la dit tout entière.
    this.#enCours = { commande: nom.startsWith(' ') ? '' : abreger(nom), debut: this.#horloge() };
  }

  #finir(statut) {
    const { commande, debut } = this.#enCours ?? {};
    const duree = this.#horloge() - debut;
    this.#enCours = null;
    if (duree >= LONGUE_DUREE) this.#quandFin({ commande, duree, statut: /^\d{1,3}$/.test(statut) ? Number(statut) : null });
  }
}

// La suite, la durée et le statut, doit encore pouvoir se lire.
function abreger(nom) {
  const lettres = [...nettoyer(nom)];
  return lettres.length > LONGUEUR_D_UN_NOM ? `${lettres.slice(0, LONGUEUR_D_UN_NOM - 1).join('')}…` : lettres.join('');
}
