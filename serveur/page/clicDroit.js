import { aviser } from '/avis.js';
import { suivreLAppuiLong } from '/doigt.js';
import { envoyer } from '/liaison.js';
import { lienSurvole } from '/liens.js';
import { menuOuvert, ouvrirUnMenu } from '/menu.js';
import { fermer, renommer } from '/rangee.js';
import { choisie, choisir, rendreLeFocus, vues } from '/terminaux.js';

// Les menus du bouton droit, du doigt posé longtemps, de la touche Menu et de Maj+F10, que l’interpréteur ne reçoit donc
// pas. `gestes` : ceux de la page, sous la lettre de leur raccourci.
export function poserLesMenus(gestes) {
  const ouvrir = (cible, point) => {
    const sous = lire(cible);
    if (!sous) return;
    // Le bouton droit donne le clavier à l’onglet, qui n’en a que faire.
    const rendre = point && cible.closest('.onglet') && !cible.closest('input') ? rendreLeFocus : undefined;
    ouvrirUnMenu({ ...sous.menu(gestes), ...(point ?? sous.place()), rendre });
  };

  addEventListener('contextmenu', (evenement) => {
    const { target, clientX: x, clientY: y, ctrlKey, shiftKey } = evenement;
    // Le terminal y déplacerait sa zone de saisie, pour un menu qui n’est pas le sien.
    evenement.stopPropagation();
    // Celui du moteur, où est l’inspecteur de la page.
    if (ctrlKey && shiftKey) return;
    evenement.preventDefault();
    if (!menuOuvert() && !estAuProgramme(target, shiftKey)) ouvrir(target, { x, y });
  }, true);

  suivreLAppuiLong((cible, point) => !menuOuvert() && ouvrir(cible, point));

  addEventListener('keydown', (evenement) => {
    const { key, ctrlKey, altKey, metaKey, shiftKey } = evenement;
    if (ctrlKey || altKey || metaKey || !(key === 'ContextMenu' || (shiftKey && key === 'F10'))) return;
    evenement.preventDefault();
    evenement.stopPropagation();
    if (!menuOuvert()) ouvrir(document.activeElement);
  }, true);
}

// Un programme qui a pris la souris reçoit ce clic ; avec Maj, il est à nous.
function estAuProgramme(cible, shiftKey) {
  const vue = vues.get(cible.closest('.xterm')?.closest('.panneau').dataset.terminal);
  return vue !== undefined && !shiftKey && vue.terminal.modes.mouseTrackingMode !== 'none';
}

function lire(cible) {
  const [onglet, panneau, champ] = ['.onglet', '.panneau', 'input:not([type=checkbox])'].map((nom) => cible.closest(nom));
  if (champ) return { menu: () => duChamp(champ), place: () => coinDe(champ) };
  if (onglet) return { menu: (gestes) => delOnglet(onglet, gestes), place: () => coinDe(onglet) };
  const vue = vues.get(panneau?.dataset.terminal);
  if (vue) return { menu: (gestes) => duTerminal(vue, gestes), place: () => sousLeCurseur(vue.terminal) };
  return String(getSelection()) ? { menu: duTexte, place: () => coinDe(cible) } : null;
}

function duTerminal(vue, gestes) {
  if (vue !== choisie()) choisir(vue.id);
  const { terminal } = vue;
  const lien = lienSurvole();
  return {
    nom: 'Terminal',
    articles: [
      { titre: 'Copier', touches: 'Ctrl+Maj+C', actif: terminal.hasSelection(), faire: gestes.c },
      { titre: 'Coller', touches: 'Ctrl+Maj+V', actif: vue.ouvert, faire: () => lireLePressePapiers((texte) => vue.coller(texte)) },
      { titre: 'Tout sélectionner', touches: 'Ctrl+Maj+A', faire: () => vue.toutSelectionner() },
      null,
      { titre: 'Chercher', touches: 'Ctrl+Maj+F', faire: gestes.f },
      { titre: 'Ouvrir le lien', note: lien?.texte ?? '', actif: lien !== null, faire: () => lien.ouvrir() },
      // Un programme plein écran y perdrait son dessin.
      { titre: 'Effacer', actif: terminal.buffer.active.type === 'normal', faire: () => envoyer({ type: 'effacer', id: vue.id }) },
      null,
      { titre: 'Nouveau terminal', touches: 'Ctrl+Maj+T', faire: gestes.t },
      { titre: 'Diviser', touches: 'Ctrl+Maj+D', faire: gestes.d },
      { titre: 'Diviser de haut en bas', touches: 'Ctrl+Maj+E', faire: gestes.e },
    ],
  };
}

function delOnglet(onglet, gestes) {
  return {
    nom: 'Onglet',
    articles: [
      { titre: 'Renommer', touches: 'F2', faire: () => renommer(onglet) },
      { titre: 'Fermer', touches: 'Suppr', faire: () => fermer(onglet) },
      null,
      { titre: 'Nouveau terminal', touches: 'Ctrl+Maj+T', faire: gestes.t },
    ],
  };
}

function duChamp(champ) {
  const choisi = champ.selectionStart !== champ.selectionEnd;
  const editer = (commande, texte) => document.execCommand(commande, false, texte);
  return {
    nom: 'Texte',
    articles: [
      { titre: 'Couper', actif: choisi, faire: () => editer('cut') },
      { titre: 'Copier', actif: choisi, faire: () => editer('copy') },
      { titre: 'Coller', faire: () => lireLePressePapiers((texte) => editer('insertText', texte)) },
      { titre: 'Tout sélectionner', faire: () => champ.select() },
    ],
  };
}

function duTexte() {
  return { nom: 'Texte', articles: [{ titre: 'Copier', faire: () => document.execCommand('copy') }] };
}

async function lireLePressePapiers(prendre) {
  try {
    prendre(await navigator.clipboard.readText());
  } catch {
    aviser({ texte: 'Ce navigateur ne laisse pas lire le presse-papiers d’ici : collez avec Ctrl+Maj+V.' });
  }
}

function coinDe(element) {
  const { left: x, bottom: y } = element.getBoundingClientRect();
  return { x, y };
}

function sousLeCurseur({ element, buffer, cols, rows }) {
  const { left, top, width, height } = element.querySelector('.xterm-screen').getBoundingClientRect();
  const { cursorX, cursorY } = buffer.active;
  return { x: left + (width * cursorX) / cols, y: top + (height * (cursorY + 1)) / rows };
}
