#pragma once

#include "calibration/characteristictable.h"
#include "widgets/rowdelegate.h"

#include <QTableWidget>

/**
 * Edits and paints the cells of an entry table: a refresh does not take away what is being typed, a
 * text too long for its cell is written smaller, and a cell that is not in use has a ground of its
 * own.
 */
class EntryDelegate : public RowDelegate
{
    Q_OBJECT
public:
    using RowDelegate::RowDelegate;

    void setEditorData(QWidget *editor, const QModelIndex &index) const override;

protected:
    void initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const override;
};

/** Gives a table its empty cells, which share all of its space evenly, and their delegate. */
void prepareEntryTable(QTableWidget *table);

/** Shows a text in an item of an entry table, in which something can be entered if it is in use. */
void showEntry(QTableWidgetItem *item, const QString &text, bool isInUse);

/**
 * The table of the editor of characteristics.
 *
 * What is shown from outside does not take away what is being typed in a cell. Arrows move, Return,
 * F2 or typing begins to edit, Tab leaves.
 */
class RatioTable : public QTableWidget
{
    Q_OBJECT
public:
    explicit RatioTable(QWidget *parent = nullptr);

    /** Becomes the table of a type; cells that it had before keep their texts. */
    void showLayout(const CharacteristicLayout &layout);
    /** Shows texts, one for each cell that is in use. */
    void showTexts(const CellTexts &texts);
    /** Marks the EMFs of these columns of pairs, and no others, as not rising. */
    void markNotRising(const QVector<int> &columns);

    /** The texts of the cells in use, as showTexts() takes them. */
    CellTexts texts() const;
    /** Takes over what is being typed. */
    void endEdit();

    QSize sizeHint() const override;

signals:
    /** The text of a cell was changed, but not by showTexts(). */
    void edited();

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    QTableWidgetItem *provideItem(int row, int column);
    void sizeColumns();

    int m_columnsInSight = 0;
};
