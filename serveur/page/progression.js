const PHRASES = { enCours: '', erreur: ', en erreur', pause: ', en pause' };

// Où en est le programme d’un terminal, en une barre fine au bas de son onglet.
export function montrerLaProgression(barre, progression, nom) {
  barre.hidden = !progression;
  if (!progression) return;
  const { etat, part } = progression;
  barre.dataset.etat = etat;
  barre.style.setProperty('--part', `${part ?? 0}%`);
  const texte = part === null ? 'en cours' : `${part} %${PHRASES[etat]}`;
  Object.assign(barre, { title: texte, ariaLabel: `Progression de « ${nom} »`, ariaValueNow: part, ariaValueText: texte });
}
