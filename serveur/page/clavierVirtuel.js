// Le clavier d’un téléphone couvre souvent le bas de la page au lieu de la rétrécir : elle finit alors au-dessus de lui.
const vue = window.visualViewport;

vue.addEventListener('resize', () => {
  // Agrandie entre deux doigts, on n’en voit qu’une part, et rien ne la couvre.
  if (vue.scale !== 1) return;
  const couverte = vue.height < innerHeight - 1;
  document.body.style.height = couverte ? `${vue.height}px` : '';
  if (couverte) scrollTo(0, 0);
});
