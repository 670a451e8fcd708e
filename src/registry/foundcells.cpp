#include "registry/foundcells.h"

#include "registry/foundinstrument.h"
#include "registry/foundtable.h"

#include <QCheckBox>
#include <QComboBox>
#include <QHBoxLayout>
#include <QIntValidator>
#include <QLineEdit>
#include <QTableWidget>

namespace
{

constexpr int largestNumber = 65535;

/** The ground of a cell in which something is still missing. */
QColor incompleteColor()
{
    return {255, 236, 179};
}

/** Of digits alone: the user's locale would take and put in separators of thousands. */
QLocale plainNumbers()
{
    QLocale locale = QLocale::c();
    locale.setNumberOptions(QLocale::OmitGroupSeparator | QLocale::RejectGroupSeparator);
    return locale;
}

/** By a style: where a style sheet is set, it does not look at the palette of an editor. */
void markUnacceptable(QLineEdit *editor)
{
    editor->setStyleSheet(editor->hasAcceptableInput()
                              ? QString()
                              : QStringLiteral("background: ") + incompleteColor().name());
}

QString chooseModelFirst()
{
    return FoundTable::tr("Выберите модель прибора");
}

QBrush groundOf(bool isIncomplete)
{
    return isIncomplete ? QBrush(incompleteColor()) : QBrush();
}

// Each touches only what changes: an item that is touched takes back what is being typed in it.

void paintNumber(QTableWidgetItem *item, const FoundInstrument &instrument)
{
    const Qt::ItemFlags flags = instrument.isNumberEditable()
                                    ? Qt::ItemIsEnabled | Qt::ItemIsEditable | Qt::ItemIsSelectable
                                    : Qt::ItemFlags(Qt::NoItemFlags);
    if (item->flags() != flags)
        item->setFlags(flags);
    item->setBackground(groundOf(instrument.lacksNumber()));
    if (instrument.isNumberEditable())
        item->setToolTip(FoundTable::tr("Введите номер прибора, от 1 до 65535"));
    else
        item->setToolTip(instrument.lacksModel() ? chooseModelFirst() : QString());
}

void paintModels(QWidget *models, const FoundInstrument &instrument)
{
    const QColor ground = instrument.lacksModel() ? incompleteColor() : QColor();
    QPalette palette;
    if (ground.isValid())
        palette.setColor(QPalette::Button, ground);
    models->setPalette(palette);
    models->setToolTip(instrument.lacksModel() ? chooseModelFirst() : QString());
}

QString checkTip(const FoundInstrument &instrument)
{
    if (instrument.lacksModel())
        return chooseModelFirst();
    if (!instrument.isChecked() && !instrument.isCheckEnabled())
        return FoundTable::tr("Отметить снова можно щелчком по заголовку столбца (Ctrl+A)");
    if (!instrument.isChecked())
        return FoundTable::tr("Отметьте прибор, чтобы подключиться к нему");
    return instrument.lacksNumber() ? FoundTable::tr("Без номера прибор не подключится")
                                    : FoundTable::tr("Прибор будет подключён");
}

void paintCheck(QTableWidgetItem *item, QCheckBox *box, const FoundInstrument &instrument)
{
    const QSignalBlocker noEcho(box);
    box->setChecked(instrument.isChecked());
    box->setEnabled(instrument.isCheckEnabled());
    item->setBackground(groundOf(instrument.lacksCheck()));
    item->setToolTip(checkTip(instrument));
    box->setToolTip(item->toolTip());
    box->parentWidget()->setToolTip(item->toolTip());
}

} // namespace

QWidget *NumberDelegate::createEditor(QWidget *parent, const QStyleOptionViewItem &,
                                      const QModelIndex &) const
{
    auto *const editor = new QLineEdit(parent);
    editor->setAlignment(Qt::AlignCenter);
    editor->setFrame(false);
    auto *const validator = new QIntValidator(1, largestNumber, editor);
    validator->setLocale(plainNumbers());
    editor->setValidator(validator);
    markUnacceptable(editor);
    connect(editor, &QLineEdit::textChanged, editor, [editor] { markUnacceptable(editor); });
    editor->setPlaceholderText(QStringLiteral("1…%1").arg(largestNumber));
    editor->setAccessibleName(tr("Номер прибора"));
    return editor;
}

/** What stands for an unknown number is nothing to begin with. */
void NumberDelegate::setEditorData(QWidget *editor, const QModelIndex &index) const
{
    auto *const line = static_cast<QLineEdit *>(editor);
    line->setText(index.data().toString());
    if (!line->hasAcceptableInput())
        line->clear();
}

void NumberDelegate::setModelData(QWidget *editor, QAbstractItemModel *model,
                                  const QModelIndex &index) const
{
    const auto *const line = static_cast<const QLineEdit *>(editor);
    if (line->hasAcceptableInput())
        model->setData(index, line->text());
}

void NumberDelegate::finish(QLineEdit *editor)
{
    emit commitData(editor);
    emit closeEditor(editor);
}

void addText(QTableWidget *table, int row, int column, const QString &text)
{
    auto *const item = new QTableWidgetItem(text);
    item->setTextAlignment(Qt::AlignCenter);
    item->setFlags(Qt::ItemIsEnabled);
    table->setItem(row, column, item);
}

QCheckBox *addCheckBox(QTableWidget *table, int row)
{
    auto *const cell = new QWidget;
    auto *const box = new QCheckBox(cell);
    auto *const layout = new QHBoxLayout(cell);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(box, 0, Qt::AlignCenter);
    box->setFocusPolicy(Qt::NoFocus);
    table->setCellWidget(row, ConnectColumn, cell);
    return box;
}

QComboBox *addModels(QTableWidget *table, int row, const FoundInstrument &instrument)
{
    auto *const models = new QComboBox;
    models->setFocusPolicy(Qt::NoFocus); // the table keeps the focus, and opens the list by a key
    for (const ModelChoice &model : instrument.models())
        models->addItem(model.name, model.typeCode);
    models->setCurrentIndex(instrument.model());
    table->setCellWidget(row, NameColumn, models);
    return models;
}

QCheckBox *checkBoxAt(const QTableWidget *table, int row)
{
    const QWidget *const cell = table->cellWidget(row, ConnectColumn);
    return cell ? cell->findChild<QCheckBox *>() : nullptr;
}

void paintCells(QTableWidget *table, int row, const FoundInstrument &instrument)
{
    paintNumber(table->item(row, NumberColumn), instrument);
    paintModels(table->cellWidget(row, NameColumn), instrument);
    paintCheck(table->item(row, ConnectColumn), checkBoxAt(table, row), instrument);
}
