// Les filets et les pavés (U+2500 à U+259F) ne viennent pas de la police : d’une case à l’autre ils doivent se toucher
// exactement. Tracés en noir dans une case de `largeur` sur `hauteur` points, d’un trait fin de `fin` points.
const PREMIER = 0x2500;
const PREMIER_PAVE = 0x2580;
const DERNIER = 0x259f;

// Haut, droite, bas, gauche ; 1 : fin, 2 : épais, 3 : double. Ce qui n’est pas un croisement de quatre branches est « . ».
const BRANCHES = `
  0101 0202 1010 2020 .... .... .... .... .... .... .... .... 0110 0210 0120 0220
  0011 0012 0021 0022 1100 1200 2100 2200 1001 1002 2001 2002 1110 1210 2110 1120
  2120 2210 1220 2220 1011 1012 2011 1021 2021 2012 1022 2022 0111 0112 0211 0212
  0121 0122 0221 0222 1101 1102 1201 1202 2101 2102 2201 2202 1111 1112 1211 1212
  2111 1121 2121 2112 2211 1122 1221 2212 1222 2122 2221 2222 .... .... .... ....
  0303 3030 0310 0130 0330 0013 0031 0033 1300 3100 3300 1003 3001 3003 1310 3130
  3330 1013 3031 3033 0313 0131 0333 1303 3101 3303 1313 3131 3333 .... .... ....
  .... .... .... .... 0001 1000 0100 0010 0002 2000 0200 0020 0201 1020 0102 2010`.trim().split(/\s+/);

const TIRETS = {
  0x2504: [3, 1, 0], 0x2505: [3, 2, 0], 0x2506: [3, 1, 1], 0x2507: [3, 2, 1], 0x2508: [4, 1, 0], 0x2509: [4, 2, 0],
  0x250a: [4, 1, 1], 0x250b: [4, 2, 1], 0x254c: [2, 1, 0], 0x254d: [2, 2, 0], 0x254e: [2, 1, 1], 0x254f: [2, 2, 1],
};
// Les quarts noircis : 1 en haut à gauche, 2 en haut à droite, 4 en bas à gauche, 8 en bas à droite.
const QUARTS = [4, 8, 1, 13, 9, 7, 11, 2, 6, 14];

export const estUnFilet = (code) => code >= PREMIER && code <= DERNIER;
// Leurs couleurs sont celles d’une image.
export const estUnPave = (code) => code >= PREMIER_PAVE && code <= DERNIER;

export function tracerLeFilet(contexte, code, { largeur, hauteur, fin }) {
  const cadre = { contexte, largeur, hauteur, fin, epais: fin + 2 * Math.max(1, fin >> 1) };
  if (estUnPave(code)) tracerLePave(cadre, code);
  else if (code in TIRETS) tracerLesTirets(cadre, ...TIRETS[code]);
  else if (BRANCHES[code - PREMIER] !== '....') tracerLesBranches(cadre, [...BRANCHES[code - PREMIER]].map(Number));
  else tracerLaCourbe(cadre, code);
}

const debutDe = (etendue, epaisseur) => (etendue - epaisseur) >> 1;

// Un rectangle donné le long de la branche, qui va vers le haut (0), la droite (1), le bas (2) ou la gauche (3) : de
// `travers` sur `epaisseur`, et du bord jusqu’à `jusque`, compté depuis le bord opposé.
function tracerUneBranche({ contexte, largeur, hauteur }, sens, travers, epaisseur, depuis, effacer = false) {
  const etendue = sens % 2 === 0 ? hauteur : largeur;
  const [debut, fin] = sens === 1 || sens === 2 ? [depuis, etendue] : [0, etendue - depuis];
  const rectangle = sens % 2 === 0 ? [travers, debut, epaisseur, fin - debut] : [debut, travers, fin - debut, epaisseur];
  if (effacer) contexte.clearRect(...rectangle);
  else contexte.fillRect(...rectangle);
}

function tracerLesBranches(cadre, poids) {
  const { fin, epais, largeur, hauteur } = cadre;
  const sens = [0, 1, 2, 3].filter((un) => poids[un] > 0);
  const long = (un) => (un % 2 === 0 ? hauteur : largeur);
  const travers = (un) => (un % 2 === 0 ? largeur : hauteur);
  const voisins = (un) => [poids[(un + 1) % 4], poids[(un + 3) % 4]];
  // Du milieu, ou du bord le plus lointain des branches qu’elle croise : les coins sont pleins. Le milieu d’une branche
  // qui va vers la gauche ou le haut se compte depuis l’autre bord.
  const depart = (un, epaisseur) => {
    const debut = debutDe(long(un), epaisseur);
    return un === 1 || un === 2 ? debut : long(un) - debut - epaisseur;
  };
  const doubles = sens.filter((un) => poids[un] === 3);
  for (const un of doubles) tracerUneBranche(cadre, un, debutDe(travers(un), fin) - fin, 3 * fin, depart(un, fin) - (voisins(un).includes(3) ? fin : 0));
  for (const un of doubles) tracerUneBranche(cadre, un, debutDe(travers(un), fin), fin, depart(un, fin), true);
  for (const un of sens.filter((autre) => poids[autre] < 3)) {
    const epaisseur = poids[un] === 2 ? epais : fin;
    const [un1, un2] = voisins(un);
    const retrait = un1 === 3 && un2 === 3 && poids[(un + 2) % 4] === 0 ? fin : un1 === 3 || un2 === 3 ? -fin : 0;
    const croise = un1 === 2 || un2 === 2 ? epais : fin;
    tracerUneBranche(cadre, un, debutDe(travers(un), epaisseur), epaisseur, depart(un, croise) + retrait);
  }
}

