import { essayer } from '/essayer.js';
import { compiler } from '/motif.js';
import { choisie, rendreLeFocus } from '/terminaux.js';
import { Trouvailles } from '/trouvailles.js';

const CLE = 'keltrove-recherche';

// La barre où l’on cherche dans le terminal choisi.
const barre = document.querySelector('.recherche');
const champ = barre.querySelector('input');
const compte = barre.querySelector('output');
const bascules = [...barre.querySelectorAll('[aria-pressed]')];
const enFrancais = (nombre) => nombre.toLocaleString('fr');
let vue = null;
let motif = null;
let trouvailles = null;

// Avec un texte, c’est lui que l’on cherche.
export function ouvrirLaRecherche(texte = champ.value) {
  barre.hidden = false;
  champ.value = texte;
  suivre(choisie());
  champ.focus();
  champ.select();
}

function fermer() {
  barre.hidden = true;
  suivre(null);
  rendreLeFocus();
}

// Le terminal choisi a changé : on cherche désormais dans celui-là.
function suivre(neuve) {
  trouvailles?.oublier();
  vue = neuve;
  trouvailles = vue && new Trouvailles(vue.terminal, compter);
  if (vue) chercher();
}

function chercher() {
  const options = Object.fromEntries(bascules.map(({ name, ariaPressed }) => [name, ariaPressed === 'true']));
  motif = champ.value === '' ? null : compiler(champ.value, options);
  trouvailles.chercher(motif);
}

function compter({ choisie: rang, nombre, tropLong }) {
  if (!motif) compte.value = champ.value === '' ? '' : 'Expression incomplète';
  else if (tropLong) compte.value = 'Trop long à chercher';
  else compte.value = nombre === 0 ? 'Aucun résultat' : `${enFrancais(rang + 1)} sur ${enFrancais(nombre)}`;
}

function basculer(bouton) {
  bouton.ariaPressed = bouton.ariaPressed === 'true' ? 'false' : 'true';
  localStorage.setItem(CLE, JSON.stringify(bascules.filter(({ ariaPressed }) => ariaPressed === 'true').map(({ name }) => name)));
  chercher();
}

const gardees = essayer(() => JSON.parse(localStorage.getItem(CLE)), []);
for (const bouton of bascules) {
  bouton.ariaPressed = String(Array.isArray(gardees) && gardees.includes(bouton.name));
  bouton.addEventListener('click', () => basculer(bouton));
}
champ.addEventListener('input', chercher);
barre.querySelector('.haut').addEventListener('click', () => trouvailles.avancer(-1));
barre.querySelector('.bas').addEventListener('click', () => trouvailles.avancer(1));
barre.querySelector('.fermer').addEventListener('click', fermer);
barre.addEventListener('keydown', (evenement) => {
  const { key, shiftKey, target, isComposing } = evenement;
  if (isComposing) return;
  if (key === 'Enter' && target === champ) trouvailles.avancer(shiftKey ? 1 : -1);
  if (key !== 'Escape') return;
  // La suite de la frappe irait au terminal, qui reprend le focus.
  evenement.preventDefault();
  fermer();
});
addEventListener('choix', () => !barre.hidden && vue !== choisie() && suivre(choisie()));
