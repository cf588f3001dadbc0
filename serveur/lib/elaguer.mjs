// Tout ce qui n’est ni du texte, ni un passage à la ligne, ni une couleur : ce qu’un terminal fait d’autre pourrait se voir,
// s’entendre ou demander une réponse. Une couleur peut être coupée par la fin.
const COMMANDE = /[\x00-\x07\x0b\x0c\x0e-\x1a\x1c-\x1f\x7f-\x9f]|\x1b(?!\[[\d;:]*[mK]|(?:\[[\d;:]*)?$)/;
const COULEUR = /\x1b\[[\d;:]*m/g;
const REMISES_A_ZERO = ['\x1b[m', '\x1b[0m', '\x1b[0;'];

export const estSimple = (texte) => !COMMANDE.test(texte);

// Ce texte sans les lignes que tant d’autres, plus neuves, auront chassées avant qu’on les voie : un terminal qui lit l’un
// ou l’autre finit au même point. Il ne doit pas commencer au milieu d’une séquence.
export function elaguer(texte, lignes) {
  const commande = texte.search(COMMANDE);
  let coupe = commande < 0 ? texte.length : commande;
  for (let i = 0; i <= lignes && coupe > 0; i += 1) coupe = texte.lastIndexOf('\n', coupe - 1);
  // Sans retour chariot, la ligne qui suit commencerait on ne sait où.
  if (coupe <= 0 || texte[coupe - 1] !== '\r') return texte;
  return lireLesCouleurs(texte.slice(0, coupe)) + texte.slice(coupe + 1);
}

// Celles que ce texte laisse en vigueur. Une couleur répétée ne compte que la dernière fois.
function lireLesCouleurs(texte) {
  const debut = Math.max(0, ...REMISES_A_ZERO.map((remise) => texte.lastIndexOf(remise)));
  const vues = new Set();
  for (const [couleur] of texte.slice(debut).matchAll(COULEUR)) {
    vues.delete(couleur);
    vues.add(couleur);
  }
  return [...vues].join('');
}
