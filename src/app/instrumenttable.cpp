#include "app/instrumenttable.h"

#include "plot/qwtnox.h"
#include "serial/noxserialport.h"
#include "widgets/headedtable.h"
#include "widgets/qlabelclick.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QProgressBar>
#include <QSignalBlocker>

#include <algorithm>
#include <utility>

namespace
{

constexpr char indexProperty[] = "noxIndex";
constexpr int progressWidth = 50;

QCheckBox *showBoxAt(const QTableWidget *table, int row)
{
    return table->cellWidget(row, InstrumentColumn::Show)->findChild<QCheckBox *>();
}

QVector<TableColumn> columns()
{
    return {{InstrumentTable::tr("Графики прибора: флажок показывает и скрывает их,\n"
                                 "щелчок здесь (Ctrl+A) — графики всех приборов\n"
                                 "или только текущего"),
             QStringLiteral(":/resource/images/line_graph.png"), 50},
            {InstrumentTable::tr("Имя/тип"), QString(), 0},
            {InstrumentTable::tr("Номер"), QString(), 75},
            {InstrumentTable::tr("Результат"), QString(), 0},
            {InstrumentTable::tr("Разм."), QString(), 50},
            {InstrumentTable::tr("Канал"), QString(), 55},
            {InstrumentTable::tr("Меню прибора"),
             QStringLiteral(":/resource/images/settings_32.png"), 50}};
}

} // namespace

InstrumentTable::InstrumentTable(HeadedTable *table, const noxList *registry, const QwtNOX *plot,
                                 QObject *parent)
    : QObject(parent)
    , m_table(table)
    , m_registry(registry)
    , m_plot(plot)
    , m_hover(table, {InstrumentColumn::Menu})
{
    setUpTable(m_table, columns());
    m_table->setMenuColumns({InstrumentColumn::Menu});
    connect(qobject_cast<QLabelClick *>(m_table->cellWidget(0, InstrumentColumn::Show)),
            &QLabelClick::clicked, this, &InstrumentTable::toggleShowAll);
    connect(&m_hover, &RowHover::moved, this, [this](int from, int to) {
        for (const int row : {from, to})
            paintCells(row, InstrumentColumn::Menu, InstrumentColumn::Menu);
    });
}

void InstrumentTable::refresh(int currentIndex)
{
    const bool isOther = std::exchange(m_current, currentIndex) != currentIndex;
    const int before = m_rows.size();
    setRows(m_registry->indices());
    setRowCount(m_rows.size());
    for (int row = 1; row <= m_rows.size(); ++row) {
        Row &shown = m_rows[row - 1];
        const noxList::_nox &nox = *m_registry->getNoxByIndex(shown.index);
        shown.touched = false;
        if (!nox.isConnected() || shown.mark == ValueMark::Accepted)
            shown.mark = ValueMark::None;
        if (!nox.isConnected())
            m_table->removeCellWidget(row, InstrumentColumn::Menu); // its transfer is over
        const InstrumentState state = stateOf(nox);
        paintRow(m_table, row, instrumentRow(state));
        m_table->sayRow(row, state.name + QStringLiteral(" № ") + state.number);
        bindShowBox(row, nox, state);
    }
    selectTableRow(m_table, rowOf(m_current));
    if (isOther && m_rows.size() <= before)
        m_table->showRow(rowOf(m_current));
}

/** Instruments keep what they reported while others come and go. */
void InstrumentTable::setRows(const QList<int> &indices)
{
    QVector<Row> rows;
    QVector<int> rowByPlot;
    for (const int index : indices) {
        const int before = rowOf(index);
        const int qwtIndex = m_registry->getQWTIndex(index);
        if (qwtIndex >= rowByPlot.size())
            rowByPlot.insert(rowByPlot.size(), qwtIndex + 1 - rowByPlot.size(), -1);
        if (qwtIndex >= 0)
            rowByPlot[qwtIndex] = rows.size();
        rows.append(before < 1 ? Row{index} : m_rows.at(before - 1));
    }
    m_rows = rows;
    m_rowByPlot = rowByPlot;
}

int InstrumentTable::rowOf(int index) const
{
    const auto isIt = [index](const Row &row) { return row.index == index; };
    const auto found = std::find_if(m_rows.cbegin(), m_rows.cend(), isIt);
    return found == m_rows.cend() ? 0 : int(found - m_rows.cbegin()) + 1;
}

void InstrumentTable::refreshValue(int index)
{
    const int row = rowOf(index);
    const noxList::_nox *nox = m_registry->getNoxByIndex(index);
    if (row < 1 || !nox)
        return;
    paintRow(m_table, row, instrumentRow(stateOf(*nox)), InstrumentColumn::Value,
             InstrumentColumn::Channel);
}

void InstrumentTable::notePoint(int qwtIndex, uchar ch, ValueMark mark)
{
    const int position = m_rowByPlot.value(qwtIndex, -1);
    if (position < 0)
        return;
    Row &row = m_rows[position];
    row.channel = ch;
    row.mark = mark;
    row.touched = true;
}

void InstrumentTable::noteExchange(int index)
{
    const int row = rowOf(index);
    if (row >= 1)
        m_rows[row - 1].touched = true;
}

void InstrumentTable::paintTouched()
{
    for (Row &row : m_rows)
        if (std::exchange(row.touched, false))
            refreshValue(row.index);
}

