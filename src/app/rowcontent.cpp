#include "app/rowcontent.h"

#include <QCoreApplication>
#include <QTextDocument>

namespace
{

QString nothing()
{
    return QStringLiteral("-");
}

struct RowTexts {
    Q_DECLARE_TR_FUNCTIONS(MainWindow)
};

/** The mark of the last column: the current row, or the row whose menu a click would open. */
void markMenu(CellContent &cell, bool current, bool hovered)
{
    if (current)
        cell.text = QStringLiteral("<");
    else if (hovered)
        cell.text = QStringLiteral("☰");
    cell.spoken = current ? RowTexts::tr("выбран, меню") : RowTexts::tr("меню");
}

/** A value beyond a limit carries a sign, and says so. */
void markAlarm(CellContent &cell, ValueMark mark)
{
    if (mark != ValueMark::Alarm)
        return;
    cell.sign = CellSign::Alarm;
    cell.spoken = RowTexts::tr("%1, за пределом").arg(cell.text);
}

/** The latest value in the digits in which it came. */
QString receivedTip(const LatestValue &latest)
{
    if (!latest.received || latest.mark == ValueMark::Rejected)
        return {};
    constexpr int digits = 10;
    const QString number = QString::number(*latest.received, 'g', digits);
    return asToolTip(RowTexts::tr("Принято: %1 %2").arg(number, latest.unit));
}

QColor textColor(bool active)
{
    return active ? Qt::black : Qt::lightGray;
}

QString sourceText(const InstrumentState &state)
{
    if (state.channel < 0)
        return nothing();
    const QString number = QString::number(state.channel + 1);
    return state.mark == ValueMark::Alarm ? number + QStringLiteral(" (!)") : number;
}

constexpr Qt::GlobalColor alarmColor = Qt::red;
constexpr Qt::GlobalColor rejectedColor = Qt::yellow;

void markInstrumentValue(CellContent &cell, ValueMark mark)
{
    if (mark == ValueMark::None)
        return;
    cell.textColor = mark == ValueMark::Alarm ? alarmColor : Qt::black;
    cell.background = mark == ValueMark::Rejected ? QColor(rejectedColor) : QColor();
}

/** Silence has a reason: the instrument measures again when the last block has been exchanged. */
void showExchange(RowContent &row)
{
    using namespace InstrumentColumn;
    row[Value].sign = CellSign::Waiting;
    row[Value].spoken = RowTexts::tr("%1, идёт обмен").arg(row[Value].text);
    for (const int column : {Value, Unit, Channel})
        row[column].toolTip = RowTexts::tr("Идёт обмен с прибором, измерения появятся после него");
}

void markChannelCell(CellContent &cell, const ChannelState &state)
{
    cell.textColor =
        state.mark == ValueMark::Alarm ? QColor(alarmColor) : textColor(!state.inactive);
    if (state.mark == ValueMark::Rejected)
        cell.background = rejectedColor;
    else if (state.fresh)
        cell.background = freshColor();
}

void describeReference(CellContent &cell, const ChannelState &state)
{
    if (state.referenceChannel < 0) {
        cell.text = nothing();
        cell.toolTip = RowTexts::tr("Измерение разности выключено");
        return;
    }
    cell.text = QString::number(state.referenceChannel + 1);
    cell.toolTip =
        RowTexts::tr("Разность с %1, канал №%2").arg(state.referenceInstrument, cell.text);
}

} // namespace

QString missingValue()
{
    return QStringLiteral("--");
}

QString asToolTip(const QString &text)
{
    return Qt::mightBeRichText(text) ? text.toHtmlEscaped() : text;
}

QColor currentColor()
{
    return {173, 216, 230};
}

QColor freshColor()
{
    return {144, 238, 144, 128};
}

RowContent instrumentRow(const InstrumentState &state)
{
    using namespace InstrumentColumn;
    RowContent row;
    for (CellContent &cell : row) {
        cell.textColor = textColor(state.connected);
        cell.background = state.current ? currentColor() : QColor();
    }
    row[Show].toolTip = RowTexts::tr("Показать или скрыть графики прибора (Пробел)");
    row[Show].spoken = state.shown ? RowTexts::tr("показаны") : RowTexts::tr("скрыты");
    row[Name].text = state.name;
    if (!state.connected)
        row[Name].spoken = RowTexts::tr("%1, нет связи").arg(state.name);
    row[Name].toolTip = asToolTip(state.name); // the column may be too narrow for it
    row[Number].text = state.number;
    row[Value].text = state.mark == ValueMark::Rejected ? missingValue() : state.value;
    row[Value].toolTip = receivedTip(state);
    row[Unit].text = state.unit;
    row[Channel].text = sourceText(state);
    markMenu(row[Menu], state.current, state.hovered);
    markAlarm(row[Value], state.mark);
    for (const int column : {Value, Unit, Channel})
        markInstrumentValue(row[column], state.mark);
    if (state.exchanging)
        showExchange(row);
    return row;
}

RowContent channelRow(const ChannelState &state)
{
    using namespace ChannelColumn;
    RowContent row;
    row[Number].text = QString::number(state.number + 1);
    row[Number].spoken =
        RowTexts::tr("%1, график %2")
            .arg(row[Number].text, state.shown ? RowTexts::tr("показан") : RowTexts::tr("скрыт"));
    if (state.inactive)
        row[Number].spoken += RowTexts::tr(", канал выключен");
    row[Number].swatch = state.shown ? state.color : QColor(Qt::transparent);
    row[Number].toolTip = RowTexts::tr("Левая кнопка мыши (Пробел): показать или скрыть график\n"
                                       "Правая кнопка мыши (Menu): выбрать цвет графика");
    row[Value].text = state.value;
    row[Value].toolTip = receivedTip(state);
    row[Unit].text = state.unit;
    row[DeltaX].text = state.deltaX;
    row[DeltaY].text = state.deltaY;
    describeReference(row[Reference], state);
    markMenu(row[Menu], state.main, state.hovered);
    if (state.fresh && state.mark != ValueMark::Rejected)
        row[Value].sign = CellSign::Fresh;
    markAlarm(row[Value], state.mark);
    for (const int column : {Value, Unit, DeltaX, DeltaY, Reference})
        markChannelCell(row[column], state);
    if (state.mark == ValueMark::Rejected)
        for (const int column : {Value, Unit, DeltaX, DeltaY})
            row[column].text = missingValue();
    if (state.main) {
        row[Number].background = currentColor();
        row[Menu].background = currentColor();
    }
    return row;
}