function tracerLesTirets({ contexte, largeur, hauteur, fin, epais }, nombre, poids, debout) {
  const [etendue, travers] = debout ? [hauteur, largeur] : [largeur, hauteur];
  const epaisseur = poids === 2 ? epais : fin;
  const vide = Math.max(1, Math.round(etendue / nombre / 3));
  for (let i = 0; i < nombre; i += 1) {
    const [debut, suite] = [i, i + 1].map((rang) => Math.round((rang * etendue) / nombre));
    const cote = debutDe(travers, epaisseur);
    if (debout) contexte.fillRect(cote, debut, epaisseur, suite - debut - vide);
    else contexte.fillRect(debut, cote, suite - debut - vide, epaisseur);
  }
}

// Les coins arrondis et les diagonales.
function tracerLaCourbe({ contexte, largeur, hauteur, fin }, code) {
  const [x, y] = [debutDe(largeur, fin) + fin / 2, debutDe(hauteur, fin) + fin / 2];
  const rayon = Math.min(largeur, hauteur) / 2;
  contexte.lineWidth = fin;
  contexte.beginPath();
  if (code <= 0x2570) {
    const versLaDroite = code === 0x256d || code === 0x2570;
    const versLeBas = code <= 0x256e;
    contexte.moveTo(x, versLeBas ? hauteur : 0);
    contexte.arcTo(x, y, versLaDroite ? largeur : 0, y, rayon);
    contexte.lineTo(versLaDroite ? largeur : 0, y);
  }
  // Un peu au-delà des coins, pour que deux diagonales se joignent.
  if (code === 0x2571 || code === 0x2573) tracerUneDiagonale(contexte, -1, hauteur + hauteur / largeur, largeur + 1, -hauteur / largeur);
  if (code === 0x2572 || code === 0x2573) tracerUneDiagonale(contexte, -1, -hauteur / largeur, largeur + 1, hauteur + hauteur / largeur);
  contexte.stroke();
}

function tracerUneDiagonale(contexte, x1, y1, x2, y2) {
  contexte.moveTo(x1, y1);
  contexte.lineTo(x2, y2);
}

function tracerLePave({ contexte, largeur, hauteur }, code) {
  const rang = code - PREMIER_PAVE;
  const [huitiemeHaut, huitiemeLarge] = [(n) => Math.max(1, Math.round((hauteur * n) / 8)), (n) => Math.max(1, Math.round((largeur * n) / 8))];
  const [milieuX, milieuY] = [huitiemeLarge(4), huitiemeHaut(4)];
  if (rang === 0) contexte.fillRect(0, 0, largeur, milieuY);
  // Les deux moitiés d’une case n’ont pas de point en commun.
  else if (rang === 4) contexte.fillRect(0, milieuY, largeur, hauteur - milieuY);
  else if (rang <= 8) contexte.fillRect(0, hauteur - huitiemeHaut(rang), largeur, huitiemeHaut(rang));
  else if (rang <= 15) contexte.fillRect(0, 0, huitiemeLarge(16 - rang), hauteur);
  else if (rang === 16) contexte.fillRect(milieuX, 0, largeur - milieuX, hauteur);
  else if (rang <= 19) {
    contexte.globalAlpha = (rang - 16) / 4;
    contexte.fillRect(0, 0, largeur, hauteur);
    contexte.globalAlpha = 1;
  } else if (rang === 20) contexte.fillRect(0, 0, largeur, huitiemeHaut(1));
  else if (rang === 21) contexte.fillRect(largeur - huitiemeLarge(1), 0, huitiemeLarge(1), hauteur);
  else tracerLesQuarts(contexte, QUARTS[rang - 22], largeur, hauteur, milieuX, milieuY);
}

function tracerLesQuarts(contexte, quarts, largeur, hauteur, milieuX, milieuY) {
  if (quarts & 1) contexte.fillRect(0, 0, milieuX, milieuY);
  if (quarts & 2) contexte.fillRect(milieuX, 0, largeur - milieuX, milieuY);
  if (quarts & 4) contexte.fillRect(0, milieuY, milieuX, hauteur - milieuY);
  if (quarts & 8) contexte.fillRect(milieuX, milieuY, largeur - milieuX, hauteur - milieuY);
}
