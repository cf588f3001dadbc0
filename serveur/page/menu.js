// Un menu de la page : des articles, une place, et le clavier tant qu’il est ouvert.
const fond = document.querySelector('.fond-de-menu');
const menu = fond.querySelector('.menu');
let rendreLeClavier = null;

// Un article : `titre`, `faire`, et s’il y a lieu `touches`, `note` et `actif`. Un article nul sépare. Fermé, le menu rend
// le clavier à qui l’avait, ou comme le dit `rendre` ; ce que fait l’article vient après.
export function ouvrirUnMenu({ nom, x, y, articles, rendre }) {
  const avant = document.activeElement;
  rendreLeClavier = rendre ?? (() => avant.focus({ preventScroll: true }));
  menu.ariaLabel = nom;
  menu.replaceChildren(...articles.map((article) => (article ? creer(article) : creerUnFilet())));
  // Sous une boîte de la page, rien d’autre qu’elle ne reçoit le clavier.
  (document.querySelector('dialog[open]') ?? document.body).append(fond);
  fond.hidden = false;
  const { offsetWidth, offsetHeight } = menu;
  menu.style.left = `${Math.max(0, Math.min(x, innerWidth - offsetWidth))}px`;
  menu.style.top = `${Math.max(0, y + offsetHeight > innerHeight ? y - offsetHeight : y)}px`;
  menu.focus();
}

export const menuOuvert = () => !fond.hidden;

function creer({ titre, faire, touches = '', note = '', actif = true }) {
  const bouton = document.createElement('button');
  const [texte, droite] = [document.createElement('span'), document.createElement('small')];
  texte.textContent = titre;
  droite.textContent = touches || note;
  bouton.append(texte, droite);
  Object.assign(bouton, { type: 'button', role: 'menuitem', tabIndex: -1, disabled: !actif, ariaLabel: titre, title: note });
  if (touches) bouton.ariaKeyShortcuts = touches.replace('Ctrl', 'Control').replace('Maj', 'Shift');
  bouton.addEventListener('click', () => {
    fermer();
    faire();
  });
  return bouton;
}

function creerUnFilet() {
  return Object.assign(document.createElement('hr'), { role: 'separator' });
}

function fermer() {
  fond.hidden = true;
  rendreLeClavier();
}

function avancer(pas) {
  const boutons = [...menu.querySelectorAll('button:enabled')];
  const ici = boutons.indexOf(document.activeElement);
  boutons[ici < 0 && pas < 0 ? boutons.length - 1 : (ici + pas + boutons.length) % boutons.length]?.focus();
}

const GESTES = {
  ArrowDown: () => avancer(1),
  ArrowUp: () => avancer(-1),
  Home: () => menu.querySelector('button:enabled')?.focus(),
  End: () => [...menu.querySelectorAll('button:enabled')].at(-1)?.focus(),
  Escape: fermer,
  Tab: fermer,
};

menu.addEventListener('keydown', (evenement) => {
  const { key } = evenement;
  evenement.stopPropagation();
  // Entrée et la barre d’espace pressent l’article choisi.
  if (key === 'Enter' || key === ' ') return;
  evenement.preventDefault();
  GESTES[key]?.();
});
menu.addEventListener('pointermove', ({ target }) => target.closest('button:enabled')?.focus());
// Un clic à côté ne fait que refermer.
fond.addEventListener('pointerdown', ({ target }) => target === fond && fermer());
fond.addEventListener('mousedown', (evenement) => evenement.preventDefault());
// Le clavier est parti ailleurs : il n’est plus à rendre.
menu.addEventListener('focusout', ({ relatedTarget }) => {
  if (relatedTarget && !menu.contains(relatedTarget)) fond.hidden = true;
});
addEventListener('blur', ({ target }) => target === window && menuOuvert() && fermer());
addEventListener('resize', () => menuOuvert() && fermer());
