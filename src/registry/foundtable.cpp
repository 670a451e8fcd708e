#include "registry/foundtable.h"

#include "registry/foundcells.h"
#include "widgets/accessiblerole.h"
#include "widgets/headedtable.h"
#include "widgets/qlabelclick.h"

#include <QCheckBox>
#include <QComboBox>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLineEdit>

namespace
{

constexpr int portWidth = 100;
constexpr int numberWidth = 100;
constexpr int pictureSize = 24;

} // namespace

FoundTable::FoundTable(HeadedTable *table)
    : m_table(table)
    , m_numbers(new NumberDelegate(table))
{
    m_table->horizontalHeader()->setMinimumSectionSize(pictureSize);
    m_table->setColumnWidth(PortColumn, portWidth);
    m_table->horizontalHeader()->setSectionResizeMode(NameColumn, QHeaderView::Stretch);
    m_table->setColumnWidth(NumberColumn, numberWidth);
    m_table->setColumnWidth(ConnectColumn, 2 * pictureSize);
    m_table->setItemDelegate(new RowDelegate(m_table));
    m_table->setItemDelegateForColumn(NumberColumn, m_numbers);
    m_table->setToolTip(tr("Стрелки выбирают прибор, пробел отмечает его, цифры вводят номер, "
                           "F4 открывает список моделей"));
    addTitles();
    connect(m_table, &QTableWidget::itemChanged, this, &FoundTable::takeNumber);
    connect(m_table, &QTableWidget::currentCellChanged, this,
            [this](int row, int column, int, int formerColumn) {
                leaveModels(row, column, formerColumn);
            });
    connect(m_table, &HeadedTable::showToggled, this, &FoundTable::toggle);
    connect(m_table, &HeadedTable::menuWanted, this, &FoundTable::openModels);
    m_table->installEventFilter(this);
}

void FoundTable::addTitles()
{
    m_table->setRowCount(1);
    const QStringList titles = {tr("Порт"), tr("Имя/тип прибора"), tr("№ прибора")};
    for (int column = PortColumn; column <= NumberColumn; ++column) {
        auto *const title = new QLabel(titles.at(column));
        title->setAlignment(Qt::AlignCenter);
        m_table->setCellWidget(0, column, title);
    }
    auto *const connectAll = new QLabelClick;
    connectAll->setAlignment(Qt::AlignCenter);
    connectAll->setPixmap(
        QIcon(QStringLiteral(":/resource/images/connect.png")).pixmap(pictureSize, pictureSize));
    connectAll->setCursor(Qt::PointingHandCursor);
    connectAll->setToolTip(tr("Отметить все приборы или снять отметки (Ctrl+A)"));
    m_table->setCellWidget(0, ConnectColumn, connectAll);
    m_table->sayTitles(titles + QStringList(tr("Подключить")));
    connect(connectAll, &QLabelClick::clicked, this, &FoundTable::toggleAll);
}

void FoundTable::clear()
{
    m_rows.clear();
    m_table->setRowCount(1);
}

void FoundTable::addRecognised(const QString &portName, const QString &name, const QString &number)
{
    m_table->insertRow(1);
    addText(m_table, 1, PortColumn, portName);
    addText(m_table, 1, NameColumn, name);
    addText(m_table, 1, NumberColumn, number);
    QCheckBox *const box = addCheckBox(m_table, 1);
    box->setChecked(true);
    box->setEnabled(false);
}

void FoundTable::addWaiting(const WaitingRow &waiting, const QString &portName)
{
    const int row = m_rows.size() + 1;
    m_table->insertRow(row);
    m_table->sayRow(row, portName);
    addText(m_table, row, PortColumn, portName);
    addText(m_table, row, NumberColumn, waiting.instrument.number());
    addText(m_table, row, ConnectColumn, QString());
    QComboBox *const models = addModels(m_table, row, waiting.instrument);
    models->setAccessibleName(tr("Модель прибора, порт %1").arg(portName));
    sayName(models);
    QCheckBox *const box = addCheckBox(m_table, row);
    box->setAccessibleName(tr("Подключить прибор, порт %1").arg(portName));
    m_rows.append(waiting);
    paint(row);

    connect(models, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
            [this, index = waiting.index](int model) {
                change(index,
                       [model](FoundInstrument &instrument) { instrument.chooseModel(model); });
            });
    connect(box, &QCheckBox::toggled, this, [this, index = waiting.index](bool checked) {
        change(index, [checked](FoundInstrument &instrument) { instrument.check(checked); });
    });
}

