import { Bande } from '/bande.js';
import { Cadence } from '/cadence.js';
import { Curseur } from '/curseur.js';
import { lireLEchelle } from '/echelle.js';
import { Encres } from '/encres.js';
import { Glyphes } from '/glyphes.js';
import { SOULIGNES } from '/traits.js';

// Au-delà, aucune échelle courante ne tombe juste.
const PAS_MAXIMUM = 20;
const SANS_ABONNEMENT = () => ({ dispose() {} });

// Dessine un terminal point par point, sur une toile : les cases y ont un nombre entier de points, les filets s’y touchent,
// et rien n’attend la mise en page. Prend la place du rendu d’origine, une fois le terminal posé dans la page.
export class Rendu {
  dimensions = { css: { canvas: {}, cell: {} }, device: { canvas: {}, cell: {}, char: {} } };
  onRequestRedraw = SANS_ABONNEMENT;
  #coeur;
  #options;
  #toile = document.createElement('canvas');
  #contexte = this.#toile.getContext('2d', { alpha: false, willReadFrequently: true });
  #encres;
  #curseur;
  #cellule;
  #cadence;
  #abonnements;
  #glyphes = null;
  #bande = null;
  #police = '';
  #cache = false;
  #selection = null;
  #lien = null;
  // Depuis le dernier dessin, en lignes.
  #passees = 0;

