// Les lignes d’un tampon telles qu’un programme les a écrites : celles que la largeur a repliées n’en font qu’une.
export const lireLesLignes = (tampon) => reperer(tampon).map(({ texte }) => texte);

// Avec leur place : `rang` est le premier des rangs d’une ligne, et `debuts` dit où chacun commence dans son texte.
export function reperer(tampon) {
  const lignes = [];
  for (let rang = 0; rang < tampon.length; rang += 1) {
    const texte = lireUnRang(tampon, rang);
    if (tampon.getLine(rang).isWrapped && lignes.length > 0) {
      lignes.at(-1).debuts.push(lignes.at(-1).texte.length);
      lignes.at(-1).texte += texte;
    } else lignes.push({ rang, debuts: [0], texte });
  }
  return lignes;
}

function lireUnRang(tampon, rang) {
  const [ligne, suivante] = [tampon.getLine(rang), tampon.getLine(rang + 1)];
  const texte = ligne.translateToString(!suivante?.isWrapped);
  // Une lettre large qui ne tenait pas au bout du rang y laisse une case vide, qui n’est pas du texte.
  const derniere = ligne.getCell(ligne.length - 1);
  const vide = suivante?.isWrapped && derniere.getChars() === '' && derniere.getWidth() === 1 && suivante.getCell(0).getWidth() === 2;
  return vide ? texte.slice(0, -1) : texte;
}

// Les cases que prend un morceau du texte d’une ligne, rang par rang.
export function placer(tampon, { rang, debuts }, debut, longueur) {
  return debuts.flatMap((premier, pli) => {
    const ligne = tampon.getLine(rang + pli);
    const bornes = [Math.max(debut, premier), Math.min(debut + longueur, debuts[pli + 1] ?? Infinity)];
    if (!ligne || bornes[0] >= bornes[1]) return [];
    const [colonne, fin] = bornes.map((borne) => trouverLaColonne(ligne, borne - premier));
    return [{ rang: rang + pli, colonne, largeur: fin - colonne }];
  });
}

function trouverLaColonne(ligne, signes) {
  let colonne = 0;
  for (let reste = signes; reste > 0 && colonne < ligne.length;) {
    const signe = ligne.getCell(colonne);
    reste -= signe.getChars().length || 1;
    colonne += signe.getWidth() || 1;
  }
  return colonne;
}
