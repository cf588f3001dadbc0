// Ce que l’on sélectionne dans un terminal ouvert va au bureau, pour le bouton du milieu : le navigateur y donne de
// lui-même ce qui est sélectionné dans une zone de texte. Une recherche, qui sélectionne aussi, n’a pas le focus ici.
export function donnerLaSelection(terminal) {
  // xterm le ferait à chaque pas de la souris.
  terminal._core._selectionService._onLinuxMouseSelection.dispose();
  const { textarea } = terminal;
  terminal.onSelectionChange(() => {
    if (!terminal.hasSelection() || document.activeElement !== textarea) return;
    textarea.value = terminal.getSelection();
    textarea.select();
  });
}
