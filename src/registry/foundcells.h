#pragma once

#include "widgets/rowdelegate.h"

class FoundInstrument;
class QCheckBox;
class QComboBox;
class QLineEdit;
class QTableWidget;

// The cells of the table of found instruments: what is in them, and how they look.

enum FoundColumn { PortColumn, NameColumn, NumberColumn, ConnectColumn };

/** Puts a text into a cell, which cannot be edited. */
void addText(QTableWidget *table, int row, int column, const QString &text);
/** Puts a check box into the middle of the last cell of a row. */
QCheckBox *addCheckBox(QTableWidget *table, int row);
/** Puts a list of the models that the operator can choose from into the name cell of a row. */
QComboBox *addModels(QTableWidget *table, int row, const FoundInstrument &instrument);
/** The check box of a row; null in the header. */
QCheckBox *checkBoxAt(const QTableWidget *table, int row);

/** Brings the cells of a row that waits for the operator up to what may be edited now, and to what
 *  is still missing. */
void paintCells(QTableWidget *table, int row, const FoundInstrument &instrument);

/** Lets an instrument's number, 1 to 65535, be entered into a table cell, and nothing else. */
class NumberDelegate : public RowDelegate
{
    Q_OBJECT
public:
    using RowDelegate::RowDelegate;

    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &option,
                          const QModelIndex &index) const override;
    void setEditorData(QWidget *editor, const QModelIndex &index) const override;
    void setModelData(QWidget *editor, QAbstractItemModel *model,
                      const QModelIndex &index) const override;
    /** Takes what was typed so far, if it is a number, and ends the typing. */
    void finish(QLineEdit *editor);
};
