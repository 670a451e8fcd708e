#include "app/channeltable.h"

#include "app/rowpainter.h"
#include "app/tablesetup.h"
#include "plot/qwtnox.h"

#include <QTableWidget>

#include <utility>

namespace
{

QVector<TableColumn> columns()
{
    return {{QString(), QStringLiteral(":/resource/images/line_graph.png"), 50},
            {ChannelTable::tr("Результат"), QString(), 0},
            {ChannelTable::tr("Разм."), QString(), 50},
            {ChannelTable::tr("ΔX"), QString(), 75},
            {ChannelTable::tr("ΔY"), QString(), 75},
            {ChannelTable::tr("ΔКанал"), QString(), 55},
            {QString(), QStringLiteral(":/resource/images/settings_32.png"), 50}};
}

/** True when the model is known and does not measure the channel. */
bool isInactive(const optionsNOX8 &options, quint8 ch)
{
    const quint8 count = options.getDevChCount();
    return count != 0 && (ch >= count || options.getCh(ch).onOff == 0);
}

} // namespace

ChannelTable::ChannelTable(QTableWidget *table, const noxList *registry, const QwtNOX *plot,
                           QObject *parent)
    : QObject(parent)
    , m_table(table)
    , m_registry(registry)
    , m_plot(plot)
    , m_hover(table, {ChannelColumn::Reference, ChannelColumn::Menu})
{
    setUpTable(m_table, columns());
    connect(&m_hover, &RowHover::moved, this, [this](int from, int to) {
        for (const int row : {from, to})
            paint(channelAt(row), ChannelColumn::Menu, ChannelColumn::Menu);
    });
}

void ChannelTable::refresh(int index)
{
    const noxList::_nox *nox = m_registry->getNoxByIndex(index);
    const bool onPlot = nox && nox->qwtIndex >= 0;
    // what marks a value goes with the link, as it does in the table of the instruments
    if (std::exchange(m_index, index) != index || !nox || nox->devIndex < 0)
        m_marks.clear();
    m_marks.resize(onPlot ? m_plot->getChCount(nox->qwtIndex) : 0);
    m_main = onPlot ? m_plot->getChMain(nox->qwtIndex) : -1;
    m_table->setRowCount(m_marks.size() + 1);
    for (int ch = 0; ch < m_marks.size(); ++ch)
        paint(ch);
    selectTableRow(m_table, m_main + 1);
}

void ChannelTable::refreshMain()
{
    const int qwtIndex = m_registry->getQWTIndex(m_index);
    const int main = qwtIndex < 0 ? -1 : m_plot->getChMain(qwtIndex);
    const int before = std::exchange(m_main, main);
    if (before == main)
        return;
    paint(before);
    paint(main);
    selectTableRow(m_table, m_main + 1);
}

void ChannelTable::resetBackgrounds()
{
    for (int ch = 0; ch < m_marks.size(); ++ch) {
        m_marks[ch].fresh = false;
        m_marks[ch].rejected = false;
        paint(ch);
    }
}

void ChannelTable::acceptPoint(uchar ch)
{
    if (!hasRow(ch))
        return;
    for (int other = 0; other < m_marks.size(); ++other)
        if (std::exchange(m_marks[other].fresh, false) && other != ch)
            paint(other);
    m_marks[ch] = {true, false, false};
    paint(ch);
}

void ChannelTable::rejectPoint(uchar ch)
{
    if (!hasRow(ch))
        return;
    m_marks[ch] = {false, false, true};
    paint(ch);
}

void ChannelTable::raiseAlarm(uchar ch)
{
    if (!hasRow(ch))
        return;
    m_marks[ch].alarm = true;
    paint(ch);
}

void ChannelTable::paint(int ch, int first, int last)
{
    const noxList::_nox *nox = m_registry->getNoxByIndex(m_index);
    if (nox && ch >= 0 && ch < m_marks.size())
        paintRow(m_table, ch + 1, channelRow(stateOf(*nox, ch)), first, last);
}

ChannelState ChannelTable::stateOf(const noxList::_nox &nox, int channel) const
{
    const auto ch = uchar(channel);
    ChannelState state;
    state.number = channel;
    state.color = m_plot->getChColor(nox.qwtIndex, ch);
    state.shown = m_plot->getChShow(nox.qwtIndex, ch);
    state.value = m_plot->getChMeasStr(nox.qwtIndex, ch);
    state.unit = m_plot->getChDim(nox.qwtIndex, ch);
    if (state.unit.isEmpty())
        state.unit = nox.opt->getChMeasTypeName(ch);
    state.deltaX = m_plot->getChDXStr(nox.qwtIndex, ch);
    state.deltaY = m_plot->getChDYStr(nox.qwtIndex, ch);
    addReference(&state, nox);
    state.inactive = isInactive(*nox.opt, ch);
    state.main = channel == m_main;
    state.hovered = m_hover.row() == channel + 1;
    state.marks = m_marks.at(channel);
    return state;
}

void ChannelTable::addReference(ChannelState *state, const noxList::_nox &nox) const
{
    uchar channel = 255;
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
