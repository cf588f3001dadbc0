// Des chemins absolus écrits pour un interpréteur de commandes : chacun y redevient un seul mot, quoi qu’il contienne.

const SANS_DANGER = /^[A-Za-z0-9_./@%+:,-]+$/;

export const citerTous = (chemins) => chemins.map((chemin) => `${citer(chemin)} `).join('');

export function citer(chemin) {
  if (SANS_DANGER.test(chemin)) return chemin;
  return chemin.split(/(['\\!\p{Cc}])/u).filter(Boolean).map(citerUnMorceau).join('') || "''";
}

function citerUnMorceau(morceau) {
  // Dans fish, la barre garde un sens entre apostrophes. Bash, lui, cherche ses rappels d’historique sans bien
  // suivre les apostrophes après une barre : un point d’exclamation porte donc toujours la sienne.
  if (/^['\\!]$/.test(morceau)) return `\\${morceau}`;
  if (!/^\p{Cc}$/u.test(morceau)) return `'${morceau}'`;
  // Brut, un caractère de commande agirait comme la touche : valider la ligne, l’interrompre, l’effacer. Seul dans son
  // morceau : le chiffre qui suit ne peut pas être pris pour la suite de l’octet.
  const octets = [...new TextEncoder().encode(morceau)];
  return `$'${octets.map((octet) => `\\x${octet.toString(16).padStart(2, '0')}`).join('')}'`;
}
