import { envoyer } from '/liaison.js';
import { choisir, rendreLeFocus } from '/terminaux.js';

const SEUIL_DU_GLISSER = 6;

// La rangée d’onglets : ce qu’on y fait à la souris et au clavier.
const rangee = document.querySelector('.onglets');
const rangDe = (onglet) => [...rangee.children].indexOf(onglet);
const viser = (onglet) => onglet.querySelector('.choisir').focus();
export const fermer = ({ dataset: { terminal: id } }) => envoyer({ type: 'fermer', id });

export const prendreLeFocusDesOnglets = () => viser(rangee.querySelector('.choisi'));

const GESTES = {
  ArrowLeft: (onglet) => viser(onglet.previousElementSibling ?? rangee.lastElementChild),
  ArrowRight: (onglet) => viser(onglet.nextElementSibling ?? rangee.firstElementChild),
  Home: () => viser(rangee.firstElementChild),
  End: () => viser(rangee.lastElementChild),
  F2: renommer,
  Delete: fermer,
  Escape: rendreLeFocus,
  'Ctrl+Maj+ArrowLeft': (onglet) => deplacer(onglet, rangDe(onglet) - 1),
  'Ctrl+Maj+ArrowRight': (onglet) => deplacer(onglet, rangDe(onglet) + 1),
};

// Ce qui se passe sur un onglet, hors de sa croix et d’un nom en cours de saisie.
const ecouter = (nom, faire) => rangee.addEventListener(nom, (evenement) => {
  if (evenement.target.matches('.choisir')) faire(evenement.target.parentElement, evenement);
});

ecouter('click', (onglet) => choisir(onglet.dataset.terminal));
ecouter('dblclick', renommer);
ecouter('keydown', (onglet, evenement) => {
  const { key, ctrlKey, shiftKey, altKey, metaKey } = evenement;
  const geste = GESTES[ctrlKey ? `Ctrl+${shiftKey ? 'Maj+' : ''}${key}` : key];
  if (!geste || altKey || metaKey) return;
  evenement.preventDefault();
  geste(onglet);
});

// L’onglet suit la souris dans la rangée ; le serveur n’apprend que la place où elle le laisse.
ecouter('pointerdown', (onglet, { button, clientX: depart }) => {
  if (button !== 0) return;
  const ancien = rangDe(onglet);
  const ecoutes = new AbortController();
  const suivre = ({ clientX }) => {
    if (Math.abs(clientX - depart) > SEUIL_DU_GLISSER) onglet.classList.add('glisse');
    if (!onglet.classList.contains('glisse')) return;
    const autres = [...rangee.children].filter((autre) => autre !== onglet);
    const milieu = (autre) => autre.getBoundingClientRect().left + autre.offsetWidth / 2;
    const suivant = autres.find((autre) => clientX < milieu(autre)) ?? null;
    if (suivant !== onglet.nextElementSibling) rangee.insertBefore(onglet, suivant);
  };
  const finir = () => {
    ecoutes.abort();
    onglet.classList.remove('glisse');
    if (rangDe(onglet) !== ancien) deplacer(onglet, rangDe(onglet));
  };
  addEventListener('pointermove', suivre, { signal: ecoutes.signal });
  for (const nom of ['pointerup', 'pointercancel']) addEventListener(nom, finir, { signal: ecoutes.signal });
});

rangee.addEventListener('click', ({ target }) => target.closest('.fermer') && fermer(target.closest('.onglet')));

// La molette mène d’un bout à l’autre ; avec Ctrl, elle est à la taille du texte.
rangee.addEventListener('wheel', (evenement) => {
  if (evenement.ctrlKey || evenement.deltaX !== 0) return;
  evenement.preventDefault();
  rangee.scrollLeft += evenement.deltaY;
}, { passive: false });

// Trop longue, la rangée garde l’onglet choisi sous les yeux, et s’estompe du côté où il en reste.
function marquerLesBouts() {
  const reste = rangee.scrollWidth - rangee.clientWidth - rangee.scrollLeft;
  rangee.classList.toggle('avant', rangee.scrollLeft > 1);
  rangee.classList.toggle('apres', reste > 1);
}
rangee.addEventListener('scroll', marquerLesBouts);
addEventListener('choix', marquerLesBouts);
new ResizeObserver(() => {
  rangee.querySelector('.choisi')?.scrollIntoView({ block: 'nearest', inline: 'nearest' });
  marquerLesBouts();
}).observe(rangee);

function deplacer({ dataset: { terminal: id } }, rang) {
  if (rang >= 0 && rang < rangee.children.length) envoyer({ type: 'deplacer', id, rang });
}

// Vide, le nom redevient celui que l’interpréteur donne ; inchangé, il ne doit pas s’y figer.
export function renommer(onglet) {
  const bouton = onglet.querySelector('.choisir');
  const champ = document.createElement('input');
  // Le titre peut changer pendant la saisie : c’est avec ce que l’on a vu au départ que l’on compare.
  const ancien = bouton.textContent;
  Object.assign(champ, { className: 'renommer', value: ancien, maxLength: 60, ariaLabel: 'Nom' });
  bouton.hidden = true;
  bouton.before(champ);
  champ.select();
  champ.focus();
  const finir = ({ relatedTarget }) => {
    // Le menu de ce champ lui rendra le clavier.
    if (relatedTarget?.closest('.menu')) return;
    champ.removeEventListener('blur', finir);
    const [id, nom] = [onglet.dataset.terminal, champ.value.trim()];
    champ.remove();
    bouton.hidden = false;
    if (nom !== ancien.trim()) envoyer({ type: 'renommer', id, nom });
  };
  champ.addEventListener('blur', finir);
  champ.addEventListener('keydown', (evenement) => {
    const { key, isComposing } = evenement;
    if (isComposing || (key !== 'Enter' && key !== 'Escape')) return;
    // La suite de la frappe irait au terminal : Entrée y lancerait ce qui s’y trouve.
    evenement.preventDefault();
    if (key === 'Escape') champ.value = ancien;
    // Le focus perdu finit la saisie.
    rendreLeFocus();
  });
}
