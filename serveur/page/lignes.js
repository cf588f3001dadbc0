// Les lignes d’un tampon telles qu’un programme les a écrites : celles que la largeur a repliées n’en font qu’une.
export function lireLesLignes(tampon) {
  const lues = [];
  for (let rang = 0; rang < tampon.length; rang += 1) {
    const ligne = tampon.getLine(rang);
    const texte = ligne.translateToString(!tampon.getLine(rang + 1)?.isWrapped);
    lues.push(ligne.isWrapped ? (lues.pop() ?? '') + texte : texte);
  }
  return lues;
}
