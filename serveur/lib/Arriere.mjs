import { elaguer, estSimple } from './elaguer.mjs';

// En caractères envoyés à la page et dont elle n’a pas accusé réception : au-delà, la suite attend ici.
const EN_ROUTE = 32 * 1024;
// Un message plus long ferait attendre les autres, et l’accusé de réception.
const MORCEAU = 32 * 1024;
// Élaguer relit tout ce qui attend : pas à chaque mot.
const PAS = 512 * 1024;
// Ce que la page gardera doit tenir en mémoire : de trop longues lignes n’y tiendraient pas.
const ATTENTE_MAXIMALE = 4 * 1024 * 1024;

// Une couleur y tient ; un titre ou une image peut ne jamais finir.
const SEQUENCE_COURTE = 64;
const SEQUENCE_MAXIMALE = 4096;
const SEQUENCE_ENTIERE = /^(?:(?:\x1b\[|\x9b)[0-?]*[ -/]*[@-~]|(?:\x1b\]|\x9d)[^\x07]*\x07|\x1b[ -/]*[0-OQ-WYZ\\`-~]|[\x80-\x8f\x91-\x97\x99\x9a\x9c])/;

const ouvreUneSequence = (code) => code === 0x1b || (code >= 0x80 && code <= 0x9f);

// En reculant : la dernière est presque toujours tout près, et un texte peut faire un mégaoctet.
function lireLaSequenceInachevee(texte) {
  let debut = texte.length - 1;
  while (debut >= 0 && !ouvreUneSequence(texte.charCodeAt(debut))) debut -= 1;
  const derniere = debut < 0 ? '' : texte.slice(debut);
  return SEQUENCE_ENTIERE.test(derniere) ? '' : derniere;
}

// Ce qu’une page n’a pas encore lu d’un terminal. Sous une inondation, elle n’en reçoit que ce qu’elle en gardera.
export class Arriere {
  #envoyer;
  #attente = '';
  #enRoute = 0;
  #sequence = '';
  #simplesDepuis = 0;
  #lignesGardees = null;
  #palier = EN_ROUTE;
  #vaSElaguer = false;

  // `envoyer(type, texte)`
  constructor(envoyer) {
    this.#envoyer = envoyer;
  }

  // D’un trait : une page qui s’ouvre attend sa reprise entière.
  reprendre(texte) {
    this.#noterLeDepart(texte);
    this.#envoyer('reprise', texte);
  }

  ajouter(texte) {
    this.#attente += texte;
    if (this.#enRoute <= EN_ROUTE) this.#laisserPartir();
    else if (this.#attente.length > this.#palier) this.#elaguer();
  }

  // La page a lu jusque-là. `lignesGardees` : elle n’en garde pas davantage ; rien quand elle tient à toutes.
  lu(nombre, lignesGardees) {
    this.#enRoute = Math.max(0, this.#enRoute - nombre);
    this.#lignesGardees = lignesGardees;
    if (this.#enRoute <= EN_ROUTE && this.#attente !== '') this.#laisserPartir();
  }

  get enAttente() {
    return this.#attente.length;
  }

  // En caractères : ce qui doit retenir le terminal, donc pas ce qui s’élague ou va s’élaguer.
  get retard() {
    const fondra = this.#vaSElaguer && this.#elagable && this.#attente.length < ATTENTE_MAXIMALE;
    return fondra ? 0 : this.#enRoute + this.#attente.length;
  }

  // La page a parlé de l’écran où elle en est ; une commande encore en route a pu le changer.
  get #elagable() {
    return this.#lignesGardees !== null && this.#sequence === '' && this.#enRoute <= this.#simplesDepuis;
  }

  #elaguer() {
    this.#vaSElaguer = false;
    if (this.#elagable) {
      this.#attente = elaguer(this.#attente, this.#lignesGardees);
      const fin = this.#attente.slice(-MORCEAU);
      const longueur = fin.length / fin.split('\n').length;
      this.#vaSElaguer = estSimple(fin) && longueur * this.#lignesGardees < ATTENTE_MAXIMALE / 2;
    }
    this.#palier = this.#attente.length + PAS;
  }

  #laisserPartir() {
    if (this.#attente.length > MORCEAU) this.#elaguer();
    // Une séquence coupée ne se voit pas : elle attend d’être entière.
    const inachevee = lireLaSequenceInachevee(this.#attente.slice(-SEQUENCE_COURTE));
    const texte = this.#attente.slice(0, this.#attente.length - inachevee.length);
    this.#attente = inachevee;
    this.#palier = EN_ROUTE;
    this.#noterLeDepart(texte);
    for (let debut = 0; debut < texte.length; debut += MORCEAU) this.#envoyer('sortie', texte.slice(debut, debut + MORCEAU));
  }

  // Une séquence commencée finira dans ce qui suit, qui n’est alors pas ce dont il a l’air.
  #noterLeDepart(texte) {
    this.#enRoute += texte.length;
    const vu = this.#sequence + texte;
    this.#simplesDepuis = estSimple(vu) ? this.#simplesDepuis + texte.length : 0;
    this.#sequence = lireLaSequenceInachevee(vu).slice(0, SEQUENCE_MAXIMALE);
  }
}
