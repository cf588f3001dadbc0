// Ce que les interpréteurs comptent pour chaque caractère, et que l’ajout, resté à Unicode 11, ne sait pas : des
// caractères d’Unicode 12 à 16, en plages. Les emoji joints et les drapeaux restent comptés un à un, comme eux : groupés,
// ils feraient perdre à bash, zsh et fish la place de leur curseur.
const PLAGES = {
  0: `898-89f 8ca-8d2 b55 c3c d81 180f 1abf-1ace 1dfa a82c d7b0-d7c6 d7cb-d7fb 10eab-10eac 10f82-10f85 11070 11073-11074
    110c2 111cf 1193b-1193c 1193e 11943 16fe4 1cf00-1cf2d 1cf30-1cf46 1e2ae`,
  1: '600-605 6dd 70f 8e2 1734 110bd 110cd 1f93b 1f946',
  2: `31bb-31bf 3248-324f 4dc0-4dff 16ff0-16ff1 18af3-18cd5 18d00-18d08 1aff0-1aff3 1aff5-1affb 1affd-1affe 1b11f-1b122
    1f6d6-1f6d7 1f6dc-1f6df 1f6fb-1f6fc 1f7f0 1f90c 1f972 1f977-1f979 1f9a3-1f9a4 1f9ab-1f9ad 1f9cb-1f9cc 1fa74-1fa77 1fa7b-1fa7c
    1fa83-1fa89 1fa8f 1fa96-1faac 1faad-1faba 1fabb-1fac6 1face-1fadc 1fadf-1fae9 1faf0-1faf8`,
};

const largeurs = new Map(Object.entries(PLAGES).flatMap(([largeur, plages]) => plages.split(/\s+/).flatMap((plage) => {
  const [debut, fin = debut] = plage.split('-').map((nombre) => Number.parseInt(nombre, 16));
  return Array.from({ length: fin - debut + 1 }, (_, rang) => [debut + rang, Number(largeur)]);
})));

export function compterLesLargeurs(terminal, Unicode11Addon) {
  let onze;
  new Unicode11Addon().activate({ unicode: { register: (version) => (onze = version) } });
  terminal.unicode.register(Object.create(onze, {
    version: { value: '16' },
    wcwidth: { value: (point) => largeurs.get(point) ?? onze.wcwidth(point) },
  }));
  terminal.unicode.activeVersion = '16';
}
