#include "calibration/characteristicfile.h"

#include "device/bfloat.h"
#include "device/boundedreading.h"
#include "device/filereplacement.h"
#include "device/windows1251.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <array>

namespace
{

constexpr int longestFile = 1024 * 1024; // hundreds of times what the longest table needs
constexpr int headLines = 2;
constexpr int fewestPairs = 2;

/** The first line of a file of each type. */
constexpr std::array<int, 4> typeCodes = {0, 1, 3, 2};

QString numberText(double number)
{
    return QString::number(number, 'g', 6);
}

QString oneLine(QString text)
{
    return text.replace("\r\n", " ").replace('\n', ' ').replace('\r', ' ');
}

QStringList dataLines(const CharacteristicFile &file)
{
    const CharacteristicLayout layout = characteristicLayout(file.type);
    const auto cell = [&](int row, int column) { return file.rows.value(row).value(column); };
    QStringList lines;
    if (layout.isOfPairs)
        for (int column = 0; column < layout.columns; ++column)
            lines << numberText(cell(temperatureRow, column).toDouble()) + ' ' +
                         numberText(cell(emfRow, column).toDouble());
    else
        for (int row = 0; row < layout.rows; ++row)
            for (int column = 0; column < layout.columns; ++column)
                lines << numberText(double(bFloat::str2Float(cell(row, column))));
    return lines;
}

/** The whole file; nothing if the type is none of the four. */
QByteArray bytesOf(const CharacteristicFile &file)
{
    if (file.type < 0 || file.type >= int(typeCodes.size()))
        return {};
    const QStringList head = {QString::number(typeCodes.at(std::size_t(file.type))),
                              oneLine(file.description)};
    const QString lineEnd = QStringLiteral("\r\n");
    return toWindows1251((head + dataLines(file)).join(lineEnd) + lineEnd);
}

/** The type that a code and the count of all lines stand for. */
std::optional<int> typeOf(int code, int lineCount)
{
    const auto place = std::find(typeCodes.begin(), typeCodes.end(), code);
    if (place == typeCodes.end())
        return {};
    const int type = int(place - typeCodes.begin());
    const CharacteristicLayout layout = characteristicLayout(type);
    const int most = headLines + layout.columns * (layout.isOfPairs ? 1 : layout.rows);
    const int fewest = layout.isOfPairs ? headLines + fewestPairs : most;
    return lineCount >= fewest && lineCount <= most ? std::optional(type) : std::nullopt;
}

/** Temperature and EMF of a line; two empty texts if it is no pair. */
QStringList pairOf(const QString &line)
{
    const QStringList parts = line.split(' ', Qt::SkipEmptyParts);
    if (parts.size() != 2)
        return {QString(), QString()};
    return {parts.at(0).trimmed(), parts.at(1).trimmed()};
}

bool areNumbers(const QStringList &texts)
{
    return std::all_of(texts.begin(), texts.end(), [](const QString &text) {
        bool isNumber = false;
        bFloat::str2Float(text, &isNumber);
        return isNumber;
    });
}

/** Whether the description of a file is its blank second line: then what follows the code is the
 *  data, and nothing else. `texts` are all lines that are not blank. */
bool isDescriptionBlank(const QStringList &texts)
{
    const std::optional<int> type = typeOf(texts.value(0).toInt(), texts.size() + 1);
    if (!type)
        return false;
    const QStringList parts = texts.at(1).split(' ', Qt::SkipEmptyParts);
    return parts.size() == (characteristicLayout(*type).isOfPairs ? 2 : 1) && areNumbers(parts);
}

/** The code, the description and the data. */
QStringList textsOf(const QByteArray &content)
{
    QStringList lines = fromWindows1251(content).split('\n');
    for (QString &line : lines)
        line = line.trimmed();
    const bool isSecondBlank = lines.size() > 1 && !lines.at(0).isEmpty() && lines.at(1).isEmpty();

    lines.removeAll(QString());
    if (isSecondBlank && isDescriptionBlank(lines))
        lines.insert(1, QString());
    return lines;
}

/** An empty column is written as zeros, which behind the last temperature would fall. Below zero a
 *  pair of zeros is the point at 0 °C, once. */
void emptyFillers(CellTexts &rows)
{
    const auto isZero = [&rows](int row, int column) {
        bool isNumber = false;
        const float number = bFloat::str2Float(rows.at(row).at(column), &isNumber);
        return isNumber && number == 0.0F;
    };
    int last = rows.at(temperatureRow).size() - 1;
    while (last > 0 && isZero(temperatureRow, last) && isZero(emfRow, last))
        --last;
    const bool isBelowZero = bFloat::str2Float(rows.at(temperatureRow).at(last)) < 0.0F;
    const int firstFiller = qMax(last + (isBelowZero ? 2 : 1), fewestPairs);
    for (QStringList &row : rows)
        std::fill(row.begin() + qMin(firstFiller, row.size()), row.end(), QString());
}

CellTexts rowsOf(int type, const QStringList &data)
{
    const CharacteristicLayout layout = characteristicLayout(type);
    CellTexts rows(layout.rows);
    if (layout.isOfPairs) {
        for (int column = 0; column < layout.columns; ++column) {
            const QStringList pair = pairOf(data.value(column));
            rows[temperatureRow] << pair.at(0);
            rows[emfRow] << pair.at(1);
        }
        emptyFillers(rows);
    } else {
        for (int row = 0; row < layout.rows; ++row)
            rows[row] = data.mid(row * layout.columns, layout.columns);
    }
    return rows;
}

} // namespace

bool writeCharacteristicFile(const CharacteristicFile &file, QIODevice &device)
{
    const QByteArray bytes = bytesOf(file);
    return !bytes.isEmpty() && device.write(bytes) == bytes.size();
}

CharacteristicFileReading readCharacteristicFile(QIODevice &device)
{
    const QStringList texts = textsOf(readWhole(device, longestFile));
    bool isCode = false;
    const int code = texts.value(0).toInt(&isCode);
    const std::optional<int> type = typeOf(code, texts.size());
    if (!type || !isCode)
        return {false, type, {}};
    return {true, type, {*type, texts.at(1), rowsOf(*type, texts.mid(headLines))}};
}

bool saveCharacteristicFile(const CharacteristicFile &file, const QString &fileName)
{
    const QByteArray bytes = bytesOf(file);
    return !bytes.isEmpty() && replaceFile(fileName, bytes);
}

CharacteristicFileReading loadCharacteristicFile(const QString &fileName)
{
    QFile file(fileName);
    // opening anything but a file could wait for ever
    if (!QFileInfo(fileName).isFile() || !file.open(QIODevice::ReadOnly))
        return {};
    return readCharacteristicFile(file);
}
