import { changer, valeurs } from '/reglages.js';

// Tout ce qui agirait comme une touche : Échap, qui fait sortir du collage encadré, et le reste. Un collage n’est que du
// texte, des tabulations et des lignes.
const COMMANDES = /[\0-\x08\x0b\x0c\x0e-\x1f\x7f-\x9f]/g;
const LONGUEUR_MONTREE = 4000;

const question = document.querySelector('.collage');
const apercu = question.querySelector('pre');
const { neplus } = question.querySelector('form').elements;

// Colle dans ce terminal, tel que le programme y attend un collage. S’il n’en attend pas, chaque ligne partirait comme
// validée par Entrée : on demande d’abord.
export async function coller(terminal, texte) {
  const propre = texte.replace(COMMANDES, '');
  // Le collage encadré n’est connu qu’une fois relu tout ce qui attend encore d’être écrit.
  await new Promise((suite) => terminal.write('', suite));
  const valide = /[\r\n]/.test(propre) && !terminal.modes.bracketedPasteMode && valeurs.collage;
  const choisi = valide ? await demander(propre) : propre;
  if (choisi) terminal.paste(choisi);
}

// Rend ce qu’il faut coller ; rien si l’on renonce.
async function demander(texte) {
  if (question.open) return '';
  apercu.textContent = texte.slice(0, LONGUEUR_MONTREE) + (texte.length > LONGUEUR_MONTREE ? '\n…' : '');
  neplus.checked = false;
  question.returnValue = '';
  question.showModal();
  await new Promise((suite) => question.addEventListener('close', suite, { once: true }));
  if (question.returnValue !== '' && neplus.checked) changer('collage', false);
  if (question.returnValue === 'ligne') return texte.trim().replace(/\s*[\r\n]+\s*/g, ' ');
  return question.returnValue === 'lignes' ? texte : '';
}
