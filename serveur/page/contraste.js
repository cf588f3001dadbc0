const ROUGE = 0.2126;
const VERT = 0.7152;
const BLEU = 0.0722;
// De quoi retenir toutes les paires d’un écran, même celui d’une image.
const PAIRES_RETENUES = 20_000;

// Les couleurs sont des nombres : 0xrrvvbb.
const retenues = new Map();

const lineaire = Float64Array.from({ length: 256 }, (_, octet) => {
  const part = octet / 255;
  return part <= 0.03928 ? part / 12.92 : ((part + 0.055) / 1.055) ** 2.4;
});

function clarte(couleur) {
  return ROUGE * lineaire[couleur >> 16] + VERT * lineaire[(couleur >> 8) & 255] + BLEU * lineaire[couleur & 255];
}

// Le rapport de contraste que définissent les règles d’accessibilité du web : de 1 à 21.
export function contraste(une, autre) {
  const [claire, sombre] = [clarte(une), clarte(autre)].sort((a, b) => b - a);
  return (claire + 0.05) / (sombre + 0.05);
}

export function melanger(une, autre, part) {
  const canal = (decalage) => {
    const [de, a] = [(une >> decalage) & 255, (autre >> decalage) & 255];
    return Math.round(de + (a - de) * part) << decalage;
  };
  return canal(16) | canal(8) | canal(0);
}

// L’encre telle quelle si elle se lit déjà sur ce fond, sinon éclaircie ou assombrie de juste ce qu’il faut.
export function rendreLisible(encre, fond, rapport) {
  if (rapport <= 1) return encre;
  const cle = (encre * 0x1000000 + fond) * 32 + rapport;
  const retenue = retenues.get(cle);
  if (retenue !== undefined) return retenue;
  if (retenues.size >= PAIRES_RETENUES) retenues.clear();
  const lisible = contraste(encre, fond) >= rapport ? encre : eloigner(encre, fond, rapport);
  retenues.set(cle, lisible);
  return lisible;
}

// Du côté où elle est déjà, si l’on peut y aller assez loin.
function eloigner(encre, fond, rapport) {
  const bouts = clarte(encre) > clarte(fond) ? [0xffffff, 0] : [0, 0xffffff];
  const bout = bouts.find((couleur) => contraste(couleur, fond) >= rapport) ?? bouts.sort((a, b) => contraste(b, fond) - contraste(a, fond))[0];
  let [pres, loin] = [0, 1];
  for (let pas = 0; pas < 8; pas += 1) {
    const milieu = (pres + loin) / 2;
    if (contraste(melanger(encre, bout, milieu), fond) >= rapport) loin = milieu;
    else pres = milieu;
  }
  return melanger(encre, bout, loin);
}
