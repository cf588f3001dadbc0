const fenetre = document.querySelector('.question');

// Tenue par vrai si l’utilisateur confirme ; Échap, ou une autre question, vaut non.
export function demander(phrase) {
  if (fenetre.open) fenetre.close();
  fenetre.returnValue = '';
  fenetre.querySelector('p').textContent = phrase;
  fenetre.showModal();
  return new Promise((suite) => {
    fenetre.addEventListener('close', () => suite(fenetre.returnValue === 'oui'), { once: true });
  });
}

for (const bouton of fenetre.querySelectorAll('button')) {
  bouton.addEventListener('click', () => fenetre.close(bouton.value));
}
