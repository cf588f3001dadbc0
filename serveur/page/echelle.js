const trait = document.createElement('i');
Object.assign(trait.style, { position: 'absolute', visibility: 'hidden', borderTop: '0.01px solid' });
document.body.append(trait);

// Combien de points de l’écran fait un pixel de la page. Quand le bureau demande un texte plus grand, ou plus petit,
// WebKitGTK n’y compte pas toujours cet agrandissement : ni dans l’échelle qu’il annonce avant sa version 2.54, ni, depuis,
// dans son trait le plus fin, qui a un point.
export function lireLEchelle() {
  const parLeTrait = Math.round(1e4 / parseFloat(getComputedStyle(trait).borderTopWidth)) / 1e4;
  return (innerWidth > outerWidth ? Math.min : Math.max)(devicePixelRatio, parLeTrait);
}
