#include "recordedrows.h"

#include <QFile>

#include <algorithm>

namespace
{

constexpr int headerLines = 4;
constexpr int fieldsBeforeValues = 2; // number and time
constexpr char separator = ';';

bool isValue(const QByteArray &field)
{
    bool isNumber = false;
    field.toDouble(&isNumber);
    return field == "--" || (isNumber && field.contains('.'));
}

/** Whether a line is the row of this number, with so many values, and all of it is there. */
bool isWhole(const QByteArray &line, int number, int values)
{
    QList<QByteArray> fields = line.split(separator);
    if (!line.endsWith(";\r") || fields.takeLast() != "\r" ||
        fields.size() != fieldsBeforeValues + values)
        return false;
    bool hasTime = false;
    fields.at(1).toDouble(&hasTime);
    return fields.first().toInt() == number && hasTime &&
           std::all_of(fields.begin() + fieldsBeforeValues, fields.end(), isValue);
}

} // namespace

RecordedRows readRecordedRows(const QString &fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QList<QByteArray> lines = file.readAll().split('\n');
    RecordedRows rows;
    rows.damaged = !lines.takeLast().isEmpty(); // what stands behind the last line end
    if (lines.size() < headerLines)
        return rows;
    const int values = lines.at(headerLines - 1).count(separator) - fieldsBeforeValues;
    const int firstNumber = lines.value(headerLines).split(separator).first().toInt();
    for (int line = headerLines; line < lines.size(); ++line) {
        if (isWhole(lines.at(line), firstNumber + rows.whole, values))
            ++rows.whole;
        else
            ++rows.damaged;
    }
    return rows;
}
