// Ctrl+lettre appartient à l’interpréteur : la page ne prend que des touches avec Ctrl+Maj. Elle les prend avant le
// terminal, et d’où que vienne la frappe ; une fenêtre de question, elle, les garde toutes.
export function ecouterLesRaccourcis(gestes) {
  document.addEventListener('keydown', (evenement) => {
    const { key, code, ctrlKey, shiftKey, altKey, metaKey } = evenement;
    if (!ctrlKey || !shiftKey || altKey || metaKey || document.querySelector('dialog[open]')) return;
    const touche = code === 'Digit0' ? '0' : key.toLowerCase();
    // Le navigateur colle de lui-même, et le terminal reçoit alors le collage.
    if (touche === 'v') return evenement.stopPropagation();
    const geste = gestes[touche];
    if (!geste) return;
    evenement.preventDefault();
    evenement.stopPropagation();
    geste();
  }, true);
}
