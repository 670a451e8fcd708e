#include "picture.h"

#include "waiting.h"

#include <QPainter>
#include <QPixmap>
#include <QTextStream>
#include <QWidget>

#include <algorithm>

namespace
{

int ancestors(const QWidget *widget)
{
    int count = 0;
    while ((widget = widget->parentWidget()))
        ++count;
    return count;
}

/** The dialogs and menus that a widget has opened; what these have opened themselves comes last. */
QWidgetList openedBy(const QWidget *widget)
{
    QWidgetList opened = widget->findChildren<QWidget *>();
    opened.erase(std::remove_if(opened.begin(), opened.end(),
                                [](const QWidget *child) {
                                    return !child->isWindow() || !child->isVisible();
                                }),
                 opened.end());
    std::stable_sort(opened.begin(), opened.end(), [](const QWidget *left, const QWidget *right) {
        return ancestors(left) < ancestors(right);
    });
    return opened;
}

/** A line and the title, in place of the frame that a window manager draws around a dialog. */
void drawFrame(QPainter &painter, const QWidget *dialog, const QPoint &place)
{
    const QColor line(96, 112, 120);
    const QColor ground(215, 223, 227);
    const int titleHeight = dialog->fontMetrics().height() * 3 / 2;
    const QRect outside = QRect(place, dialog->size()).adjusted(-1, -titleHeight - 1, 0, 0);
    QRect title = outside;
    title.setHeight(titleHeight);
    painter.setPen(line);
    painter.fillRect(title, ground);
    painter.drawRect(title);
    painter.drawRect(outside);
    painter.setPen(Qt::black);
    painter.setFont(dialog->font());
    painter.drawText(title, Qt::AlignCenter, dialog->windowTitle());
}

} // namespace

bool savePicture(QWidget *seen, const QString &fileName)
{
    constexpr int placingMs = 200;
    waitMs(placingMs); // what has just been shown gets its place first
    QPixmap picture = seen->grab();
    QPainter painter(&picture);
    const auto opened = openedBy(seen);
    for (QWidget *widget : opened) {
        const QPoint place = widget->pos() - seen->mapToGlobal(QPoint());
        painter.drawPixmap(place, widget->grab());
        if (widget->windowType() == Qt::Dialog)
            drawFrame(painter, widget, place);
    }
    painter.end();
    if (picture.save(fileName, "PNG"))
        return true;
    QTextStream(stderr) << fileName << ": cannot be written\n";
    return false;
}
