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

const [ASSEZ_LONG, AU_PLUS] = [500, 10];

// Un doigt posé une demi-seconde sans bouger vaut le bouton droit, ce que tous les navigateurs n’en déduisent pas. Levé, il
// n’est plus un clic, qui fermerait ce qu’il a ouvert.
export function suivreLAppuiLong(quandOnAppuie) {
  let attente = null;
  let [x, y, long] = [0, 0, false];
  const renoncer = () => clearTimeout(attente);
  const suivre = (nom, faire, passive = true) => addEventListener(nom, faire, { capture: true, passive });
  suivre('touchstart', ({ touches, target }) => {
    renoncer();
    long = false;
    if (touches.length !== 1) return;
    [x, y] = [touches[0].clientX, touches[0].clientY];
    attente = setTimeout(() => {
      long = true;
      quandOnAppuie(target, { x, y });
    }, ASSEZ_LONG);
  });
  suivre('touchmove', ({ touches: [{ clientX, clientY }] }) => Math.hypot(clientX - x, clientY - y) > AU_PLUS && renoncer());
  suivre('touchcancel', renoncer);
  suivre('touchend', (evenement) => {
    renoncer();
    if (long) evenement.preventDefault();
  }, false);
}
