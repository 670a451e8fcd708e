#include "calibration/characteristictable.h"

#include "device/featurenox8.h"

#include <QCoreApplication>

namespace
{

struct TableTexts {
    Q_DECLARE_TR_FUNCTIONS(CharacteristicTable)
};

QStringList numbersTo(int last)
{
    QStringList numbers;
    for (int number = 1; number <= last; ++number)
        numbers << QString::number(number);
    return numbers;
}

QString textAt(const CellTexts &cells, const TableCell &cell)
{
    return cells.value(cell.row).value(cell.column);
}

void setText(CellTexts &cells, const TableCell &cell, const QString &text)
{
    cells[cell.row][cell.column] = text;
}

bool hasText(const CellTexts &cells, int row, int column)
{
    return !textAt(cells, {row, column}).trimmed().isEmpty();
}

int columnCount(const CellTexts &cells)
{
    return cells.value(temperatureRow).size();
}

/** The cells in the order of the characteristic's values. */
QVector<TableCell> valueCells(const CharacteristicLayout &layout)
{
    QVector<TableCell> cells;
    if (layout.isOfPairs)
        for (int column = 0; column < layout.columns; ++column)
            cells << TableCell{temperatureRow, column} << TableCell{emfRow, column};
    else
        for (int row = 0; row < layout.rows; ++row)
            for (int column = 0; column < layout.columns; ++column)
                if (layout.isUsed({row, column}))
                    cells << TableCell{row, column};
    return cells;
}

/** Those of them that are handed on. */
QVector<TableCell> enteredCells(const CharacteristicLayout &layout, const CellTexts &cells)
{
    QVector<TableCell> entered;
    for (const TableCell &cell : valueCells(layout))
        if (!layout.isOfPairs || hasText(cells, temperatureRow, cell.column))
            entered << cell;
    return entered;
}

bool hasNumbersOf(const FeatureRecord &feature, const CharacteristicEntry &entry)
{
    if (entry.type != feature.type)
        return false;
    const CharacteristicLayout layout = characteristicLayout(feature.type);
    return entry.values ==
           (layout.isOfPairs ? feature.ratioStr : enteredValues(layout, cellTexts(feature)));
}

} // namespace

CharacteristicLayout characteristicLayout(int type)
{
    CharacteristicLayout layout;
    switch (type) {
    case FeatureRecord::polynomial:
        layout.rows = 2;
        layout.columns = 5;
        layout.rowLabels = QStringList{TableTexts::tr("C0..C4"), TableTexts::tr("C5..C9")};
        break;
    case FeatureRecord::callendarVanDusen:
        layout.rows = 1;
        layout.columns = 6;
        layout.columnLabels =
            QStringList{TableTexts::tr("R0"), TableTexts::tr("A"),    TableTexts::tr("B"),
                        TableTexts::tr("C"),  TableTexts::tr("Tmin"), TableTexts::tr("Tmax")};
        break;
    case FeatureRecord::its90:
        layout.rows = 2;
        layout.columns = 5;
        layout.rowLabels =
            QStringList{TableTexts::tr("Rтт, M, b, c1"), TableTexts::tr("A, B, C, D, W(660.323)")};
        layout.unusedCell = TableCell{0, 4};
        break;
    case FeatureRecord::temperatureOfVoltage:
        layout.rows = 2;
        layout.columns = FeatureRecord::ratioCount / 2;
        layout.rowLabels = QStringList{TableTexts::tr("T, °С"), TableTexts::tr("ТЭДС, мВ")};
        layout.columnLabels = numbersTo(layout.columns);
        layout.columnsInSight = 7;
        layout.isOfPairs = true;
        break;
    default:
        break;
    }
    return layout;
}

CellTexts blankCells(const CharacteristicLayout &layout)
{
    QStringList row;
    for (int column = 0; column < layout.columns; ++column)
        row << QString();
    CellTexts cells(layout.rows, row);
    if (layout.unusedCell)
        setText(cells, *layout.unusedCell, QStringLiteral("-"));
    return cells;
}

CellTexts cellTexts(const FeatureRecord &feature)
{
    const CharacteristicLayout layout = characteristicLayout(feature.type);
    CellTexts cells = blankCells(layout);
    int index = 0;
    for (const TableCell &cell : valueCells(layout))
        setText(cells, cell, feature.ratioStr.value(index++));
    return cells;
}

QStringList enteredValues(const CharacteristicLayout &layout, const CellTexts &cells)
{
    QStringList values;
    for (const TableCell &cell : enteredCells(layout, cells))
        values << textAt(cells, cell);
    return values;
}

CellTexts withValues(const CharacteristicLayout &layout, CellTexts cells, const QStringList &values)
{
    int index = 0;
    for (const TableCell &cell : enteredCells(layout, cells))
        setText(cells, cell, values.value(index++));
    return cells;
}

CellTexts withPairs(CellTexts cells, int firstColumn, const QStringList &pairs)
{
    const int count = qMin(pairs.size() / 2, columnCount(cells) - firstColumn);
    for (int k = 0; k < count; ++k) {
        setText(cells, {temperatureRow, firstColumn + k}, pairs.at(2 * k));
        setText(cells, {emfRow, firstColumn + k}, pairs.at(2 * k + 1));
    }
    return cells;
}

QVector<int> columnsNotRising(const CellTexts &cells)
{
    QVector<int> columns;
    std::optional<float> before;
    for (int column = 0; column < columnCount(cells); ++column) {
        bool isNumber = false;
        const float emf = bFloat::str2Float(textAt(cells, {emfRow, column}), &isNumber);
        if (!isNumber || !hasText(cells, temperatureRow, column) || !hasText(cells, emfRow, column))
            continue;
        if (before && !(emf > *before))
            columns << column;
        before = emf;
    }
    return columns;
}

QVector<int> columnsLeftOut(const CellTexts &cells)
{
    int end = columnCount(cells);
    while (end > 0 && !hasText(cells, temperatureRow, end - 1))
        --end;
    QVector<int> columns;
    for (int column = 0; column < columnCount(cells); ++column)
        if (!hasText(cells, temperatureRow, column) &&
            (column < end || hasText(cells, emfRow, column)))
            columns << column;
    return columns;
}

void WorkingCopy::load(const QByteArray &record)
{
    if (decodeFeature(record, m_feature))
        m_record = record;
}

bool WorkingCopy::take(const CharacteristicEntry &entry)
{
    FeatureRecord entered = m_feature;
    const EntryResult result =
        enterFeature(entered, FeatureRecord::_featureIndType(entry.type), entry.name, entry.values);
    const bool hasSameNumbers = hasNumbersOf(m_feature, entry);
    if (hasSameNumbers && entry.name == m_feature.name)
        return result != EntryResult::Rejected; // a type without a table has the wrong count
    if (result != EntryResult::Stored)
        return false;

    if (hasSameNumbers)
        m_feature.name = entered.name;
    else
        m_feature = entered;
    m_record = encodeFeature(m_feature);
    return true;
}
