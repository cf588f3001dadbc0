// Les lignes d’un tampon telles qu’un programme les a écrites : celles que la largeur a repliées n’en font qu’une.
export const lireLesLignes = (tampon) => reperer(tampon).map(({ texte }) => texte);

// Avec leur place.
export function reperer(tampon) {
  const lignes = [];
  for (let rang = 0; rang < tampon.length; rang += lignes.at(-1).debuts.length) lignes.push(repererUneLigne(tampon, rang));
  return lignes;
}

// `rang` est le premier des rangs d’une ligne, et `debuts` dit où chacun commence dans son texte.
function repererUneLigne(tampon, rang, plisMaximum = Infinity) {
  const [textes, debuts] = [[lireUnRang(tampon, rang)], [0]];
  while (estLaSuite(tampon, rang + textes.length) && textes.length < plisMaximum) {
    debuts.push(debuts.at(-1) + textes.at(-1).length);
    textes.push(lireUnRang(tampon, rang + textes.length));
  }
  return { rang, debuts, texte: textes.join('') };
}

// La ligne qui passe à ce rang ; d’une ligne sans fin, ce qui l’entoure.
export function repererLaLigne(tampon, rang, plis = 8) {
  let debut = rang;
  while (debut > 0 && debut > rang - plis && estLaSuite(tampon, debut)) debut -= 1;
  return repererUneLigne(tampon, debut, 2 * plis);
}

// Passé la dernière ligne, un tampon plein rend les premières.
const estLaSuite = (tampon, rang) => rang < tampon.length && tampon.getLine(rang).isWrapped;

function lireUnRang(tampon, rang) {
  const ligne = tampon.getLine(rang);
  if (!estLaSuite(tampon, rang + 1)) return ligne.translateToString(true);
  // Une lettre large qui ne tenait pas au bout du rang y laisse une case vide, qui n’est pas du texte.
  const derniere = ligne.getCell(ligne.length - 1);
  const vide = derniere.getChars() === '' && derniere.getWidth() === 1 && tampon.getLine(rang + 1).getCell(0).getWidth() === 2;
  return ligne.translateToString().slice(0, vide ? -1 : undefined);
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
