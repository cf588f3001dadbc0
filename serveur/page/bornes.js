// Avancer de tabulations, reculer, répéter le dernier caractère ; insérer ou effacer des lignes, faire défiler : un
// programme qui le demande deux milliards de fois figerait la page, et le serveur qui relit la même sortie.
const DANS_LA_LIGNE = ['I', 'Z', 'b'];
const DANS_L_ECRAN = ['L', 'M', 'S', 'T'];

// Rien ne se voit de plus au-delà d’une ligne, ou d’un écran. Le terminal ne laisse pas changer les nombres d’une
// séquence ; son cœur, si.
export function bornerLesRepetitions(terminal) {
  const borner = (finales, borne) => finales.forEach((final) => terminal._core.registerCsiHandler({ final }, ({ params }) => {
    params[0] = Math.min(params[0], borne());
    return false;
  }));
  borner(DANS_LA_LIGNE, () => terminal.cols);
  borner(DANS_L_ECRAN, () => terminal.rows);
}
