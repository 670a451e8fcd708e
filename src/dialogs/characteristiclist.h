#pragma once

#include <QObject>

class QTableWidget;
class optionsNOX8;
struct ConfigurationChanges;

/** The table of the instrument's own characteristics; a double click or Enter opens one. */
class CharacteristicList : public QObject
{
    Q_OBJECT
public:
    explicit CharacteristicList(QTableWidget *table);

    void refresh(const optionsNOX8 &image, const ConfigurationChanges &changes);

signals:
    /** The characteristic of this row is wanted by the keyboard. */
    void opened(int row);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QTableWidget *m_table;
};