void FoundTable::removeWaiting(int index)
{
    for (int i = 0; i < m_rows.size(); ++i) {
        if (m_rows.at(i).index != index)
            continue;
        m_rows.remove(i);
        m_table->removeRow(i + 1);
        return;
    }
}

/** The operator changes what is known of an instrument. */
void FoundTable::change(int index, const std::function<void(FoundInstrument &)> &change)
{
    takeTypedNumber();
    for (int i = 0; i < m_rows.size(); ++i) {
        if (m_rows.at(i).index != index)
            continue;
        change(m_rows[i].instrument);
        paint(i + 1);
    }
}

/** Brings the cells of a row up to what may be edited now, and to what is still missing. */
void FoundTable::paint(int row)
{
    const QSignalBlocker noEcho(m_table);
    paintCells(m_table, row, m_rows.at(row - 1).instrument);
}

// The number

void FoundTable::takeNumber(const QTableWidgetItem *cell)
{
    if (cell->column() != NumberColumn || !isWaiting(cell->row()))
        return;
    m_rows[cell->row() - 1].instrument.enterNumber(cell->text());
    paint(cell->row());
}

/** Where a number is being typed; null when none is. */
QLineEdit *FoundTable::numberEditor() const
{
    return m_table->viewport()->findChild<QLineEdit *>();
}

void FoundTable::takeTypedNumber()
{
    QLineEdit *const editor = numberEditor();
    if (!editor)
        return;
    m_numbers->finish(editor);
}

/** The table has no edit triggers of its own; `typed` is what the number begins with. */
void FoundTable::editNumber(int row, const QString &typed)
{
    if (!m_rows.at(row - 1).instrument.isNumberEditable())
        return;
    m_table->editItem(m_table->item(row, NumberColumn));
    if (!typed.isEmpty())
        numberEditor()->insert(typed);
}

// The operator

void FoundTable::click(int row, int column)
{
    if (!isWaiting(row))
        return;
    if (column == ConnectColumn)
        toggle(row);
    if (column == NumberColumn)
        editNumber(row);
}

void FoundTable::openModels(int row)
{
    if (isWaiting(row))
        static_cast<QComboBox *>(m_table->cellWidget(row, NameColumn))->showPopup();
}

/** The list of models covers its cell, where nobody would see that it is the current one. */
void FoundTable::leaveModels(int row, int column, int formerColumn)
{
    if (column == NameColumn && isWaiting(row))
        m_table->setCurrentCell(row, formerColumn > NameColumn ? PortColumn : NumberColumn);
}

void FoundTable::toggle(int row)
{
    QCheckBox *const box = checkBoxAt(m_table, row);
    if (isWaiting(row) && box->isEnabled())
        box->toggle();
}

/** Every row takes the opposite of what the first one has. */
void FoundTable::toggleAll()
{
    if (m_rows.isEmpty())
        return;
    const bool checked = !m_rows.first().instrument.isChecked();
    for (int row = 1; row <= m_rows.size(); ++row)
        checkBoxAt(m_table, row)->setChecked(checked);
}

/** Keys do in the table what the mouse does in its cells. */
bool FoundTable::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::KeyPress && pressKey(*static_cast<const QKeyEvent *>(event)))
        return true;
    return QObject::eventFilter(watched, event);
}

bool FoundTable::pressKey(const QKeyEvent &event)
{
    if (numberEditor()) // Return ends the typing, and not the dialog
        return event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
    if (event.matches(QKeySequence::SelectAll)) {
        toggleAll();
        return true;
    }
    const int row = m_table->currentRow();
    return isWaiting(row) && pressRowKey(row, event);
}

bool FoundTable::pressRowKey(int row, const QKeyEvent &event)
{
    const QString text = event.text();
    const bool opensList = event.key() == Qt::Key_Down && event.modifiers() & Qt::AltModifier;
    if (opensList || event.key() == Qt::Key_F4)
        openModels(row);
    else if (event.key() == Qt::Key_F2)
        editNumber(row);
    else if (text.size() == 1 && text.at(0).isDigit())
        editNumber(row, text);
    else
        return false;
    return true;
}
