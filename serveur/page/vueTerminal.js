import { FitAddon } from '/xterm/addon-fit.mjs';
import { Unicode11Addon } from '/xterm/addon-unicode11.mjs';
import { Terminal } from '/xterm/xterm.mjs';
import { bornerLesRepetitions } from '/bornes.js';
import { chercherLesChemins } from '/chemins.js';
import { coller, prendreLesCollages } from '/collage.js';
import { Commandes } from '/commandes.js';
import { composer } from '/composition.js';
import { suivreLeDoigt } from '/doigt.js';
import { Envois } from '/envois.js';
import { grouperSurDemande } from '/graphemes.js';
import { Images } from '/images.js';
import { compterLesLargeurs } from '/largeurs.js';
import { envoyer } from '/liaison.js';
import { chercherLesLiens, liensDeclares } from '/liens.js';
import { compterLesLignesGardees } from '/lignesGardees.js';
import { familleDuTerminal } from '/police.js';
import { copierEnSelectionnant, prendreLesEcritures } from '/pressePapiers.js';
import { montrerLaProgression } from '/progression.js';
import { valeurs } from '/reglages.js';
import { Rendu } from '/rendu.js';
import { donnerLaSelection } from '/selection.js';
import { apparenceDuTerminal } from '/themes.js';
import { prendreLesTouches } from '/touches.js';
import { REPONSE_D_OFFICE, Veille } from '/veille.js';

Terminal.strings.tooMuchOutput = 'Trop de texte à annoncer : parcourez-le ligne à ligne';

const FIN_DE_COLLAGE = '\x1b[201~';

const CURSEURS = { bloc: 'block', barre: 'bar', souligne: 'underline' };

const preferences = () => ({
  ...apparenceDuTerminal(),
  fontFamily: familleDuTerminal(),
  fontSize: valeurs.corps,
  cursorStyle: CURSEURS[valeurs.curseur],
  cursorBlink: valeurs.clignotant,
  scrollback: valeurs.historique,
  screenReaderMode: valeurs.lecteur,
});
const modele = document.querySelector('#modele-terminal').content;

