#pragma once

#include "device/featurenox8.h"

#include <QStringList>
#include <QVector>

#include <optional>

// What the editor's table of characteristics looks like, type by type, and how its texts are those
// of a characteristic.

/** Rows of a table of pairs. */
constexpr int temperatureRow = 0;
constexpr int emfRow = 1;

/** Texts of the cells, row by row. */
using CellTexts = QVector<QStringList>;

/** Place of a cell. */
struct TableCell {
    int row = 0;
    int column = 0;

    bool operator!=(const TableCell &other) const
    {
        return row != other.row || column != other.column;
    }
};

/** The table of one type. */
struct CharacteristicLayout {
    int rows = 0;
    int columns = 0;
    QStringList rowLabels;               ///< not shown when empty
    QStringList columnLabels;            ///< not shown when empty
    std::optional<TableCell> unusedCell; ///< reads "-" and cannot be entered
    int columnsInSight = 0;              ///< the others are scrolled to; 0: all share the width
    bool isOfPairs = false; ///< a column is a pair: a temperature, and the EMF below it

    bool isUsed(const TableCell &cell) const { return !unusedCell || *unusedCell != cell; }
};

/** The table of a type; without cells if it is none of the four. */
CharacteristicLayout characteristicLayout(int type);

/** The cells with nothing entered. */
CellTexts blankCells(const CharacteristicLayout &layout);

/** The cells as they show a characteristic, in the table of its type. */
CellTexts cellTexts(const FeatureRecord &feature);

/** The texts handed to a characteristic: those of all cells in use, but of pairs only those whose
 *  temperature is not empty. */
QStringList enteredValues(const CharacteristicLayout &layout, const CellTexts &cells);

/** The cells with other texts for what enteredValues() has taken from them, each at its place. */
CellTexts withValues(const CharacteristicLayout &layout, CellTexts cells,
                     const QStringList &values);

/** Cells of pairs with others from `firstColumn` on: the list has a temperature and its EMF in
 *  turn. What has no column any more is dropped. */
CellTexts withPairs(CellTexts cells, int firstColumn, const QStringList &pairs);

/** Columns of pairs whose EMF is not above that of the pair before. */
QVector<int> columnsNotRising(const CellTexts &cells);

/** Columns of pairs that are not handed on though they are not just what is still free at the end:
 *  no temperature, but an EMF, or a pair somewhere behind. */
QVector<int> columnsLeftOut(const CellTexts &cells);

/** A characteristic as it stands in the editor. */
struct CharacteristicEntry {
    int type = 0; ///< as FeatureRecord::_featureIndType
    QString name;
    QStringList values; ///< see enteredValues()
};

/**
 * The characteristic on which an editor works, and its record.
 *
 * A record that was loaded stays, byte by byte, as long as what is taken is what it shows. So does
 * each number, with digits that are not shown, when only another name is taken.
 */
class WorkingCopy
{
public:
    /** Becomes what the record tells; ignored unless it has 492 bytes. */
    void load(const QByteArray &record);

    /** Becomes what was entered; false, and nothing changes, when it is rejected (see
     *  enterFeature()). */
    bool take(const CharacteristicEntry &entry);

    const FeatureRecord &feature() const { return m_feature; }
    const QByteArray &record() const { return m_record; }

private:
    FeatureRecord m_feature;
    QByteArray m_record;
};
