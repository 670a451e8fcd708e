#include "app/channeltable.h"

#include "plot/qwtnox.h"
#include "widgets/headedtable.h"

#include <algorithm>
#include <utility>

namespace
{

QVector<TableColumn> columns()
{
    return {
        {ChannelTable::tr("Графики каналов: левая кнопка мыши — показать или скрыть,\n"
                          "правая — выбрать цвет"),
         QStringLiteral(":/resource/images/line_graph.png"), 50},
        {ChannelTable::tr("Результат"), QString(), 0},
        {ChannelTable::tr("Разм."), QString(), 50},
        {ChannelTable::tr("ΔX"), QString(), 75},
        {ChannelTable::tr("ΔY"), QString(), 75},
        {ChannelTable::tr("ΔКанал"), QString(), 55},
        {ChannelTable::tr("Меню канала"), QStringLiteral(":/resource/images/settings_32.png"), 50}};
}

/** Where a click opens a menu. */
QSet<int> menuColumns()
{
    return {ChannelColumn::Reference, ChannelColumn::Menu};
}

/** True when the model is known and does not measure the channel. */
bool isInactive(const optionsNOX8 &options, quint8 ch)
{
    const quint8 count = options.getDevChCount();
    return count != 0 && (ch >= count || options.getCh(ch).onOff == 0);
}

} // namespace

ChannelTable::ChannelTable(HeadedTable *table, const noxList *registry, const QwtNOX *plot,
                           QObject *parent)
    : QObject(parent)
    , m_table(table)
    , m_registry(registry)
    , m_plot(plot)
    , m_hover(table, menuColumns())
{
    setUpTable(m_table, columns());
    m_table->setMenuColumns(menuColumns());
    connect(&m_hover, &RowHover::moved, this, [this](int from, int to) {
        for (const int row : {from, to})
            paint(channelAt(row), ChannelColumn::Menu, ChannelColumn::Menu);
    });
}

void ChannelTable::refresh(int index)
{
    const noxList::_nox *nox = m_registry->getNoxByIndex(index);
    const bool isConnected = nox && nox->isConnected();
    const bool lostLink = std::exchange(m_wasConnected, isConnected) && !isConnected;
    // what marks a value goes with the link, as it does in the table of the instruments
    const bool isOther = std::exchange(m_index, index) != index;
    if (isOther || lostLink)
        forgetMarks(0);
    m_qwtIndex = nox ? nox->qwtIndex : -1;
    const bool onPlot = m_qwtIndex >= 0;
    m_rows = onPlot ? m_plot->getChCount(m_qwtIndex) : 0;
    forgetMarks(m_rows);
    m_main = onPlot ? m_plot->getChMain(m_qwtIndex) : -1;
    setRowCount(isOther);
    for (int ch = 0; ch < m_rows; ++ch)
        paint(ch);
    m_touched.reset();
    selectTableRow(m_table, m_main + 1);
}

/** Channels that come on demand are shown as they come; of another instrument, the main one is. */
void ChannelTable::setRowCount(bool isOther)
{
    const int before = m_table->rowCount();
    m_table->setRowCount(m_rows + 1);
    for (int row = before; row <= m_rows; ++row)
        m_table->sayRow(row, tr("Канал %1").arg(row));
    if (isOther && m_main >= 0)
        m_table->showRow(m_main + 1);
    else if (m_table->rowCount() > before)
        m_table->showRow(m_rows);
}

void ChannelTable::refreshMain()
{
    const int main = m_qwtIndex < 0 ? -1 : m_plot->getChMain(m_qwtIndex);
    const int before = std::exchange(m_main, main);
    if (before == main)
        return;
    paint(before);
    paint(main);
    selectTableRow(m_table, m_main + 1);
}

void ChannelTable::resetBackgrounds()
{
    m_fresh = -1;
    std::replace(m_marks.begin(), m_marks.end(), ValueMark::Rejected, ValueMark::None);
    for (int ch = 0; ch < m_rows; ++ch)
        paint(ch);
}

void ChannelTable::forgetMarks(int first)
{
    std::fill(m_marks.begin() + first, m_marks.end(), ValueMark::None);
    if (m_fresh >= first)
        m_fresh = -1;
}

void ChannelTable::notePoint(int qwtIndex, uchar ch, ValueMark mark)
{
    if (qwtIndex != m_qwtIndex)
        return;
    if (mark == ValueMark::Accepted)
        setFresh(ch);
    else if (mark == ValueMark::Rejected && m_fresh == ch)
        m_fresh = -1;
    m_marks[ch] = mark;
    m_touched.set(ch);
}

void ChannelTable::setFresh(int ch)
{
    if (m_fresh >= 0)
        m_touched.set(size_t(m_fresh));
    m_fresh = ch;
}

void ChannelTable::paintTouched()
{
    for (int ch = 0; ch < m_rows; ++ch)
        if (m_touched.test(size_t(ch)))
            paint(ch);
    m_touched.reset();
}

void ChannelTable::paint(int ch, int first, int last)
{
    const noxList::_nox *nox = m_registry->getNoxByIndex(m_index);
    if (nox && ch >= 0 && ch < m_rows)
        paintRow(m_table, ch + 1, channelRow(stateOf(*nox, ch)), first, last);
}

QPoint ChannelTable::placeBelow(uchar ch, int column) const
{
    return placeBelowCell(m_table, ch + 1, column);
}

ChannelState ChannelTable::stateOf(const noxList::_nox &nox, int channel) const
{
    const auto ch = uchar(channel);
    ChannelState state;
    state.number = channel;
    state.color = m_plot->getChColor(nox.qwtIndex, ch);
    state.shown = m_plot->getChShow(nox.qwtIndex, ch);
    readLatest(&state, *m_plot, nox, ch);
    state.deltaX = m_plot->getChDXStr(nox.qwtIndex, ch);
    state.deltaY = m_plot->getChDYStr(nox.qwtIndex, ch);
    addReference(&state, nox);
    state.inactive = isInactive(*nox.opt, ch);
    state.main = channel == m_main;
    state.hovered = m_hover.row() == channel + 1;
    state.mark = m_marks.at(size_t(channel));
    state.fresh = channel == m_fresh;
    return state;
}

void ChannelTable::addReference(ChannelState *state, const noxList::_nox &nox) const
{
    uchar channel = 0;
    int qwtIndex = -1;
    m_plot->getChDiff(&channel, &qwtIndex, nox.qwtIndex, uchar(state->number));
    const noxList::_nox *reference =
        qwtIndex < 0 ? nullptr : m_registry->getNoxByQwtIndex(qwtIndex);
    if (!reference)
        return;
    state->referenceChannel = channel;
    state->referenceInstrument = reference->opt->getDevTypeStr(true) + QStringLiteral(" №") +
                                 reference->opt->getDevNumberStr();
}
