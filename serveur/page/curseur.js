const CLIGNOTEMENT = 530;
const immobile = matchMedia('(prefers-reduced-motion: reduce)');

// Le curseur d’un terminal : sa forme, et s’il se voit à cet instant. `redessiner` le fait réapparaître ou disparaître.
export class Curseur {
  // Son épaisseur, en points.
  trait = 1;
  #coeur;
  #redessiner;
  #minuteur = null;
  #eteint = false;

  constructor(coeur, redessiner) {
    this.#coeur = coeur;
    this.#redessiner = redessiner;
  }

  dispose() {
    clearInterval(this.#minuteur);
  }

  get #options() {
    return this.#coeur.optionsService.rawOptions;
  }

  get #forme() {
    const { cursorStyle, cursorInactiveStyle } = this.#options;
    if (!this.#coeur._coreBrowserService.isFocused) return cursorInactiveStyle;
    return this.#coeur.coreService.decPrivateModes.cursorStyle ?? cursorStyle;
  }

  get #demande() {
    const { isCursorHidden, isCursorInitialized } = this.#coeur.coreService;
    return isCursorInitialized && !isCursorHidden;
  }

  get visible() {
    return this.#demande && !this.#eteint;
  }

  get plein() {
    return this.#forme === 'block';
  }

  // Sur la première case d’un caractère large.
  colonne(ligne) {
    const x = Math.min(this.#coeur._bufferService.buffer.x, this.#coeur.cols - 1);
    return x > 0 && ligne.getWidth(x) === 0 ? x - 1 : x;
  }

  // Un curseur qui bouge ne disparaît pas.
  bouger() {
    clearInterval(this.#minuteur);
    this.#minuteur = null;
    this.#eteint = false;
  }

  tracer(bande, x, largeur, hauteur, couleur) {
    const { trait } = this;
    const forme = this.#forme;
    if (forme === 'bar') bande.remplir(x, 0, Math.round(this.#options.cursorWidth * trait), hauteur, couleur);
    if (forme === 'underline') bande.remplir(x, hauteur - 2 * trait, largeur, 2 * trait, couleur);
    if (forme !== 'outline') return;
    for (const y of [0, hauteur - trait]) bande.remplir(x, y, largeur, trait, couleur);
    for (const gauche of [x, x + largeur - trait]) bande.remplir(gauche, 0, trait, hauteur, couleur);
  }

  // À chaque dessin de sa ligne. Il ne clignote que là où l’on tape.
  suivre() {
    const clignote = this.#coeur.coreService.decPrivateModes.cursorBlink ?? this.#options.cursorBlink;
    if (!clignote || immobile.matches || !this.#demande || !this.#coeur._coreBrowserService.isFocused) this.bouger();
    else this.#minuteur ??= setInterval(() => this.#basculer(), CLIGNOTEMENT);
  }

  #basculer() {
    this.#eteint = !this.#eteint;
    this.#redessiner();
  }
}
