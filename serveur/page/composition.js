// Une touche que la méthode de saisie a prise pour elle : la norme lui donne ce numéro.
const TOUCHE_PRISE = 229;

// Les touches mortes, la touche Compose, un caractère donné par son numéro, une méthode de saisie : le texte s’y forme en
// plusieurs touches. Le terminal s’y perd, et renverrait ce qu’il avait déjà envoyé : il n’en voit rien. Chaque texte
// formé va une fois à `saisir`, et la zone de saisie ne garde rien.
export function composer(panneau, terminal, saisir) {
  const apercu = panneau.querySelector('.composition');
  const ecouter = (nom, quand) => panneau.addEventListener(nom, quand, true);
  const enFormation = ({ isComposing, keyCode }) => isComposing || keyCode === TOUCHE_PRISE;
  const montrer = (texte) => {
    apercu.textContent = texte;
    if (texte !== '') placer(apercu, terminal);
  };

  for (const nom of ['keydown', 'keypress', 'keyup']) ecouter(nom, (evenement) => enFormation(evenement) && evenement.stopPropagation());
  for (const nom of ['compositionstart', 'compositionupdate']) {
    ecouter(nom, (evenement) => {
      evenement.stopPropagation();
      montrer(evenement.data);
    });
  }
  // WebKit finit deux fois : sans texte, pour effacer ce qu’il montrait, puis avec le texte formé, parfois sans avoir
  // rien commencé.
  ecouter('compositionend', (evenement) => {
    evenement.stopPropagation();
    montrer('');
    evenement.target.value = '';
    if (evenement.data !== '') saisir(evenement.data);
  });
  ecouter('input', (evenement) => /Composition/.test(evenement.inputType) && evenement.stopPropagation());
}

// Là où le texte viendra s’écrire.
function placer(apercu, terminal) {
  const { cursorX, cursorY } = terminal.buffer.active;
  const { fontFamily, fontSize } = terminal.options;
  const { width, height } = terminal._core._renderService.dimensions.css.cell;
  const ecran = terminal.element.querySelector('.xterm-screen').getBoundingClientRect();
  const bord = apercu.parentElement.getBoundingClientRect();
  Object.assign(apercu.style, {
    left: `${ecran.left - bord.left + cursorX * width}px`,
    top: `${ecran.top - bord.top + cursorY * height}px`,
    font: `${fontSize}px/${height}px ${fontFamily}`,
  });
}
