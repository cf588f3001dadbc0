// Chaque marque suit sa ligne quand l’historique avance : au-delà, les plus anciennes commandes n’en ont plus.
const MAXIMUM = 200;

const aCommence = ({ lignes }) => lignes !== null;

// Où sont, dans l’historique d’un terminal, les commandes d’un interpréteur qui les annonce (OSC 133) : A, l’invite ; C, la
// sortie ; D, la fin. La marge dit si chacune a réussi ; l’une d’elles peut être visitée.
export class Commandes {
  #terminal;
  #liste = [];
  #visitee = null;
  #surlignage = null;

  constructor(terminal) {
    this.#terminal = terminal;
    terminal.parser.registerOscHandler(133, (valeur) => {
      const [sorte, statut] = valeur.split(';');
      if (terminal.buffer.active.type === 'normal') this.#etapes[sorte]?.(statut);
      return true;
    });
    // Qui tape n’est plus en visite.
    terminal.onData(() => this.#visiter(null));
  }

  // D’une commande à l’autre, la première fois depuis l’invite. Faux quand il n’y en a pas.
  aller(pas) {
    const passees = this.#liste.filter(aCommence);
    if (passees.length === 0 || this.#terminal.buffer.active.type !== 'normal') return false;
    const rang = this.#visitee ? passees.indexOf(this.#visitee) : passees.length;
    const cible = passees[Math.max(rang + pas, 0)] ?? null;
    this.#visiter(cible);
    if (cible) this.#terminal.scrollToLine(cible.invite.line);
    else this.#terminal.scrollToBottom();
    return true;
  }

  // La sortie de la commande visitée, sinon de la dernière. Faux quand il n’y en a pas.
  selectionnerLaSortie() {
    const rang = this.#liste.findLastIndex((commande) => aCommence(commande) && commande === (this.#visitee ?? commande));
    if (rang < 0 || this.#terminal.buffer.active.type !== 'normal') return false;
    const sortie = this.#trouverLaSortie(this.#liste[rang]);
    const suivante = this.#liste[rang + 1];
    const { baseY, cursorX, cursorY } = this.#terminal.buffer.active;
    const [ligne, colonne] = suivante ? [suivante.invite.line, suivante.colonne] : [baseY + cursorY, cursorX];
    this.#terminal.select(0, sortie, (ligne - sortie) * this.#terminal.cols + colonne);
    return true;
  }

  #etapes = {
    A: () => this.#inviter(),
    C: () => this.#commencer(),
    D: (statut) => this.#finir(statut),
  };

  #inviter() {
    const { baseY, cursorX: colonne, cursorY } = this.#terminal.buffer.active;
    const derniere = this.#liste.at(-1);
    // Redessinée.
    if (derniere && !aCommence(derniere) && derniere.invite.line === baseY + cursorY) return;
    if (this.#liste.length === MAXIMUM) this.#liste[0].invite.dispose();
    const commande = { invite: this.#terminal.registerMarker(), colonne, lignes: null, finie: false };
    commande.invite.onDispose(() => this.#oublier(commande));
    this.#liste.push(commande);
  }

  #commencer() {
    // Qui n’annonce pas ses invites commence là où il écrit.
    if (this.#liste.length === 0 || aCommence(this.#liste.at(-1))) this.#inviter();
    const { baseY, cursorY } = this.#terminal.buffer.active;
    const commande = this.#liste.at(-1);
    commande.lignes = 0;
    for (let y = commande.invite.line + 1; y <= baseY + cursorY; y += 1) commande.lignes += this.#estUnDebut(y) ? 1 : 0;
  }

  #finir(statut) {
    const commande = this.#liste.at(-1);
    if (!commande || !aCommence(commande) || commande.finie) return;
    commande.finie = true;
    const reussie = statut === '0';
    const nom = reussie ? 'Commande réussie' : `Commande échouée (${Number(statut)})`;
    if (/^\d+$/.test(statut)) this.#decorer(commande, 1, (element) => {
      element.classList.add('statut', reussie ? 'reussie' : 'echouee');
      Object.assign(element, { role: 'img', ariaLabel: nom, title: nom });
    });
  }

  // Les lignes de l’invite et de la commande se comptent sans leurs replis, qui changent avec la largeur : une seconde marque
  // coûterait à chaque ligne qui défile.
  #trouverLaSortie({ invite, lignes }) {
    let y = invite.line;
    for (let reste = lignes; reste > 0 && y < this.#terminal.buffer.active.length; reste -= this.#estUnDebut(y) ? 1 : 0) y += 1;
    return y;
  }

  #estUnDebut(y) {
    return !this.#terminal.buffer.active.getLine(y)?.isWrapped;
  }

  #visiter(commande) {
    if (commande === this.#visitee) return;
    this.#surlignage?.dispose();
    this.#visitee = commande;
    this.#surlignage = commande && this.#decorer(commande, this.#terminal.cols, (element) => element.classList.add('visitee'));
  }

  // `habiller` une seule fois, quand la ligne se montre.
  #decorer({ invite }, width, habiller) {
    const decoration = this.#terminal.registerDecoration({ marker: invite, width });
    const ecoute = decoration?.onRender((element) => {
      ecoute.dispose();
      habiller(element);
    });
    return decoration;
  }

  #oublier(commande) {
    this.#liste = this.#liste.filter((autre) => autre !== commande);
    if (this.#visitee === commande) this.#visiter(null);
  }
}
