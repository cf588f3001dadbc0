// Ce que l’on cherche, sous forme d’expression régulière ; et où elle se trouve dans des lignes.

// D’abord comme il convient à toutes les écritures ; à défaut, à l’ancienne, où « \- » et « { » seuls sont permis.
const MANIERES = [['gu', '[\\p{L}\\p{M}\\p{N}_]'], ['g', '\\w']];

// Rien quand l’expression ne se comprend pas : elle n’est pas encore finie d’écrire.
export function compiler(texte, { casse, mot, expression }) {
  const source = expression ? texte : texte.replace(/[\\^$.*+?()[\]{}|/]/g, '\\$&');
  for (const [drapeaux, lettre] of MANIERES) {
    try {
      // Compilée seule d’abord : « a)|(b » se refermerait dans ce qui l’entoure.
      new RegExp(source, drapeaux);
      return new RegExp(mot ? `(?<!${lettre})(?:${source})(?!${lettre})` : source, drapeaux + (casse ? '' : 'i'));
    } catch {
      continue;
    }
  }
  return null;
}

// À la suite, pour chaque trouvaille : le rang de sa ligne, son début et sa longueur.
export function trouver(lignes, motif) {
  const trouves = [];
  for (const [rang, ligne] of lignes.entries()) {
    for (const { 0: vu, index } of ligne.matchAll(motif)) if (vu !== '') trouves.push(rang, index, vu.length);
  }
  return Int32Array.from(trouves);
}
