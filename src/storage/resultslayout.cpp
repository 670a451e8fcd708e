#include "storage/resultslayout.h"

#include "device/windows1251.h"

#include <QCoreApplication>
#include <QRegularExpression>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <iterator>

namespace
{

constexpr int leastDecimals = 2;
constexpr int mostDecimals = 7;
constexpr double secondsPerMinute = 60;
constexpr QChar ohm(0x03A9);

QString ohmInFile()
{
    return QStringLiteral("Ом");
}

bool isEncodable(const QString &text)
{
    return fromWindows1251(toWindows1251(text)) == text;
}

/** What stands for a character in a file. */
QString encodableCharacter(QChar character)
{
    if (character < ' ')
        return QStringLiteral(" ");
    if (isEncodable(character))
        return character;
    constexpr ushort greekMu = 0x03BC;
    if (character == greekMu)
        return QStringLiteral("µ"); // the micro sign, which the code page has
    QString replacement;
    for (const QChar part : QString(character).normalized(QString::NormalizationForm_KD)) {
        if (part == ohm)
            replacement += ohmInFile();
        else if (isEncodable(part))
            replacement += part;
    }
    return replacement.isEmpty() ? QStringLiteral("?") : replacement;
}

QString unitOfField(const QByteArray &field)
{
    const int open = field.indexOf('[');
    const int close = field.lastIndexOf(']');
    if (open < 0 || close < open)
        return {};
    const QString unit = fromWindows1251(field.mid(open + 1, close - open - 1));
    if (unit == ohmInFile())
        return QCoreApplication::translate("optionsNOX8", "Ω");
    return unit.isNull() ? QStringLiteral("") : unit;
}

/** Where the unit field that begins at `begin` ends: a unit may hold the separator. */
int endOfUnitField(const QByteArray &line, int begin, char separator)
{
    const char closing[] = {']', separator, '\0'};
    const int close = line.mid(begin, 1) == "[" ? line.indexOf(closing, begin) : -1;
    const int end = close >= 0 ? close + 1 : line.indexOf(separator, begin);
    return end >= 0 ? end : line.size();
}

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

ResultsFormat ResultsFormat::fromTexts(const QString &fieldSeparator,
                                       const QString &decimalSeparator, int decimals,
                                       int intervalMinutes)
{
    ResultsFormat format;
    if (!fieldSeparator.isEmpty())
        format.fieldSeparator = fieldSeparator.at(0).toLatin1();
    if (decimalSeparator == QLatin1String(","))
        format.decimalSeparator = ',';
    format.decimals = decimals;
    format.intervalMinutes = intervalMinutes;
    return format;
}

bool isRowDue(std::optional<double> lastSeconds, double seconds, int intervalMinutes)
{
    return !lastSeconds || seconds < *lastSeconds ||
           seconds - *lastSeconds > intervalMinutes * secondsPerMinute;
}

QString encodableText(const QString &text)
{
    QString encodable;
    for (const QChar character : text)
        encodable += encodableCharacter(character);
    return encodable;
}

const PlotChannel &longestChannel(const QVector<PlotChannel> &channels)
{
    return *std::max_element(channels.cbegin(), channels.cend(),
                             [](const PlotChannel &one, const PlotChannel &other) {
                                 return one.time.size() < other.time.size();
                             });
}

QStringList unitsOf(const PlotDevice &instrument)
{
    QStringList units;
    for (const PlotChannel &channel : instrument.ch)
        units << channel.dim;
    return units;
}

QString resultsFileName(const QString &model, const QString &serialNumber, const QDate &date)
{
    return QString(model).replace('.', '_') + QStringLiteral("_N") + serialNumber + '_' +
           date.toString(QStringLiteral("dd-MM-yyyy"));
}

// Numbers

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

// Writing

ResultsText::ResultsText(const ResultsFormat &format)
    : m_format(format)
{
    m_format.decimals = qBound(leastDecimals, format.decimals, mostDecimals);
}

void ResultsText::addText(const QString &text)
{
    m_bytes += toWindows1251(encodableText(text));
    m_bytes += m_format.fieldSeparator;
}

void ResultsText::addHeader(const QDateTime &start, const QStringList &units)
{
    addText(QStringLiteral("Начало измерений. Дата ") +
            start.toString(QStringLiteral("dd.MM.yyyy")) + QStringLiteral(" Время ") +
            start.toString(QStringLiteral("hh:mm:ss")));
    m_bytes += "\r\n\r\n";

    addText(QStringLiteral("№"));
    addText(QStringLiteral("dT"));
    for (int ch = 0; ch < units.size(); ++ch)
        addText(QStringLiteral("Канал %1").arg(ch + 1));
    endRow();

    addText(QStringLiteral(" "));
    addText(QStringLiteral("[c]"));
    for (const QString &unit : units)
        addText('[' + unit + ']');
    endRow();
}

void ResultsText::beginRow(int number, double seconds)
{
    m_bytes += QByteArray::number(number);
    m_bytes += m_format.fieldSeparator;
    appendWholeSeconds(&m_bytes, seconds);
    m_bytes += m_format.fieldSeparator;
}

void ResultsText::addValue(double value)
{
    const int begin = m_bytes.size();
    appendFixed(&m_bytes, value, m_format.decimals);
    if (m_format.decimalSeparator != '.')
        std::replace(m_bytes.begin() + begin, m_bytes.end(), '.', m_format.decimalSeparator);
    m_bytes += m_format.fieldSeparator;
}

void ResultsText::addNoValue()
{
    m_bytes += "--";
    m_bytes += m_format.fieldSeparator;
}

void ResultsText::endRow()
{
    m_bytes += "\r\n";
}

// Reading

bool LineFields::next(const char **begin, const char **end)
{
    if (!m_next)
        return false;
    const auto *separator =
        static_cast<const char *>(std::memchr(m_next, m_separator, size_t(m_end - m_next)));
    *begin = m_next;
    *end = separator ? separator : m_end;
    m_next = separator ? separator + 1 : nullptr;
    return true;
}

QDateTime startOfLine(const QByteArray &line, const QDateTime &now)
{
    static const QRegularExpression dateExpression(R"(([\d]{2}).([\d]{2}).([\d]{4}))");
    static const QRegularExpression timeExpression(R"(([\d]{2}):([\d]{2}):([\d]{2}))");
    const QString text = fromWindows1251(line);
    const auto dateMatch = dateExpression.match(text);
    const auto timeMatch = timeExpression.match(text);
    const auto number = [](const QRegularExpressionMatch &match, int group) {
        return match.captured(group).toInt();
    };
    const QDate date(number(dateMatch, 3), number(dateMatch, 2), number(dateMatch, 1));
    const QTime time(number(timeMatch, 1), number(timeMatch, 2), number(timeMatch, 3));
    return {dateMatch.hasMatch() && date.isValid() ? date : now.date(),
            timeMatch.hasMatch() && time.isValid() ? time : now.time()};
}

QVector<QString> unitsOfLine(const QByteArray &line, char separator)
{
    QVector<QString> units;
    // the first field is a blank, which in a file of blanks looks like two fields
    int begin = separator == ' ' && line.startsWith("  ") ? 1 : 0;
    for (int field = 0; begin <= line.size(); ++field) {
        const int end = endOfUnitField(line, begin, separator);
        if (field >= firstValueField)
            units << unitOfField(line.mid(begin, end - begin));
        begin = end + 1;
    }
    while (!units.isEmpty() && units.last().isNull())
        units.removeLast();
    return units;
}
