/// \file
/// The name of a syntax element.
#ifndef QV_BITSTREAM_SYNTAX_ELEMENT_H
#define QV_BITSTREAM_SYNTAX_ELEMENT_H

#include <cstddef>
#include <cstdint>

namespace qv {

/// The name of a syntax element and its subscripts, as the standards print them:
/// `bit_rate_value_minus1[ 0 ]`.
struct Element {
    static constexpr uint32_t kMostSubscripts = 5;  ///< the most that an element has

    /// The standard's name: a string literal, or null for no element.
    const char* name = nullptr;

    /// How many of \ref subscripts are used, 0 to 5.
    uint32_t subscriptCount = 0;

    uint32_t subscripts[kMostSubscripts] = {};  ///< the outermost one first
};

namespace detail {

// A name with N subscripts, in a form that a compiler takes apart: where nothing fails, nothing of it is
// left.
template <size_t N>
struct Subscripted {
    const char* name;
    uint32_t subscripts[N];
};

constexpr Element elementOf(const char* name) {
    Element element;
    element.name = name;
    return element;
}

template <size_t N>
constexpr Element elementOf(const Subscripted<N>& subscripted) {
    Element element;
    element.name = subscripted.name;
    element.subscriptCount = N;
    for (size_t i = 0; i < N; ++i) {
        element.subscripts[i] = subscripted.subscripts[i];
    }
    return element;
}

}  // namespace detail

namespace detail {

// A name with one subscript more.
constexpr Subscripted<1> subscripted(const char* name, uint32_t subscript) {
    return {name, {subscript}};
}

template <size_t N>
constexpr Subscripted<N + 1> subscripted(const Subscripted<N>& outer, uint32_t subscript) {
    Subscripted<N + 1> name = {outer.name, {}};
    for (size_t i = 0; i < N; ++i) {
        name.subscripts[i] = outer.subscripts[i];
    }
    name.subscripts[N] = subscript;
    return name;
}

}  // namespace detail

/// The name of an element with its subscripts, for the syntax functions: at("cbr_flag", i).
template <class... Subscripts>
constexpr detail::Subscripted<sizeof...(Subscripts)> at(const char* name, Subscripts... subscripts) {
    static_assert(sizeof...(Subscripts) >= 1 && sizeof...(Subscripts) <= Element::kMostSubscripts,
                  "an element has 1 to 5 subscripts here");
    return {name, {static_cast<uint32_t>(subscripts)...}};
}

/// A syntax structure: its name as the standard prints it, and its clause.
struct Structure {
    const char* name;    ///< `hrd_parameters()`
    const char* clause;  ///< `E.1.2`
};

}  // namespace qv

#endif
