import { valeurs } from '/reglages.js';

const REGIONS = 'output, [role=status], [role=alert], [aria-live=polite], [aria-live=assertive]';

// WebKit montre au lecteur d’écran les textes de la page, mais ne lui dit pas que l’un d’eux vient de changer : c’est
// l’application qui le lui dit, quand elle le peut.
const pont = window.webkit?.messageHandlers?.keltroveLecteur;
const annonce = document.querySelector('.annonce');
const dits = new WeakMap();

// Se dit, et ne se montre pas.
export function annoncer(texte) {
  annonce.textContent = texte;
}

function suivre(changements) {
  if (!valeurs.lecteur) return;
  const regions = changements.map(({ target }) => (target.closest ? target : target.parentElement)?.closest(REGIONS));
  for (const region of new Set(regions)) if (region?.checkVisibility()) dire(region);
}

function dire(region) {
  const texte = region.textContent.trim();
  const deja = region.matches('.live-region') ? dits.get(region) ?? '' : '';
  dits.set(region, texte);
  // La région d’un terminal s’allonge de ce qui s’affiche, puis se vide.
  const neuf = texte.startsWith(deja) ? texte.slice(deja.length).trim() : texte;
  if (neuf !== '') pont.postMessage(neuf);
}

if (pont) new MutationObserver(suivre).observe(document.body, { childList: true, characterData: true, subtree: true, attributeFilter: ['hidden'] });
