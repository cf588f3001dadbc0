import { envoyer } from '/liaison.js';
import { choisir, rendreLeFocus } from '/terminaux.js';

const SEUIL_DU_GLISSER = 6;

// La rangée d’onglets : ce qu’on y fait à la souris et au clavier.
const rangee = document.querySelector('.onglets');
const rangDe = (onglet) => [...rangee.children].indexOf(onglet);
const fermer = ({ dataset: { terminal: id } }) => envoyer({ type: 'fermer', id });

rangee.addEventListener('click', ({ target }) => {
  const onglet = target.closest('.onglet');
  if (target.closest('.fermer')) fermer(onglet);
  else if (target.closest('.choisir')) choisir(onglet.dataset.terminal);
});

rangee.addEventListener('dblclick', ({ target }) => target.matches('.choisir') && renommer(target));

rangee.addEventListener('keydown', (evenement) => {
  const { target, key, ctrlKey, shiftKey, altKey, metaKey } = evenement;
  if (!target.matches('.choisir') || altKey || metaKey) return;
  const onglet = target.closest('.onglet');
  const gestes = {
    ArrowLeft: () => viser(onglet.previousElementSibling ?? rangee.lastElementChild),
    ArrowRight: () => viser(onglet.nextElementSibling ?? rangee.firstElementChild),
    Home: () => viser(rangee.firstElementChild),
    End: () => viser(rangee.lastElementChild),
    F2: () => renommer(target),
    Delete: () => fermer(onglet),
    Escape: rendreLeFocus,
  };
  const deplacements = {
    ArrowLeft: () => deplacer(onglet, rangDe(onglet) - 1),
    ArrowRight: () => deplacer(onglet, rangDe(onglet) + 1),
  };
  const geste = ctrlKey && shiftKey ? deplacements[key] : !ctrlKey && gestes[key];
  if (!geste) return;
  evenement.preventDefault();
  geste();
});

// L’onglet suit la souris dans la rangée ; le serveur n’apprend que la place où elle le laisse.
rangee.addEventListener('pointerdown', ({ target, button, clientX: depart }) => {
  if (button !== 0 || !target.matches('.choisir')) return;
  const onglet = target.closest('.onglet');
  const ancien = rangDe(onglet);
  const ecoutes = new AbortController();
  const suivre = ({ clientX }) => {
    if (Math.abs(clientX - depart) > SEUIL_DU_GLISSER) onglet.classList.add('glisse');
    if (!onglet.classList.contains('glisse')) return;
    const autres = [...rangee.children].filter((autre) => autre !== onglet);
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

export function prendreLeFocusDesOnglets() {
  rangee.querySelector('.choisi .choisir')?.focus();
}

function viser(onglet) {
  onglet.querySelector('.choisir').focus();
  onglet.scrollIntoView({ block: 'nearest', inline: 'nearest' });
}

function deplacer({ dataset: { terminal: id } }, rang) {
  if (rang >= 0 && rang < rangee.children.length) envoyer({ type: 'deplacer', id, rang });
}

function milieu(onglet) {
  const { left, width } = onglet.getBoundingClientRect();
  return left + width / 2;
}

// Vide, le nom redevient celui que l’interpréteur donne ; inchangé, il ne doit pas s’y figer.
function renommer(bouton) {
  if (bouton.hidden) return;
  const champ = document.createElement('input');
  Object.assign(champ, { className: 'renommer', value: bouton.textContent, maxLength: 60, ariaLabel: 'Nom' });
  bouton.hidden = true;
  bouton.before(champ);
  champ.select();
  champ.focus();
  champ.addEventListener('blur', () => {
    const [id, nom] = [champ.parentElement.dataset.terminal, champ.value.trim()];
    champ.remove();
    bouton.hidden = false;
    if (nom !== bouton.textContent) envoyer({ type: 'renommer', id, nom });
  }, { once: true });
  champ.addEventListener('keydown', ({ key, isComposing }) => {
    if (isComposing || (key !== 'Enter' && key !== 'Escape')) return;
    if (key === 'Escape') champ.value = bouton.textContent;
    // Le focus perdu finit la saisie.
    rendreLeFocus();
  });
}
