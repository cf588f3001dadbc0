// Les traits qu’un programme demande autour du texte, dans l’ordre où il numérote les soulignés.
export const SOULIGNES = ['', 'simple', 'double', 'ondule', 'pointille', 'tirete'];

// Trace un trait en noir sur la largeur d’une case : d’une case à l’autre, il se continue.
export function tracerLeTrait(contexte, sorte, { largeur, hauteur, base, corps }) {
  const epaisseur = Math.max(1, Math.round(corps / 14));
  // Sous le texte, à un cheveu des lettres ; un petit corps n’a pas tant de place.
  const bas = Math.min(base + 1 + (epaisseur >> 1), hauteur - epaisseur);
  const tracer = (y, debut = 0, etendue = largeur) => contexte.fillRect(debut, y, etendue, epaisseur);
  const semer = (nombre, plein) => {
    for (let i = 0; i < nombre; i += 1) {
      const [debut, suite] = [i, i + 1].map((rang) => Math.round((rang * largeur) / nombre));
      tracer(bas, debut, Math.max(1, Math.round((suite - debut) * plein)));
    }
  };
  ({
    simple: () => tracer(bas),
    double() {
      const second = Math.min(bas + 2 * epaisseur, hauteur - epaisseur);
      tracer(second - 2 * epaisseur);
      tracer(second);
    },
    ondule: () => onduler(contexte, { largeur, hauteur, base, epaisseur }),
    pointille: () => semer(Math.max(1, Math.round(largeur / (2 * epaisseur))), 0.5),
    tirete: () => semer(1, 0.6),
    barre: () => tracer(base - Math.round(corps * 0.28)),
    surligne: () => tracer(0),
  })[sorte]();
}

// Une période par case.
function onduler(contexte, { largeur, hauteur, base, epaisseur }) {
  const creux = Math.min(2 * epaisseur, Math.max(1, (hauteur - base - epaisseur) / 2));
  const milieu = Math.min(base + 1 + creux, hauteur - creux / 2 - epaisseur / 2);
  contexte.lineWidth = epaisseur;
  contexte.beginPath();
  for (let x = -1; x <= largeur + 1; x += 0.5) contexte.lineTo(x, milieu + (creux / 2) * Math.sin((2 * Math.PI * x) / largeur));
  contexte.stroke();
}
