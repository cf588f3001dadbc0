import { renouerMaintenant } from '/liaison.js';

// La liaison est coupée : le dire, avec le temps qu’il reste avant le prochain essai, et de quoi ne pas l’attendre.
const annonce = document.querySelector('.coupure');
const compte = annonce.querySelector('.compte');
let minuteur = null;

export function direLaCoupure({ attente, essais }) {
  // Le premier essai suffit le plus souvent ; sinon l’application montre peut-être déjà, par-dessus, ce qui ne va pas.
  if (essais === 0) return;
  const echeance = performance.now() + attente;
  const compter = () => {
    const reste = Math.ceil((echeance - performance.now()) / 1000);
    compte.textContent = reste > 0 ? `Nouvel essai dans ${reste} s…` : 'Nouvel essai…';
  };
  clearInterval(minuteur);
  minuteur = setInterval(compter, 250);
  compter();
  annonce.hidden = false;
  annonce.querySelector('p').textContent = 'Connexion au serveur perdue.';
}

export function direLaReprise() {
  clearInterval(minuteur);
  annonce.hidden = true;
  annonce.querySelector('p').textContent = '';
}

annonce.querySelector('button').addEventListener('click', renouerMaintenant);
// Au clavier, le bouton serait hors d’atteinte : Entrée en tient lieu.
addEventListener('keydown', ({ key }) => {
  if (key === 'Enter' && !annonce.hidden && !document.querySelector('dialog[open]')) renouerMaintenant();
}, true);