  constructor(terminal) {
    this.#coeur = terminal._core;
    this.#options = this.#coeur.optionsService.rawOptions;
    this.#cellule = terminal.buffer.active.getNullCell();
    this.#encres = new Encres(this.#coeur);
    this.#curseur = new Curseur(this.#coeur, () => this.#redessinerLeCurseur());
    this.#coeur.screenElement.prepend(this.#toile);
    this.#abonnements = [
      terminal.onLineFeed(() => (this.#passees += 1)),
      this.#coeur.linkifier.onShowLinkUnderline((lien) => this.#survoler(lien)),
      this.#coeur.linkifier.onHideLinkUnderline(() => this.#survoler(null)),
    ];
    this.#espacer(terminal);
    this.#mesurer();
    const service = this.#coeur._renderService;
    service.setRenderer(this);
    service.handleResize(terminal.cols, terminal.rows);
  }

  // Sous une inondation, la page n’est recomposée, et la fenêtre recopiée, que pour un dessin que l’on a le temps de voir.
  #espacer(terminal) {
    const { _renderService: service, _selectionService: choix } = this.#coeur;
    const inonde = () => this.#passees > 2 * terminal.rows;
    const placerLaSaisie = this.#coeur._syncTextArea.bind(this.#coeur);
    this.#coeur._syncTextArea = () => inonde() || placerLaSaisie();
    // Le terminal la fait redessiner à chaque ligne qui défile, même s’il n’y en a pas.
    const redessinerLaSelection = choix.refresh.bind(choix);
    choix.refresh = (...suite) => (choix.hasSelection || this.#selection) && redessinerLaSelection(...suite);
    service._renderDebouncer.dispose();
    this.#cadence = new Cadence((debut, fin) => {
      this.#passees = 0;
      placerLaSaisie();
      service._renderRows(debut, fin);
    }, inonde);
    service._renderDebouncer = this.#cadence;
  }

  dispose() {
    this.#cadence.arreter();
    this.#curseur.dispose();
    for (const abonnement of this.#abonnements) abonnement.dispose();
    this.#toile.remove();
  }

  // Caché, un terminal n’a pas besoin de toile ; montré, il lui en faut une, et tout entière.
  montrer(oui) {
    if (oui !== this.#cache) return;
    this.#cache = !oui;
    if (!oui) return (this.#toile.width = 0);
    this.#mesurer();
    this.#toutRedessiner();
  }

  handleResize() {
    this.#mesurer();
  }

  handleCharSizeChanged() {
    this.#mesurer();
  }

  handleDevicePixelRatioChange() {
    this.#mesurer();
  }

  handleFocus() {
    this.#toutRedessiner();
  }

  handleBlur() {
    this.#toutRedessiner();
  }

  handleSelectionChanged(debut, fin, enColonne) {
    this.#selection = debut && fin ? { debut, fin, enColonne } : null;
    this.#toutRedessiner();
  }

  handleCursorMove() {
    this.#curseur.bouger();
  }

  clear() {}

  renderRows(debut, fin) {
    if (this.#cache) return;
    const { lines, ydisp, ybase, y: rangDuCurseur } = this.#coeur._bufferService.buffer;
    this.#encres.recommencer();
    const decore = !this.#coeur._decorationService.decorations.next().done;
    for (let y = debut; y <= fin; y += 1) {
      const rang = y + ydisp;
      this.#bande.remplir(0, 0, this.#toile.width, this.#glyphes.hauteur, this.#encres.parDefaut);
      if (lines.get(rang)) this.#peindre(lines.get(rang), { y, rang, decore, curseur: rang === ybase + rangDuCurseur });
      this.#bande.poserSur(this.#contexte, y * this.#glyphes.hauteur);
    }
  }

  #peindre(ligne, { y, rang, decore, curseur }) {
    const { largeur } = this.#glyphes;
    if (curseur) this.#curseur.suivre();
    const colonneDuCurseur = curseur && this.#curseur.visible ? this.#curseur.colonne(ligne) : -1;
    for (let x = 0; x < this.#coeur.cols; x += 1) {
      const cellule = ligne.loadCell(x, this.#cellule);
      const cases = cellule.getWidth();
      if (cases === 0) continue;
      this.#encres.lire(cellule, { selectionnee: this.#estSelectionnee(x, rang), decor: decore && this.#decorDe(x, rang) });
      if (x === colonneDuCurseur && this.#curseur.plein) this.#encres.sousLeCurseur();
      if (this.#encres.fond !== this.#encres.parDefaut) this.#bande.remplir(x * largeur, 0, cases * largeur, this.#glyphes.hauteur, this.#encres.fond);
      if (!cellule.isInvisible()) this.#ecrire(cellule, x, cases, this.#estSurvolee(x, y));
      if (x === colonneDuCurseur) this.#curseur.tracer(this.#bande, x * largeur, cases * largeur, this.#glyphes.hauteur, this.#encres.curseur);
    }
  }

  #ecrire(cellule, x, cases, survolee) {
    const place = x * this.#glyphes.largeur;
    const texte = cellule.getChars();
    if (texte !== '' && texte !== ' ') {
      this.#bande.poser(this.#glyphes.masque(texte, cases, cellule.isBold(), cellule.isItalic()), place, this.#encres.encrePour(texte));
    }
    const souligne = survolee ? 1 : cellule.isUnderline() && cellule.extended.underlineStyle;
    if (!souligne && !cellule.isOverline() && !cellule.isStrikethrough()) return;
    for (let i = 0; i < cases; i += 1) {
      const tracer = (sorte, couleur) => this.#bande.poser(this.#glyphes.trait(sorte), place + i * this.#glyphes.largeur, couleur);
      if (souligne) tracer(SOULIGNES[souligne], this.#encres.trait(cellule));
      if (cellule.isOverline()) tracer('surligne', this.#encres.encre);
      if (cellule.isStrikethrough()) tracer('barre', this.#encres.encre);
    }
  }

  #estSelectionnee(x, y) {
    if (!this.#selection) return false;
    const { debut: [x1, y1], fin: [x2, y2], enColonne } = this.#selection;
    if (y < y1 || y > y2) return false;
    if (enColonne) return x >= Math.min(x1, x2) && x < Math.max(x1, x2);
    return (y > y1 || x >= x1) && (y < y2 || x < x2);
  }

  #estSurvolee(x, y) {
    if (!this.#lien) return false;
    const { x1, y1, x2, y2 } = this.#lien;
    return y >= y1 && y <= y2 && (y > y1 || x >= x1) && (y < y2 || x < x2);
  }

  // Ce que la recherche pose sur une case : les décors du dessus l’emportent.
  #decorDe(x, y) {
    let decor = null;
    this.#coeur._decorationService.forEachDecorationAtCell(x, y, undefined, ({ backgroundColorRGB, foregroundColorRGB, options }) => {
      if (decor?.dessus && options.layer !== 'top') return;
      decor ??= {};
      if (backgroundColorRGB) decor.fond = backgroundColorRGB.rgba >>> 8;
      if (foregroundColorRGB) decor.encre = foregroundColorRGB.rgba >>> 8;
      decor.dessus = options.layer === 'top';
    });
    return decor;
  }

  #survoler(lien) {
    const { y1, y2 } = lien ?? this.#lien ?? {};
    this.#lien = lien;
    if (y1 !== undefined) this.renderRows(Math.max(y1, 0), Math.min(y2, this.#coeur.rows - 1));
  }

  #redessinerLeCurseur() {
    const { y, ybase, ydisp } = this.#coeur._bufferService.buffer;
    const rang = y + ybase - ydisp;
    if (rang < this.#coeur.rows) this.renderRows(rang, rang);
  }

  #toutRedessiner() {
    this.renderRows(0, this.#coeur.rows - 1);
  }

  // La case, en points de l’écran ; et la toile, effacée si sa taille change.
  #mesurer() {
    const { fontFamily: famille, fontSize, fontWeight: graisse, fontWeightBold: grasse, lineHeight: interligne, letterSpacing } = this.#options;
    const echelle = lireLEchelle();
    this.#curseur.trait = Math.max(1, Math.round(echelle));
    const demande = { famille, corps: fontSize * echelle, graisse, grasse, interligne, interlettre: Math.round(letterSpacing * echelle) };
    if (this.#police !== JSON.stringify(demande)) this.#glyphes = new Glyphes(demande);
    this.#police = JSON.stringify(demande);
    const { largeur, hauteur } = this.#glyphes;
    const [toute, haute] = [largeur * this.#coeur.cols, hauteur * this.#coeur.rows];
    Object.assign(this.dimensions.device, {
      canvas: { width: toute, height: haute },
      cell: { width: largeur, height: hauteur },
      char: { width: largeur, height: hauteur, left: 0, top: 0 },
    });
    Object.assign(this.dimensions.css, {
      canvas: { width: toute / echelle, height: haute / echelle },
      cell: { width: largeur / echelle, height: hauteur / echelle },
    });
    Object.assign(this.#coeur.screenElement.style, { width: `${toute / echelle}px`, height: `${haute / echelle}px` });
    if (!this.#cache) this.#poserLaToile(toute, haute, echelle);
  }

  // Pour que ses points soient ceux de l’écran, la toile commence et finit sur un nombre entier des uns et des autres :
  // à l’échelle 1,25, tous les quatre.
  #poserLaToile(largeur, hauteur, echelle) {
    const pas = Array.from({ length: PAS_MAXIMUM }, (_, i) => i + 1).find((n) => Math.abs(n * echelle - Math.round(n * echelle)) < 1e-6) ?? 1;
    const [l, h] = [largeur, hauteur].map((points) => Math.ceil(points / echelle / pas) * pas);
    const { left, top } = this.#coeur.screenElement.getBoundingClientRect();
    Object.assign(this.#toile.style, {
      left: `${Math.round(left / pas) * pas - left}px`,
      top: `${Math.round(top / pas) * pas - top}px`,
      width: `${l}px`,
      height: `${h}px`,
    });
    const [enPointsL, enPointsH] = [Math.round(l * echelle), Math.round(h * echelle)];
    if (this.#toile.width === enPointsL && this.#toile.height === enPointsH && this.#bande?.hauteur === this.#glyphes.hauteur) return;
    Object.assign(this.#toile, { width: enPointsL, height: enPointsH });
    this.#bande = new Bande(enPointsL, this.#glyphes.hauteur);
  }
}
