#pragma once

#include "widgets/cellsigns.h"

#include <QColor>
#include <QStyledItemDelegate>

/**
 * Paints table cells so that the selection of their row never hides the colours of their own, that
 * faint texts can be read on any ground, that the cell on which the keyboard acts is framed, and
 * that cells carry their signs.
 */
class RowDelegate : public QStyledItemDelegate
{
    Q_OBJECT
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;

protected:
    void initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const override;
};

// Whether a text can be read on its ground, by the measure of the WCAG.

/** Contrast of two opaque colours: 1 (none) to 21 (black and white). */
double contrast(const QColor &one, const QColor &other);

/** What is seen of a colour that lets an opaque ground shine through. */
QColor blended(const QColor &color, const QColor &ground);

/**
 * The text colour that is nearest to `text` and can be read on the opaque `ground`, with a contrast
 * of 4.5 at least: darkened on a light ground, lightened on a dark one. A gray stays a gray.
 */
QColor legible(const QColor &text, const QColor &ground);
