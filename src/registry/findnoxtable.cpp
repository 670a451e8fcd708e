#include "registry/findnox.h"
#include "ui_findnox.h"
#include "widgets/qlabelclick.h"

#include <QCheckBox>
#include <QComboBox>
#include <QHBoxLayout>
#include <QHeaderView>

// The table of the discovery dialog: row 0 is its header, instruments follow.

namespace
{

enum Column { PortColumn, NameColumn, NumberColumn, ConnectColumn };

constexpr int portWidth = 100;
constexpr int numberWidth = 100;
constexpr int pictureSize = 24;

QTableWidgetItem *newItem(const QString &text, Qt::ItemFlags flags = Qt::ItemIsEnabled)
{
    auto *const item = new QTableWidgetItem(text);
    item->setTextAlignment(Qt::AlignCenter);
    item->setFlags(flags);
    return item;
}

/** A number that may be entered, or is shown as what may not. */
QTableWidgetItem *newNumber(const QString &text, bool isEditable)
{
    return newItem(text, isEditable ? Qt::ItemIsEnabled | Qt::ItemIsEditable | Qt::ItemIsSelectable
                                    : Qt::ItemFlags(Qt::NoItemFlags));
}

/** A check box in the middle of its cell. */
QCheckBox *addCheckBox(QTableWidget *table, int row)
{
    auto *const cell = new QWidget;
    auto *const box = new QCheckBox(cell);
    auto *const layout = new QHBoxLayout(cell);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(box, 0, Qt::AlignCenter);
    table->setCellWidget(row, ConnectColumn, cell);
    return box;
}

QCheckBox *checkBoxAt(const QTableWidget *table, int row)
{
    const QWidget *const cell = table->cellWidget(row, ConnectColumn);
    return cell ? cell->findChild<QCheckBox *>() : nullptr;
}

} // namespace

void findNox::buildTable()
{
    QTableWidget *const table = m_ui->newDevTable;
    table->horizontalHeader()->setMinimumSectionSize(pictureSize);
    table->setColumnWidth(PortColumn, portWidth);
    table->horizontalHeader()->setSectionResizeMode(NameColumn, QHeaderView::Stretch);
    table->setColumnWidth(NumberColumn, numberWidth);
    table->setColumnWidth(ConnectColumn, 2 * pictureSize);
    table->setRowCount(1);
    const QStringList titles = {tr("Порт"), tr("Имя/тип прибора"), tr("№ прибора")};
    for (int column = PortColumn; column <= NumberColumn; ++column) {
        auto *const title = new QLabel(titles.at(column));
        title->setAlignment(Qt::AlignCenter);
        table->setCellWidget(0, column, title);
    }
    auto *const connectAll = new QLabelClick;
    connectAll->setAlignment(Qt::AlignCenter);
    connectAll->setPixmap(
        QIcon(QStringLiteral(":/resource/images/connect.png")).pixmap(pictureSize, pictureSize));
    connectAll->setCursor(Qt::PointingHandCursor);
    table->setCellWidget(0, ConnectColumn, connectAll);
    connect(connectAll, &QLabelClick::clicked, this, &findNox::toggleAll);
}

void findNox::clearTable()
{
    m_rows.clear();
    m_ui->newDevTable->setRowCount(1);
}

/** An instrument that is being connected without being asked about; the newest comes first. */
void findNox::addRecognisedRow(const noxList::_nox &found)
{
    QTableWidget *const table = m_ui->newDevTable;
    table->insertRow(1);
    table->setItem(1, PortColumn, newItem(found.portName));
    table->setItem(1, NameColumn, newItem(found.opt->getDevName(false)));
    table->setItem(1, NumberColumn, newItem(found.opt->getDevNumberStr()));
    QCheckBox *const box = addCheckBox(table, 1);
    box->setChecked(true);
    box->setEnabled(false);
}

/** One row for each instrument that waits for the operator. */
void findNox::showWaiting()
{
    QTableWidget *const table = m_ui->newDevTable;
    table->setRowCount(1);
    for (int i = 0; i < m_rows.size(); ++i) {
        const FoundInstrument &instrument = m_rows.at(i).instrument;
        const int row = i + 1;
        table->insertRow(row);
        table->setItem(row, PortColumn,
                       newItem(m_found->getNoxByIndex(m_rows.at(i).index)->portName));
        auto *const models = new QComboBox;
        for (const ModelChoice &model : instrument.models())
            models->addItem(model.name, model.typeCode);
        models->setCurrentIndex(instrument.model());
        table->setCellWidget(row, NameColumn, models);
        table->setItem(row, NumberColumn, newNumber(instrument.number(), false));
        QCheckBox *const box = addCheckBox(table, row);
        paintWaitingRow(i);
        connect(models, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
                [this, i](int model) {
                    m_rows[i].instrument.chooseModel(model);
                    paintWaitingRow(i);
                });
        connect(box, &QCheckBox::toggled, this, [this, i](bool checked) {
            m_rows[i].instrument.check(checked);
            paintWaitingRow(i);
        });
    }
}

/** Brings the cells of a row up to what may be edited now. */
void findNox::paintWaitingRow(int i)
{
    QTableWidget *const table = m_ui->newDevTable;
    const FoundInstrument &instrument = m_rows.at(i).instrument;
    const int row = i + 1;
    const QString number = table->item(row, NumberColumn)->text();
    table->setItem(row, NumberColumn, newNumber(number, instrument.isNumberEditable()));
    QCheckBox *const box = checkBoxAt(table, row);
    const QSignalBlocker noEcho(box);
    box->setChecked(instrument.isChecked());
    box->setEnabled(instrument.isCheckEnabled());
}

/** Takes the numbers that the operator has entered. */
void findNox::readNumbers()
{
    for (int i = 0; i < m_rows.size(); ++i)
        m_rows[i].instrument.enterNumber(m_ui->newDevTable->item(i + 1, NumberColumn)->text());
}

void findNox::on_newDevTable_cellClicked(int row, int column)
{
    if (row < 1 || row > m_rows.size())
        return;
    QTableWidget *const table = m_ui->newDevTable;
    QCheckBox *const box = checkBoxAt(table, row);
    if (column == ConnectColumn && box && box->isEnabled())
        box->toggle();
    // the table has no edit triggers of its own
    if (column == NumberColumn && m_rows.at(row - 1).instrument.isNumberEditable())
        table->editItem(table->item(row, NumberColumn));
}

/** Every row takes the opposite of what the first one has. */
void findNox::toggleAll()
{
    if (m_rows.isEmpty())
        return;
    const bool checked = !m_rows.first().instrument.isChecked();
    for (int i = 0; i < m_rows.size(); ++i)
        checkBoxAt(m_ui->newDevTable, i + 1)->setChecked(checked);
}
