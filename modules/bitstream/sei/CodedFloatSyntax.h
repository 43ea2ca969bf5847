// Numbers of sign, exponent and mantissa as syntax functions.
#ifndef QV_BITSTREAM_SEI_CODEDFLOATSYNTAX_H
#define QV_BITSTREAM_SEI_CODEDFLOATSYNTAX_H

#include "bitstream/sei/CodedFloat.h"
#include "bitstream/syntax/Reader.h"

namespace qv::sei {

// The greatest prec_focal_length and the like.
constexpr uint32_t kMostPrecision = 31;

struct CodedFloatNames {
    const char* sign;  // null without one
    const char* exponent;
    const char* mantissa_len_minus1;  // null where the precision is given
    const char* mantissa;
};

constexpr CodedFloatNames withoutSign(const char* exponent, const char* mantissa) {
    return {nullptr, exponent, nullptr, mantissa};
}

constexpr CodedFloatNames withSign(const char* sign, const char* exponent, const char* mantissa) {
    return {sign, exponent, nullptr, mantissa};
}

// The width of a mantissa, up to 63: Max( 0, exponent + prec - 31 ), and Max( 0, prec - 30 ) for an exponent
// of 0.
constexpr uint32_t mantissaBits(uint32_t exponent, uint32_t prec) {
    const uint32_t scaled = exponent == 0 ? 1 + prec : exponent + prec;
    return scaled > kMostPrecision ? scaled - kMostPrecision : 0;
}

// A name with or without subscripts.
constexpr const char* named(const char* name) {
    return name;
}
template <class... Subscripts>
constexpr auto named(const char* name, Subscripts... subscripts) {
    return at(name, subscripts...);
}

// A number whose precision, 0 to 31, is given for all of its kind.
template <class Syntax, class... Subscripts>
void coded_float(Syntax& s, const CodedFloatNames& names, uint32_t prec, CodedFloat& number,
                 Subscripts... subscripts) {
    s.infer(number.sign, false);
    if (names.sign != nullptr) {
        s.flag(named(names.sign, subscripts...), number.sign);
    }
    s.u(6, named(names.exponent, subscripts...), number.exponent);
    number.mantissa_bits = mantissaBits(number.exponent, prec);
    s.u_long(number.mantissa_bits, named(names.mantissa, subscripts...), number.mantissa);
}

// A number that says itself how long its mantissa is: in lists, whose bits a writer copies.
template <class Syntax, class... Subscripts>
void coded_float_with_length(Syntax& s, const CodedFloatNames& names, CodedFloat& number,
                             Subscripts... subscripts) {
    uint32_t mantissa_len_minus1 = 0;
    s.flag(named(names.sign, subscripts...), number.sign);
    s.u(7, named(names.exponent, subscripts...), number.exponent);
    s.u(5, named(names.mantissa_len_minus1, subscripts...), mantissa_len_minus1);
    number.mantissa_bits = mantissa_len_minus1 + 1;
    s.u_long(number.mantissa_bits, named(names.mantissa, subscripts...), number.mantissa);
}

}  // namespace qv::sei

#endif
