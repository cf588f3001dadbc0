// La partie de fmt qui n’est pas dans ses en-têtes, compilée une seule fois. Sa bibliothèque porte un autre
// nom d’une Debian à l’autre : on ne la lie pas ; et avec FMT_HEADER_ONLY, chaque fichier qui s’en sert la
// recompilerait.
#include <fmt/format-inl.h>

template void fmt::detail::vformat_to(fmt::detail::buffer<char>&, fmt::string_view, fmt::format_args,
                                      fmt::detail::locale_ref);
template auto fmt::detail::thousands_sep_impl(fmt::detail::locale_ref)
    -> fmt::detail::thousands_sep_result<char>;
template auto fmt::detail::decimal_point_impl(fmt::detail::locale_ref) -> char;
