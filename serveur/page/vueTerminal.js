import { FitAddon } from '/xterm/addon-fit.mjs';
import { SearchAddon } from '/xterm/addon-search.mjs';
import { Unicode11Addon } from '/xterm/addon-unicode11.mjs';
import { WebLinksAddon } from '/xterm/addon-web-links.mjs';
import { Terminal } from '/xterm/xterm.mjs';
import { apparenceDuTerminal, TROUVAILLES } from '/themes.js';

// Un message trop gros serait refusé par le serveur ; un grand collage part donc en plusieurs.
const TAILLE_D_UN_ENVOI = 64 * 1024;
// Ni « git@hote.test:depot », ni « hote.test/~moi@ici.test/page » : ce sont des chemins.
const COURRIEL = /(?<![\w.+/:-])[\w.+-]+@[\w-]+(\.[\w-]+)+(?![\w/-]|:\S)/g;
const PROTOCOLES_OUVERTS = ['http:', 'https:', 'mailto:'];

Terminal.strings.promptLabel = 'Saisie du terminal';
Terminal.strings.tooMuchOutput = 'Trop de texte à annoncer : parcourez-le ligne à ligne';

// Le panneau d’un terminal. Les call-backs donnés : quandSaisie(texte), quandTaille(taille), quandLu(nombre),
// quandSonnerie(), quandFocus(), quandLien(adresse ou rien), quandTrouve({ resultIndex, resultCount }).
export class VueTerminal {
  panneau = document.createElement('section');
  #terminal;
  #ajustement = new FitAddon();
  #recherche = new SearchAddon();
  #quand;
  #rejoue;

