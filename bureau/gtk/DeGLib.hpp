// DeGLib : ce que GLib nous donne à rendre, tenu jusque-là. Nul, il n’y a rien à rendre.
//
// Seulement ce dont nous sommes propriétaires (« transfer full » dans les documents de GLib) : ce qui
// est prêté n’y va pas.
#pragma once

#include <memory>

#include <glib-object.h>

namespace keltrove::bureau {

template <auto rendre>
struct Rendre {
  void operator()(auto* chose) const { rendre(chose); }
};

template <typename T>
using Objet = std::unique_ptr<T, Rendre<&g_object_unref>>;
using TexteDeGLib = std::unique_ptr<char, Rendre<&g_free>>;
using Erreur = std::unique_ptr<GError, Rendre<&g_error_free>>;
using Variant = std::unique_ptr<GVariant, Rendre<&g_variant_unref>>;
using FichierDeCles = std::unique_ptr<GKeyFile, Rendre<&g_key_file_unref>>;

} // namespace keltrove::bureau
