#pragma once

#include "registry/foundinstrument.h"

#include <QObject>
#include <QVector>

#include <functional>

class HeadedTable;
class NumberDelegate;
class QKeyEvent;
class QLineEdit;
class QTableWidgetItem;

/**
 * The table of the discovery dialog: row 0 is its header, instruments follow.
 *
 * While a search runs it lists those that are being connected. After it, it lets the operator
 * describe those that wait, by mouse or by keyboard, and marks what is still missing to connect
 * them. What is being typed into one row survives whatever happens to the others.
 */
class FoundTable : public QObject
{
    Q_OBJECT
public:
    /** A row that waits for the operator. */
    struct WaitingRow {
        int index; ///< in the dialog's registry
        FoundInstrument instrument;
    };

    /** Fills `table`, which it does not own. */
    explicit FoundTable(HeadedTable *table);

    /** Leaves only the header. */
    void clear();
    /** An instrument that is connected without being asked about; the newest comes first. */
    void addRecognised(const QString &portName, const QString &name, const QString &number);
    /** An instrument that waits for the operator; only after clear(). */
    void addWaiting(const WaitingRow &waiting, const QString &portName);
    /** The row of a waiting instrument goes, if it has one. */
    void removeWaiting(int index);
    /** What the operator has entered so far. */
    const QVector<WaitingRow> &waiting() const { return m_rows; }
    /** Enters a number that is still being typed. */
    void takeTypedNumber();

    /** The mouse clicked into a cell. */
    void click(int row, int column);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    bool isWaiting(int row) const { return row >= 1 && row <= m_rows.size(); }
    void addTitles();
    void change(int index, const std::function<void(FoundInstrument &)> &change);
    void paint(int row);
    void takeNumber(const QTableWidgetItem *cell);
    QLineEdit *numberEditor() const;
    void leaveModels(int row, int column, int formerColumn);
    void openModels(int row);
    void editNumber(int row, const QString &typed = QString());
    void toggle(int row);
    void toggleAll();
    bool pressKey(const QKeyEvent &event);
    bool pressRowKey(int row, const QKeyEvent &event);

    HeadedTable *m_table;
    NumberDelegate *m_numbers;  ///< child of the table
    QVector<WaitingRow> m_rows; ///< of table row 1, 2, ... once the search is over
};
