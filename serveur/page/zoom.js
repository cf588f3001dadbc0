import { changer, valeurs } from '/reglages.js';

// En pixels. Un cran de molette en fait bien plus, un pavé tactile y vient par petits pas.
const PAS = 50;
const UNE_LIGNE = 20;

let chemin = 0;

// Ctrl+molette change la taille du texte, comme dans les autres terminaux, et non celle de la page, qui fausserait ses
// mesures. Avec Alt en plus, elle va au programme.
addEventListener('wheel', (evenement) => {
  const { ctrlKey, shiftKey, altKey, metaKey, deltaY, deltaMode } = evenement;
  if (!ctrlKey || shiftKey || altKey || metaKey) return;
  evenement.preventDefault();
  evenement.stopPropagation();
  const pixels = deltaMode === WheelEvent.DOM_DELTA_PIXEL ? deltaY : deltaY * UNE_LIGNE;
  chemin = pixels * chemin < 0 ? pixels : chemin + pixels;
  if (Math.abs(chemin) < PAS) return;
  changer('corps', valeurs.corps - Math.sign(chemin));
  chemin = 0;
}, { capture: true, passive: false });
