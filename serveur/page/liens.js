import { WebLinksAddon } from '/xterm/addon-web-links.mjs';
import { essayer } from '/essayer.js';

const PROTOCOLES_OUVERTS = ['http:', 'https:', 'mailto:'];
// Ni « git@hote.test:depot », ni « hote.test/~moi@ici.test/page » : ce sont des chemins.
const COURRIEL = /(^|[^\w.+/:-])([\w.+-]+@[\w-]+(?:\.[\w-]+)+)(?![\w/-]|:\S)/g;

const indication = document.querySelector('.lien');
let survole = null;

// Ce qui est sous la souris : son texte, et de quoi l’ouvrir ; ou rien.
export const lienSurvole = () => survole;

export function survoler(lien) {
  survole = lien;
  indication.textContent = lien ? `Ctrl+clic pour ouvrir ${lien.texte}` : '';
}

const survol = { hover: (_, adresse) => survoler(lire(adresse)), leave: () => survoler(null) };

// Les liens que des programmes déclarent eux-mêmes.
export const liensDeclares = { activate: ouvrir, allowNonHttpProtocols: true, ...survol };

// Les adresses écrites en clair.
export function chercherLesLiens(terminal) {
  terminal.loadAddon(new WebLinksAddon(ouvrir, survol));
  terminal.registerLinkProvider({ provideLinks: (y, rendre) => rendre(trouverLesCourriels(terminal, y)) });
}

// L’ajout ne prend que des adresses avec « :// ». Une lettre par case : le rang y est alors la colonne.
function trouverLesCourriels(terminal, y) {
  const ligne = terminal.buffer.active.getLine(y - 1);
  const cases = Array.from({ length: ligne?.length ?? 0 }, (_, x) => ligne.getCell(x).getChars());
  const texte = cases.map((signe) => (signe.length === 1 ? signe : ' ')).join('');
  return [...texte.matchAll(COURRIEL)].map(({ 1: avant, 2: adresse, index }) => ({
    range: { start: { x: index + avant.length + 1, y }, end: { x: index + avant.length + adresse.length, y } },
    text: `mailto:${adresse}`,
    activate: ouvrir,
    ...survol,
  }));
}

// L’adresse vient d’un programme, et son texte peut en cacher une autre : la vraie se montre au survol, et un simple
// clic, fait pour prendre le focus ou sélectionner, n’ouvre rien.
function ouvrir({ ctrlKey, metaKey }, adresse) {
  if (ctrlKey || metaKey) lire(adresse)?.ouvrir();
}

function lire(adresse) {
  const { protocol, href } = essayer(() => new URL(adresse), {});
  return PROTOCOLES_OUVERTS.includes(protocol) ? { texte: href, ouvrir: () => open(href, '_blank', 'noopener') } : null;
}
