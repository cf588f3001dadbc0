// De quoi lire un avis, même long.
const DUREE_D_UN_AVIS = 4000;
const DUREE_D_UN_SIGNE = 70;

const avis = document.querySelector('.avis');

// Ce que la page a à dire une fois.
export function aviser({ texte }) {
  avis.textContent = texte;
  setTimeout(() => {
    if (avis.textContent === texte) avis.textContent = '';
  }, DUREE_D_UN_AVIS + texte.length * DUREE_D_UN_SIGNE);
}
