#pragma once

#include "calibration/characteristictable.h"

#include <QTableWidget>

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