  constructor({ id, colonnes, lignes, reprise = false }, { corps, lecteur }, quand) {
    this.#quand = quand;
    this.#rejoue = reprise;
    this.#preparerLePanneau(id);
    const survol = { hover: (_, adresse) => quand.quandLien(lireLeLien(adresse)), leave: () => quand.quandLien(null) };
    this.#terminal = new Terminal({
      ...apparenceDuTerminal(),
      cols: colonnes,
      rows: lignes,
      fontFamily: '"DejaVu Sans Mono", "Liberation Mono", Menlo, monospace',
      fontSize: corps,
      // À un, la hauteur de ligne s’arrondit vers le bas et les soulignés « _ » disparaissent.
      lineHeight: 1.1,
      screenReaderMode: lecteur,
      scrollback: 10_000,
      // Le choix de largeurs des caractères et les trouvailles surlignées ne sont ouverts qu’à ce prix.
      allowProposedApi: true,
      linkHandler: { activate: ouvrirLeLien, allowNonHttpProtocols: true, ...survol },
    });
    for (const ajout of [this.#ajustement, this.#recherche, new Unicode11Addon(), new WebLinksAddon(ouvrirLeLien, survol)]) {
      this.#terminal.loadAddon(ajout);
    }
    this.#terminal.registerLinkProvider({ provideLinks: (y, rendre) => rendre(this.#trouverLesCourriels(y, survol)) });
    // Les largeurs que comptent aussi les interpréteurs et les éditeurs d’aujourd’hui.
    this.#terminal.unicode.activeVersion = '11';
    this.#terminal.onData((texte) => this.#saisir(texte));
    // Ce qui a sonné jadis ne sonne plus.
    this.#terminal.onBell(() => this.#rejoue || quand.quandSonnerie());
    this.#terminal.onResize(({ cols, rows }) => quand.quandTaille({ colonnes: cols, lignes: rows }));
    this.#recherche.onDidChangeResults((trouvailles) => quand.quandTrouve(trouvailles));
  }

  get taille() {
    return { colonnes: this.#terminal.cols, lignes: this.#terminal.rows };
  }

  // Un terminal caché n’a pas de mesures : il n’est posé dans la page, et ajusté, qu’une fois visible.
  montrer() {
    this.panneau.hidden = false;
    if (this.#terminal.element) return;
    this.#terminal.open(this.panneau);
    // Sur cette zone de saisie cachée, seul « Tout sélectionner » commence une sélection.
    this.#terminal.textarea.addEventListener('selectstart', (evenement) => {
      evenement.preventDefault();
      this.#toutSelectionner();
    });
  }

  cacher() {
    this.panneau.hidden = true;
  }

  ajuster() {
    // La reprise doit être relue à la taille où elle a été écrite, sinon ses lignes se replient de travers.
    if (!this.panneau.hidden && !this.#rejoue) this.#ajustement.fit();
  }

  prendreLeFocus() {
    this.#terminal.focus();
  }

  // Les questions que des programmes ont posées jadis au terminal ne doivent pas recevoir de réponse une seconde fois.
  rejouer(texte, quandLu) {
    this.ecrire(texte, () => {
      this.#rejoue = false;
      this.ajuster();
      quandLu();
    });
  }

  ecrire(texte, quandLu) {
    this.#terminal.write(texte, () => {
      this.#quand.quandLu(texte.length);
      quandLu();
    });
  }

  // Après ce qui attend encore d’être écrit : le collage encadré n’est connu qu’une fois la reprise relue.
  coller(texte) {
    this.#terminal.write('', () => this.#terminal.paste(texte));
  }

  // De bas en haut d’abord : ce que l’on cherche vient le plus souvent de passer.
  chercher(texte, { neuf = false, versLeBas = false } = {}) {
    if (neuf) this.#terminal.clearSelection();
    if (versLeBas) this.#recherche.findNext(texte, { decorations: TROUVAILLES });
    else this.#recherche.findPrevious(texte, { decorations: TROUVAILLES });
  }

  cesserDeChercher() {
    this.#recherche.clearDecorations();
  }

  regler({ corps, lecteur }) {
    this.#terminal.options.fontSize = corps;
    this.#terminal.options.screenReaderMode = lecteur;
    this.ajuster();
  }

  habiller() {
    Object.assign(this.#terminal.options, apparenceDuTerminal());
  }

  retirer() {
    this.#terminal.dispose();
    this.panneau.remove();
  }

  #preparerLePanneau(id) {
    Object.assign(this.panneau, { id: `panneau-${id}`, className: 'panneau', role: 'tabpanel', hidden: true });
    this.panneau.setAttribute('aria-labelledby', `onglet-${id}`);
    this.panneau.dataset.terminal = id;
    this.panneau.addEventListener('focusin', () => this.#quand.quandFocus());
    // Pour le navigateur rien n’est sélectionné : sans cela, son « Copier » resterait grisé.
    this.panneau.addEventListener('beforecopy', (evenement) => this.#terminal.hasSelection() && evenement.preventDefault());
    new ResizeObserver(() => this.ajuster()).observe(this.panneau);
  }

  // Jusqu’à la dernière ligne écrite : le reste de l’écran n’est rien à copier.
  #toutSelectionner() {
    const tampon = this.#terminal.buffer.active;
    let fin = tampon.length - 1;
    while (fin > 0 && tampon.getLine(fin).translateToString(true) === '') fin -= 1;
    this.#terminal.selectLines(0, fin);
  }

  // L’ajout des liens ne prend que des adresses avec « :// ». Une lettre par case : le rang y est alors la colonne.
  #trouverLesCourriels(y, survol) {
    const ligne = this.#terminal.buffer.active.getLine(y - 1);
    const cases = Array.from({ length: ligne?.length ?? 0 }, (_, x) => ligne.getCell(x).getChars());
    const texte = cases.map((signe) => (signe.length === 1 ? signe : ' ')).join('');
    return [...texte.matchAll(COURRIEL)].map(({ 0: adresse, index }) => ({
      range: { start: { x: index + 1, y }, end: { x: index + adresse.length, y } },
      text: `mailto:${adresse}`,
      activate: ouvrirLeLien,
      ...survol,
    }));
  }

  #saisir(texte) {
    if (this.#rejoue) return;
    for (const morceau of decouper(texte)) this.#quand.quandSaisie(morceau);
  }
}

function* decouper(texte) {
  let debut = 0;
  while (debut < texte.length) {
    let fin = Math.min(debut + TAILLE_D_UN_ENVOI, texte.length);
    // Ne pas séparer les deux moitiés d’un caractère.
    if (fin < texte.length && /[\ud800-\udbff]/.test(texte[fin - 1])) fin -= 1;
    yield texte.slice(debut, fin);
    debut = fin;
  }
}

// L’adresse vient d’un programme, et son texte peut en cacher une autre : la vraie se montre au survol, et un simple
// clic, fait pour prendre le focus ou sélectionner, n’ouvre rien.
function ouvrirLeLien(evenement, adresse) {
  const lien = lireLeLien(adresse);
  if (lien && (evenement.ctrlKey || evenement.metaKey)) open(lien, '_blank', 'noopener');
}

function lireLeLien(adresse) {
  try {
    const { protocol, href } = new URL(adresse);
    return PROTOCOLES_OUVERTS.includes(protocol) ? href : null;
  } catch {
    return null;
  }
}
