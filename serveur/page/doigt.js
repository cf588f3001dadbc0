// Un doigt sur le terminal en fait défiler l’historique ; à un programme plein écran, ou qui suit la souris, il vaut une
// molette. Un appui bref prend le focus, comme un clic.
export function suivreLeDoigt(panneau, terminal) {
  let haut = null;
  const poser = ({ touches }) => (haut = touches.length === 1 ? touches[0].clientY : null);
  const glisser = ({ touches: [{ clientX, clientY }], target }) => {
    if (haut === null) return;
    const hauteur = terminal.element.querySelector('.xterm-screen').clientHeight / terminal.rows;
    const lignes = Math.trunc((haut - clientY) / hauteur);
    haut -= lignes * hauteur;
    const simple = terminal.buffer.active.type === 'normal' && terminal.modes.mouseTrackingMode === 'none';
    if (simple) terminal.scrollLines(lignes);
    else if (lignes !== 0) target.dispatchEvent(new WheelEvent('wheel', { deltaY: lignes, deltaMode: 1, clientX, clientY, bubbles: true, cancelable: true }));
  };
  panneau.addEventListener('touchstart', poser, { passive: true });
  panneau.addEventListener('touchmove', glisser, { passive: true });
}
