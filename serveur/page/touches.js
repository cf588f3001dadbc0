// Ce que les terminaux de toujours envoient pour une touche, là où xterm envoie autre chose, ou rien.

const ECHAP = '\x1b';
// Ctrl et une lettre, ou un signe voisin des lettres, en donnent le rang ; ces signes-là ont leur commande à eux.
const COMMANDES = { ' ': '\0', 2: '\0', 3: ECHAP, 4: '\x1c', 5: '\x1d', 6: '\x1e', 7: '\x1f', 8: '\x7f', '-': '\x1f', '/': '\x1f', '?': '\x7f' };
const NUMEROS = { Insert: 2, PageUp: 5, PageDown: 6 };
// Avec Maj. Un programme qui tient tout l’écran n’a rien à faire défiler : il reçoit alors la touche.
const DEFILEMENTS = {
  Home: (terminal) => terminal.scrollToTop(),
  End: (terminal) => terminal.scrollToBottom(),
  PageUp: (terminal) => terminal.scrollPages(-1),
  PageDown: (terminal) => terminal.scrollPages(1),
};
// Quand un lecteur d’écran lit la frappe, xterm laisse aussi chaque touche au navigateur : celles-ci y feraient autre chose.
// Par leur place, WebKit ne nommant pas Maj+Tab, et si elles n’écrivent rien : une disposition peut y mettre une lettre.
const DU_NAVIGATEUR = /^(Tab|F\d+)$/;

export function prendreLesTouches(terminal) {
  terminal.attachCustomKeyEventHandler((evenement) => {
    // Celle qui a refermé une fenêtre de question : WebKit finit de la dire là où le clavier est revenu.
    if (evenement.type === 'keypress' && evenement.key === 'Escape') return false;
    if (evenement.type !== 'keydown' || evenement.metaKey) return true;
    if (DU_NAVIGATEUR.test(evenement.code) && !estUnSigne(evenement.key)) evenement.preventDefault();
    const texte = texteDe(evenement);
    const defiler = trouverLeDefilement(terminal, evenement);
    if (texte === undefined && !defiler) return true;
    evenement.preventDefault();
    if (defiler) defiler(terminal);
    else terminal.input(texte);
    return false;
  });
}

function trouverLeDefilement(terminal, { key, shiftKey }) {
  return shiftKey && terminal.buffer.active.type === 'normal' ? DEFILEMENTS[key] : undefined;
}

function estUnSigne(key) {
  return [...key].length === 1;
}

// Rien, si xterm s’en tire bien.
function texteDe({ key, code, shiftKey, altKey, ctrlKey }) {
  if (key in NUMEROS) return texteDUneTouche(key, { shiftKey, altKey, ctrlKey });
  if (key === 'Tab' && altKey && !shiftKey) return `${ECHAP}\t`;
  if ((!ctrlKey && !altKey) || !estUnSigne(key)) return undefined;
  const signe = ctrlKey ? commandeDe(key, code) : key;
  return altKey ? ECHAP + signe : signe;
}

function texteDUneTouche(key, { shiftKey, altKey, ctrlKey }) {
  const rang = 1 + shiftKey + 2 * altKey + 4 * ctrlKey;
  // Avec Inser, Ctrl et Maj copient et collent.
  if (rang === 1 || (key === 'Insert' && (ctrlKey || shiftKey))) return undefined;
  return `${ECHAP}[${NUMEROS[key]};${rang}~`;
}

function commandeDe(key, code) {
  const signe = enLatin(key, code);
  return COMMANDES[signe] ?? (/[@-\x7f]/.test(signe) ? String.fromCharCode(signe.charCodeAt(0) & 0x1f) : signe);
}

// Sur un clavier d’une autre écriture, Ctrl va avec la lettre latine de la même touche.
function enLatin(key, code) {
  return /\p{L}/u.test(key) && !/\p{Script=Latin}/u.test(key) && code.startsWith('Key') ? code.at(-1) : key;
}
