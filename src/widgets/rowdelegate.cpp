#include "widgets/rowdelegate.h"

#include "widgets/changemark.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace
{

/** The opaque ground on which the text of a cell is painted: its own over that of its row. */
QColor groundOf(const QStyleOptionViewItem &option)
{
    const bool isSelected = option.state & QStyle::State_Selected;
    const QColor row = option.palette.color(isSelected ? QPalette::Highlight : QPalette::Base);
    const bool hasOwn = option.backgroundBrush.style() != Qt::NoBrush;
    return hasOwn ? blended(option.backgroundBrush.color(), row) : row;
}

void paintFocus(QPainter *painter, const QRect &cell)
{
    constexpr int width = 2;
    painter->setPen(QPen(accentColor(), width, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
    painter->setBrush(Qt::NoBrush);
    painter->drawRect(cell.adjusted(width / 2, width / 2, -width / 2, -width / 2));
}

/** As many dots at the left of the cell as there are places for one, above its text, which may take
 *  all its width. */
void paintDots(QPainter *painter, const QRect &cell, std::initializer_list<int> places)
{
    constexpr int dot = 3;
    constexpr int pitch = 5;
    constexpr int fromTop = 5;
    QRect dotAt(0, 0, dot, dot);
    dotAt.moveCenter({cell.left() + 2 * pitch, cell.top() + fromTop});
    for (const int place : places)
        painter->fillRect(dotAt.translated(place * pitch, 0), accentColor());
}

/** An exclamation mark at the left edge of the cell, where a long text leaves some room. */
void paintAlarm(QPainter *painter, const QRect &cell)
{
    constexpr int margin = 3;
    QFont font = painter->font();
    font.setBold(true);
    painter->setFont(font);
    painter->setPen(QColor(163, 21, 21));
    painter->drawText(cell.adjusted(margin, 0, 0, 0), Qt::AlignLeft | Qt::AlignVCenter,
                      QStringLiteral("!"));
}

void paintSign(QPainter *painter, const QRect &cell, CellSign sign)
{
    switch (sign) {
    case CellSign::None:
        break;
    case CellSign::Waiting:
        return paintDots(painter, cell, {-1, 0, 1});
    case CellSign::Fresh:
        return paintDots(painter, cell, {0});
    case CellSign::Alarm:
        return paintAlarm(painter, cell);
    }
}

} // namespace

void RowDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                        const QModelIndex &index) const
{
    QStyledItemDelegate::paint(painter, option, index);
    painter->save();
    paintSign(painter, option.rect, CellSign(index.data(signRole).toInt()));
    if (index.data(changedRole).toBool())
        paintChange(painter, option.rect);
    if (option.state & QStyle::State_HasFocus)
        paintFocus(painter, option.rect);
    painter->restore();
}

void RowDelegate::initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const
{
    QStyledItemDelegate::initStyleOption(option, index);
    const QVariant text = index.data(Qt::ForegroundRole);
    if (text.isValid()) {
        const QColor color = legible(text.value<QBrush>().color(), groundOf(*option));
        option->palette.setColor(QPalette::Text, color);
        option->palette.setColor(QPalette::HighlightedText, color);
    }
    option->state &= ~QStyle::State_HasFocus; // paintFocus() shows it
    if (option->backgroundBrush.style() != Qt::NoBrush)
        option->state &= ~QStyle::State_Selected;
    if (option->features & QStyleOptionViewItem::HasDecoration)
        option->textElideMode = Qt::ElideNone; // beside the swatch two digits just have room
}

// Legibility

namespace
{

constexpr double neededContrast = 4.5;
constexpr double flare = 0.05; ///< of the screen, as the WCAG assumes it

double linear(double component)
{
    return component <= 0.03928 ? component / 12.92 : std::pow((component + 0.055) / 1.055, 2.4);
}

double luminance(const QColor &color)
{
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
           0.0722 * linear(color.blueF());
}

QColor mixed(const QColor &from, const QColor &to, double part)
{
    const auto mix = [part](int one, int other) { return qRound(one + (other - one) * part); };
    return {mix(from.red(), to.red()), mix(from.green(), to.green()), mix(from.blue(), to.blue())};
}

} // namespace

double contrast(const QColor &one, const QColor &other)
{
    const auto [darker, lighter] = std::minmax({luminance(one), luminance(other)});
    return (lighter + flare) / (darker + flare);
}

QColor blended(const QColor &color, const QColor &ground)
{
    return mixed(ground, color, color.alphaF());
}

QColor legible(const QColor &text, const QColor &ground)
{
    constexpr int steps = 32;
    const QColor black(Qt::black);
    const QColor white(Qt::white);
    QColor end = contrast(black, ground) >= contrast(white, ground) ? black : white;
    for (int step = 0; step < steps; ++step) {
        QColor color = mixed(text, end, double(step) / steps);
        if (contrast(color, ground) >= neededContrast)
            return color;
    }
    return end;
}
