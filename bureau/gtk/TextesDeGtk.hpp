// TextesDeGtk : ce que GTK écrirait dans la langue du système, ou nommerait du nom de ses classes.
//
// Ces fonctions entrent dans des éléments que GTK ne montre pas : une version qui les range autrement garde
// seulement ses propres textes. Fil principal seulement.
#pragma once

#include <map>

#include <glibmm/ustring.h>
#include <gtkmm/widget.h>

namespace keltrove::bureau {

// Le nom que dit un lecteur d’écran.
void nommer(Gtk::Widget& element, const Glib::ustring& nom);

// Les barres de défilement que GTK a mises dans cet élément ; celles qu’il y mettra plus
// tard n’ont pas de nom.
void nommerLesAscenseurs(Gtk::Widget& racine);

// De même, et les enveloppes dont GTK entoure les articles d’un menu.
void nommerLeMenu(Gtk::Widget& volet, const Glib::ustring& nom);

// Chaque article d’un menu, de son titre : GTK 4.18 y renvoie à un texte qu’il ne fait plus lire. À chaque
// ouverture, car il recommence quand une touche y paraît.
void nommerLesArticles(Gtk::Widget& volet);

// Un cadre qui n’a rien à dire de plus que ce qu’il contient. À appeler avant qu’il ne se montre.
void taire(Gtk::Widget& cadre);

// Celles d’un raccourci, que GTK donnerait dans la langue du système : écrites, et pour un lecteur d’écran,
// qui ne comprend que la notation d’ARIA (« Control+Shift+C ») et les dit dans la sienne.
struct Touches {
  Glib::ustring ecrites, dites;
};

// Les touches que porte chaque article de ce menu, par titre. Le raccourci lui-même ne change pas.
void ecrireLesTouches(Gtk::Widget& volet, const std::map<Glib::ustring, Touches>& touches);

} // namespace keltrove::bureau
