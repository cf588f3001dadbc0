// Comment une longue commande a fini, en une phrase.
export function direLaFin({ commande, duree, statut }) {
  const quoi = commande || 'La commande';
  return statut ? `${quoi} a échoué (${statut}) après ${direLaDuree(duree)}` : `${quoi} a fini en ${direLaDuree(duree)}`;
}

// De millisecondes à « 12 s », « 2 min 3 s » ou « 1 h 4 min ».
function direLaDuree(duree) {
  const secondes = Math.floor(duree / 1000);
  const minutes = Math.floor(secondes / 60);
  if (minutes === 0) return `${secondes} s`;
  if (minutes < 60) return `${minutes} min ${secondes % 60} s`;
  return `${Math.floor(minutes / 60)} h ${minutes % 60} min`;
}
