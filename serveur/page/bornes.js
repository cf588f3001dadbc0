// Avancer de tabulations, insérer ou effacer des lignes, faire défiler, revenir, répéter le dernier caractère : un
// programme qui le demande deux milliards de fois figerait la page, et le serveur qui relit la même sortie.
const REPETITIONS = ['I', 'L', 'M', 'S', 'T', 'Z', 'b'];

// Rien ne se voit de plus, au-delà d’un écran. Le terminal ne laisse pas changer les nombres d’une séquence : son cœur, si.
export function bornerLesRepetitions(terminal) {
  for (const final of REPETITIONS) {
    terminal._core.registerCsiHandler({ final }, ({ params }) => {
      params[0] = Math.min(params[0], Math.max(terminal.cols, terminal.rows));
      return false;
    });
  }
}