void InstrumentTable::showProgress(int index, int progress, int maxProgress)
{
    const int row = rowOf(index);
    if (row < 1)
        return;
    if (progress == 0 && maxProgress == 0)
        return m_table->removeCellWidget(row, InstrumentColumn::Menu);
    auto *bar = qobject_cast<QProgressBar *>(m_table->cellWidget(row, InstrumentColumn::Menu));
    if (!bar) {
        bar = new QProgressBar;
        bar->setFixedWidth(progressWidth);
        bar->setTextVisible(false);
        bar->setAccessibleName(tr("Ход обмена с прибором"));
        bar->setMouseTracking(true); // so that the table hears of the mouse over it
        m_table->setCellWidget(row, InstrumentColumn::Menu, bar);
    }
    bar->setRange(0, maxProgress);
    if (progress < 0)
        bar->reset(); // the value is then -1, which setValue() may refuse
    else
        bar->setValue(progress);
}

void InstrumentTable::toggleShow(int row)
{
    if (indexAt(row) >= 0)
        showBoxAt(m_table, row)->click();
}

void InstrumentTable::toggleShowAll()
{
    QVector<int> rows; // of instruments that have curves
    for (int row = 1; row <= m_rows.size(); ++row)
        if (showBoxAt(m_table, row)->isEnabled())
            rows.append(row);
    const bool areAllShown = std::all_of(rows.cbegin(), rows.cend(), [this](int row) {
        return showBoxAt(m_table, row)->isChecked();
    });
    for (const int row : qAsConst(rows))
        showBoxAt(m_table, row)->setChecked(!areAllShown || indexAt(row) == m_current);
}

int InstrumentTable::indexAt(int row) const
{
    return m_rows.value(row - 1).index;
}

QPoint InstrumentTable::menuPlace(int row) const
{
    return placeBelowCell(m_table, row, InstrumentColumn::Menu);
}

void InstrumentTable::setRowCount(int instruments)
{
    const int before = m_table->rowCount();
    if (instruments + 1 < before) // rows move up: a bar would speak for another instrument
        for (int row = 1; row < before; ++row)
            m_table->removeCellWidget(row, InstrumentColumn::Menu);
    m_table->setRowCount(instruments + 1);
    for (int row = before; row <= instruments; ++row)
        addShowBox(row);
    if (instruments >= before)
        m_table->showRow(instruments);
}

void InstrumentTable::addShowBox(int row)
{
    auto *holder = new QWidget;
    auto *box = new QCheckBox;
    box->setFocusPolicy(Qt::NoFocus); // the table has the keyboard, see toggleShow()
    auto *layout = new QHBoxLayout(holder);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(box, 0, Qt::AlignCenter);
    for (QWidget *cell : {holder, static_cast<QWidget *>(box)})
        cell->setMouseTracking(true); // so that the table hears of the mouse over it
    connect(box, &QCheckBox::toggled, this, [this, box, row](bool shown) {
        emit showToggled(box->property(indexProperty).toInt(), shown);
        paintCells(row, InstrumentColumn::Show, InstrumentColumn::Show);
    });
    m_table->setCellWidget(row, InstrumentColumn::Show, holder);
}

/** Makes the box of a row speak for an instrument: rows move up when one above is removed. */
void InstrumentTable::bindShowBox(int row, const noxList::_nox &nox, const InstrumentState &state)
{
    QCheckBox *box = showBoxAt(m_table, row);
    const QSignalBlocker blocker(box);
    box->setProperty(indexProperty, nox.index);
    box->setAccessibleName(tr("Показать графики прибора %1 № %2").arg(state.name, state.number));
    box->setEnabled(m_plot->devices().contains(nox.qwtIndex));
    box->setChecked(state.shown);
}

void InstrumentTable::paintCells(int row, int first, int last)
{
    const noxList::_nox *nox = m_registry->getNoxByIndex(indexAt(row));
    if (nox)
        paintRow(m_table, row, instrumentRow(stateOf(*nox)), first, last);
}

InstrumentState InstrumentTable::stateOf(const noxList::_nox &nox) const
{
    Row latest = m_rows.value(rowOf(nox.index) - 1);
    // a model with fewer channels may have taken the place of the one that measured
    if (latest.channel >= m_plot->getChCount(nox.qwtIndex))
        latest = {};
    InstrumentState state;
    state.name = nox.opt->getDevName(false);
    state.number = nox.opt->getDevNumberStr();
    state.value = missingValue();
    state.unit = QStringLiteral("-"); // as the channels and the panel have it without a channel
    state.connected = nox.isConnected();
    const auto device = m_plot->devices().constFind(nox.qwtIndex);
    state.shown = device != m_plot->devices().constEnd() && device->devShow;
    state.exchanging = state.connected && m_registry->serialPort()->hasExchanges(nox.devIndex);
    state.current = nox.index == m_current;
    state.hovered = indexAt(m_hover.row()) == nox.index;
    state.mark = latest.mark;
    // below 0 the plot would answer for its main instrument
    const int channel = latest.channel >= 0 ? latest.channel : m_plot->getChMain(nox.qwtIndex);
    if (nox.qwtIndex < 0 || channel < 0)
        return state;
    state.channel = channel;
    readLatest(&state, *m_plot, nox, uchar(channel));
    return state;
}
