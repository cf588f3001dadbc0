// Qui est à l’autre bout d’une prise. Là où le système ne le dit pas, personne n’est refusé.
const inconnus = { examiner: (prises) => prises.map(() => null), estTenuParUnAutre: () => false };

export const { examiner, estTenuParUnAutre } = process.platform === 'linux' ? await import('./pairs_linux.mjs') : inconnus;
