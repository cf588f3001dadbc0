import { valeurs } from '/reglages.js';

// Par image, en points et en octets reçus ; par terminal, en mégaoctets : au-delà, les plus anciennes s’en vont.
const BORNES = { pixelLimit: 8 * 1024 * 1024, storageLimit: 64, sixelSizeLimit: 16_000_000, iipSizeLimit: 16_000_000 };
// Ce que l’on est : le 4 dit que l’on dessine.
const NATURE = '\x1b[?62;4;9;22c';
const ESSAIS_DU_DECODEUR = 200;

const enPoints = (texte) => Uint32Array.from(texte, (signe) => signe.codePointAt(0));

// Les images qu’un programme envoie, en sixels ou dans le protocole d’iTerm. De quoi les lire ne se charge qu’à la
// première ; les suivantes y vont d’elles-mêmes.
export class Images {
  #terminal;
  #ajout = null;

  constructor(terminal) {
    this.#terminal = terminal;
    // Ce qu’une image peut occuper : en pixels, et en cases.
    terminal.options.windowOptions = { getWinSizePixels: true, getCellSizePixels: true, getWinSizeChars: true };
    const { parser } = terminal;
    parser.registerCsiHandler({ final: 'c' }, ([numero]) => valeurs.images && !numero && this.#repondre(NATURE));
    parser.registerCsiHandler({ prefix: '?', final: 'S' }, this.#auPremier((ajout, params) => ajout._xtermGraphicsAttributes(params)));
    parser.registerDcsHandler({ final: 'q' }, this.#auPremier((ajout, texte, params) => {
      const [sixels, points] = [ajout._handlers.get('sixel'), enPoints(texte)];
      sixels.hook({ params });
      sixels.put(points, 0, points.length);
      return sixels.unhook(true);
    }));
    const dessinerUnFichier = this.#auPremier((ajout, texte) => {
      const [image, points] = [ajout._handlers.get('iip'), enPoints(texte)];
      image.start();
      image.put(points, 0, points.length);
      return image.end(true);
    });
    parser.registerOscHandler(1337, (texte) => texte.startsWith('File=') && dessinerUnFichier(texte));
  }

  regler() {
    if (valeurs.images) return;
    this.#ajout?.dispose();
    this.#ajout = null;
  }

  #repondre(texte) {
    this.#terminal.input(texte, false);
    return true;
  }

  // Ce que l’ajout aurait fait de la séquence qui l’a fait charger : elle est passée avant lui.
  #auPremier(faire) {
    return (...sequence) => valeurs.images && !this.#ajout && this.#charger().then((ajout) => faire(ajout, ...sequence), () => false);
  }

  async #charger() {
    const { ImageAddon } = await import('/xterm/addon-image.mjs');
    this.#ajout = new ImageAddon({ ...BORNES, enableSizeReports: false });
    this.#terminal.loadAddon(this.#ajout);
    // Il ne dit pas quand son décodeur est prêt.
    const sixels = this.#ajout._handlers.get('sixel');
    for (let i = 0; i < ESSAIS_DU_DECODEUR && !sixels._dec; i += 1) await new Promise((suite) => setTimeout(suite, 5));
    return this.#ajout;
  }
}