// Un terminal de la page : son onglet, son panneau, et ce qui veille à prévenir l’utilisateur. Une sonnerie s’annonce
// par un événement « sonnerie » du panneau.
export class VueTerminal {
  veille = new Veille();
  montree = false;
  #ajustement = new FitAddon();
  #images;
  #rejoue;
  #bouton;
  #lu;
  #rendu = null;
  #envois = new Envois({
    envoyer: (texte) => envoyer({ type: 'saisie', id: this.id, texte }),
    quandSourd: () => envoyer({ type: 'abandon', id: this.id }),
  });

  constructor({ id, colonnes, lignes }, rejoue) {
    this.id = id;
    this.#rejoue = rejoue;
    [this.onglet, this.panneau] = modele.cloneNode(true).children;
    for (const element of [this.onglet, this.panneau]) element.dataset.terminal = id;
    this.#bouton = this.onglet.querySelector('.choisir');
    this.#bouton.id = `onglet-${id}`;
    this.#bouton.setAttribute('aria-controls', `panneau-${id}`);
    this.panneau.id = `panneau-${id}`;
    this.panneau.setAttribute('aria-labelledby', `onglet-${id}`);
    // Pour le navigateur rien n’est sélectionné : sans cela, son « Copier » resterait grisé.
    this.panneau.addEventListener('beforecopy', (evenement) => {
      if (this.terminal.hasSelection()) evenement.preventDefault();
    });
    new ResizeObserver(() => this.#ajuster()).observe(this.panneau);
    this.terminal = new Terminal({
      ...preferences(),
      cols: colonnes,
      rows: lignes,
      // Le choix de largeurs des caractères et les trouvailles surlignées ne sont ouverts qu’à ce prix.
      allowProposedApi: true,
      linkHandler: liensDeclares,
    });
    bornerLesRepetitions(this.terminal);
    this.commandes = new Commandes(this.terminal);
    suivreLeDoigt(this.panneau, this.terminal);
    prendreLesCollages(this.panneau, (texte) => this.coller(texte));
    prendreLesEcritures(this, { passe: () => this.#rejoue });
    copierEnSelectionnant(this);
    composer(this.panneau, this.terminal, (texte) => this.terminal.input(texte));
    prendreLesTouches(this.terminal);
    this.panneau.querySelector('.rouvrir').addEventListener('click', () => this.#rouvrir());
    this.terminal.loadAddon(this.#ajustement);
    chercherLesLiens(this.terminal);
    chercherLesChemins(this.terminal, id);
    compterLesLargeurs(this.terminal, Unicode11Addon);
    grouperSurDemande(this.terminal, async () => (await import('/xterm/addon-unicode-graphemes.mjs')).UnicodeGraphemesAddon);
    this.#images = new Images(this.terminal);
    this.terminal.onData((texte) => this.#saisir(texte));
    // Ce qui a sonné jadis ne sonne plus.
    this.terminal.onBell(() => this.#rejoue || this.panneau.dispatchEvent(new Event('sonnerie', { bubbles: true })));
    this.terminal.onResize(() => {
      this.veille.redimensionner(performance.now());
      envoyer({ type: 'taille', id, ...this.taille });
    });
  }

  get taille() {
    return { colonnes: this.terminal.cols, lignes: this.terminal.rows };
  }

  decrire({ nom, numero, etiquette, groupe, division, dossier, ouvert, aLInvite, progression }) {
    Object.assign(this, { nom, groupe, division, ouvert, aLInvite });
    for (const element of [this.onglet, this.panneau]) element.classList.toggle('eteint', !ouvert);
    Object.assign(this.#bouton, { textContent: etiquette, title: `${nom}\n${dossier}` });
    this.#bouton.dataset.numero = numero || '';
    this.#lu = numero ? `Terminal ${numero} : ${etiquette}` : nom;
    this.onglet.querySelector('.fermer').ariaLabel = `Fermer « ${nom} »`;
    montrerLaProgression(this.onglet.querySelector('.progression'), progression, nom);
    this.#nommerLaSaisie();
    this.marquer(this.attend);
  }

  get attend() {
    return this.onglet.classList.contains('attend');
  }

  // Une marque discrète : ce terminal attend l’utilisateur.
  marquer(oui) {
    this.onglet.classList.toggle('attend', oui);
    this.#bouton.ariaLabel = this.#lu + (oui ? ', vous attend' : '');
  }

  // Un terminal caché n’a pas de mesures : il n’est posé dans la page, et ajusté, qu’une fois visible.
  montrer({ montree, choisie, seule }) {
    this.montree = montree;
    this.panneau.hidden = !montree;
    this.panneau.classList.toggle('choisi', choisie && !seule);
    this.onglet.classList.toggle('choisi', choisie);
    Object.assign(this.#bouton, { ariaSelected: choisie, tabIndex: choisie ? 0 : -1 });
    this.#rendu?.montrer(montree);
    if (!montree || this.terminal.element) return;
    this.terminal.open(this.panneau);
    this.#nommerLaSaisie();
    this.#rendu = new Rendu(this.terminal);
    donnerLaSelection(this.terminal);
    // Sur cette zone de saisie cachée, seul « Tout sélectionner » commence une sélection.
    this.terminal.textarea.addEventListener('selectstart', (evenement) => {
      evenement.preventDefault();
      this.toutSelectionner();
    });
  }

  // La reprise vient en premier, et les questions que des programmes y ont posées jadis au terminal ne doivent pas
  // recevoir de réponse une seconde fois. Elle se relit à la taille où elle a été écrite, sinon ses lignes se
  // replieraient de travers.
  ecrire(texte, quandLu = () => {}) {
    this.terminal.write(texte, () => {
      envoyer({ type: 'recu', id: this.id, nombre: texte.length, lignesGardees: compterLesLignesGardees(this.terminal) });
      if (this.#rejoue) {
        this.#rejoue = false;
        this.#ajuster();
      }
      quandLu();
    });
  }

  // Le collage encadré n’est connu qu’une fois la reprise relue.
  coller(texte) {
    if (this.#rejoue) this.terminal.write('', () => coller(this.terminal, texte));
    else coller(this.terminal, texte);
  }

  // Le programme a lu jusque-là ; ou bien il ne lit plus, et ce qu’on lui envoyait est perdu.
  lu(nombre) {
    this.#envois.lu(nombre);
  }

  sourd() {
    // Qui a reçu le début d’un collage encadré en attend la fin.
    if (this.#envois.oublier().includes(FIN_DE_COLLAGE)) this.#envois.ajouter(FIN_DE_COLLAGE);
  }

  regler() {
    Object.assign(this.terminal.options, preferences());
    this.#images.regler();
    this.#ajuster();
  }

  // Jusqu’à la dernière ligne écrite : le reste de l’écran n’est rien à copier.
  toutSelectionner() {
    const tampon = this.terminal.buffer.active;
    let fin = tampon.length - 1;
    while (fin > 0 && tampon.getLine(fin).translateToString(true) === '') fin -= 1;
    this.terminal.selectLines(0, fin);
  }

  // La ligne en cours reste, en haut ; un programme plein écran garde son dessin.
  effacer() {
    this.terminal.write('', () => this.terminal.buffer.active.type === 'normal' && this.terminal.clear());
  }

  retirer() {
    this.#envois.oublier();
    this.terminal.dispose();
    this.panneau.remove();
    this.onglet.remove();
  }

  // Un lecteur d’écran se tait quand le clavier va d’un élément à un autre du même nom.
  #nommerLaSaisie() {
    if (this.terminal.textarea) this.terminal.textarea.ariaLabel = `${this.nom} : saisie`;
  }

  #ajuster() {
    if (this.montree && !this.#rejoue) this.#ajustement.fit();
  }

  #rouvrir() {
    envoyer({ type: 'rouvrir', id: this.id });
  }

  #saisir(texte) {
    if (this.#rejoue) return;
    // Au clavier, le bouton « Rouvrir » serait hors d’atteinte : Entrée en tient lieu.
    if (!this.ouvert) return texte === '\r' && this.#rouvrir();
    this.veille.saisir(texte, performance.now());
    // De deux pages qui montrent ce terminal, une seule doit répondre : le serveur choisit laquelle.
    if (REPONSE_D_OFFICE.test(texte)) envoyer({ type: 'reponse', id: this.id, texte });
    else this.#envois.ajouter(texte);
  }
}
