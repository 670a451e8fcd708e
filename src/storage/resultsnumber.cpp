#include "storage/resultsnumber.h"

#include "device/windows1251.h"

#include <QString>

#include <cmath>
#include <iterator>
#include <optional>

namespace
{

/** All powers of ten that a double holds exactly and that are used here. */
constexpr double powersOfTen[] = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                  1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
constexpr int mostExactDigits = int(std::size(powersOfTen)) - 1;

/** 2^51: below it the half of every whole number is exact. */
constexpr double exactHalves = 2251799813685248.0;

/** magnitude · 10^decimals as a whole number, halves rounded up; nothing when it is too large. */
std::optional<quint64> wholeMultiple(double magnitude, int decimals)
{
    const double scale = powersOfTen[decimals];
    const double product = magnitude * scale;
    if (!(product < exactHalves))
        return std::nullopt;
    const double below = std::floor(product);
    // the product may have been rounded; the sign of fma() is that of the exact remainder
    const bool roundsUp = std::fma(magnitude, scale, -(below + 0.5)) >= 0;
    return quint64(below) + (roundsUp ? 1 : 0);
}

void appendWhole(QByteArray *text, quint64 digits, int decimals, bool isNegative)
{
    char buffer[32];
    char *const end = std::end(buffer);
    char *begin = end;
    for (int i = 0; i < decimals; ++i, digits /= 10)
        *--begin = char('0' + digits % 10);
    if (decimals > 0)
        *--begin = '.';
    do {
        *--begin = char('0' + digits % 10);
        digits /= 10;
    } while (digits > 0);
    if (isNegative)
        *--begin = '-';
    text->append(begin, int(end - begin));
}

/** Passes over digits, which it appends to `digits`. */
const char *readDigits(const char *begin, const char *end, quint64 *digits)
{
    for (; begin != end && *begin >= '0' && *begin <= '9'; ++begin)
        *digits = *digits * 10 + quint64(*begin - '0'); // may run over: then there are too many
    return begin;
}

/** Digits, perhaps with a point between them and a minus before: so many that whole number and
 *  power of ten are exact, and their quotient is the nearest double. */
std::optional<double> readPlain(const char *begin, const char *end)
{
    const bool isNegative = begin != end && *begin == '-';
    const char *const whole = begin + (isNegative ? 1 : 0);
    quint64 digits = 0;
    const char *at = readDigits(whole, end, &digits);
    int count = int(at - whole);
    int decimals = 0;
    if (count > 0 && at != end && *at == '.') {
        const char *const fraction = at + 1;
        at = readDigits(fraction, end, &digits);
        decimals = int(at - fraction);
        count += decimals;
    }
    if (at != end || count == 0 || count > mostExactDigits)
        return std::nullopt;
    const double number = double(digits) / powersOfTen[decimals];
    return isNegative ? -number : number;
}

} // namespace

void appendFixed(QByteArray *text, double number, int decimals)
{
    if (const auto digits = wholeMultiple(std::abs(number), decimals))
        appendWhole(text, *digits, decimals, number < 0);
    else
        text->append(QByteArray::number(number, 'f', decimals));
}

void appendWholeSeconds(QByteArray *text, double seconds)
{
    constexpr double firstWithExponent = 1e6;
    const double rounded = std::round(seconds);
    if (rounded >= 0 && rounded < firstWithExponent)
        appendWhole(text, quint64(rounded), 0, false);
    else
        text->append(QByteArray::number(rounded, 'g', 6));
}

bool readNumber(const char *begin, const char *end, double *number)
{
    if (const auto plain = readPlain(begin, end)) {
        *number = *plain;
        return true;
    }
    const bool isDash = end - begin == 2 && begin[0] == '-' && begin[1] == '-';
    if (begin == end || isDash) // the usual ones that are no number
        return false;
    bool isNumber = false;
    const double read = fromWindows1251(QByteArray(begin, int(end - begin))).toDouble(&isNumber);
    if (isNumber)
        *number = read;
    return isNumber;
}
