// En lignes : la fenêtre peut grandir avant que le serveur apprenne sa taille.
const MARGE = 500;

// Quand tant d’autres la suivent, une ligne a quitté l’écran et l’historique : le serveur peut l’omettre. Rien quand
// l’utilisateur relit plus haut, ou quand une partie de l’écran ne défile pas.
export function compterLesLignesGardees({ rows, options, buffer: { active }, _core: coeur }) {
  const { scrollTop, scrollBottom } = coeur.buffer;
  if (active.viewportY < active.baseY || scrollTop > 0 || scrollBottom < rows - 1) return null;
  return (active.type === 'normal' ? options.scrollback : 0) + 2 * rows + MARGE;
}
