#pragma once

#include "widgets/rowdelegate.h"

#include <QtWidgets>

// What is seen of the controls of a form, as texts that a test compares.

/** A cell: its text, behind "*" if it is marked as changed, "~" if nothing can be entered in it. */
inline QString seenCell(const QTableWidgetItem *item)
{
    if (!item)
        return {};
    const bool isFaint = item->foreground().style() != Qt::NoBrush &&
                         item->foreground().color() == QColor(Qt::lightGray);
    return QString(item->data(changedRole).toBool() ? "*" : "") +
           (item->flags() & Qt::ItemIsEnabled ? "" : "~") + (isFaint ? "°" : "") + item->text() +
           (item->toolTip().isEmpty() ? "" : "!");
}

/** The cells of a row, parted by bars. */
inline QString seenRow(const QTableWidget *table, int row)
{
    QStringList cells;
    for (int column = 0; column < table->columnCount(); ++column)
        cells << seenCell(table->item(row, column));
    return cells.join('|');
}

/** The entries of a list: the chosen one in brackets, behind "~" what cannot be chosen. */
inline QString seenList(const QComboBox *list)
{
    QStringList entries;
    for (int i = 0; i < list->count(); ++i) {
        const QModelIndex index = list->model()->index(i, 0);
        QString text = list->itemText(i).isEmpty() ? index.data(Qt::ToolTipRole).toString()
                                                   : list->itemText(i);
        text.prepend(index.flags() & Qt::ItemIsEnabled ? "" : "~");
        entries << (i == list->currentIndex() ? '[' + text + ']' : text);
    }
    return entries.join(' ');
}

/** The text of a control, and in which state it is. */
inline QString seen(const QWidget *control)
{
    QString text;
    if (const auto *table = qobject_cast<const QTableWidget *>(control)) {
        QStringList rows;
        for (int row = 0; row < table->rowCount(); ++row)
            rows << seenRow(table, row);
        text = rows.join('/');
    } else if (const auto *list = qobject_cast<const QComboBox *>(control)) {
        text = seenList(list);
    } else if (const auto *tabs = qobject_cast<const QTabWidget *>(control)) {
        for (int i = 0; i < tabs->count(); ++i)
            text += QString(i == tabs->currentIndex() ? ">" : "") +
                    (tabs->isTabVisible(i) ? tabs->tabText(i) : "-") + ' ';
    } else if (const auto *plain = qobject_cast<const QPlainTextEdit *>(control)) {
        text = plain->toPlainText() + '<' + plain->placeholderText() + '>';
    } else if (const auto *label = qobject_cast<const QLabel *>(control)) {
        text = label->text().isEmpty() ? label->accessibleName() : label->text();
    } else {
        text = control->property("text").toString() + control->property("title").toString();
    }
    QStringList states;
    if (control->isHidden())
        states << "hidden";
    if (!control->isEnabled())
        states << "off";
    if (control->property("checked").toBool())
        states << "on";
    if (control->property("readOnly").toBool())
        states << "read only";
    if (control->accessibleDescription().startsWith("Отличается"))
        states << "changed";
    return states.isEmpty() ? text : text + " {" + states.join(", ") + '}';
}

/** What is seen of some controls of a form, by their names. */
inline QStringList seen(const QWidget *form, const QString &names)
{
    QStringList texts;
    for (const QString &name : names.split(' ')) {
        const auto *const control = form->findChild<const QWidget *>(name);
        texts << (control ? seen(control) : "no " + name);
    }
    return texts;
}

/** What is seen of all controls that can be worked or read, each behind its name. */
inline QStringList seenForm(const QWidget *form)
{
    QStringList texts;
    for (const QWidget *control : form->findChildren<QWidget *>()) {
        const bool isInside = control->objectName().startsWith("qt_") ||
                              control->inherits("QMenu") || control->window() != form->window() ||
                              control->parent()->inherits("QTabBar");
        const auto *const label = qobject_cast<const QLabel *>(control);
        const bool isRead = label && !label->buddy() && !seen(label).isEmpty();
        if (!isInside && !control->objectName().isEmpty() &&
            (isRead || control->focusPolicy() != Qt::NoFocus || control->inherits("QTabWidget")))
            texts << control->objectName() + ": " + seen(control);
    }
    return texts;
}

/** The lines of a text file. */
inline QStringList linesOf(const QString &fileName)
{
    QFile file(fileName);
    const bool isOpen = file.open(QIODevice::ReadOnly);
    return isOpen ? QString::fromUtf8(file.readAll()).split('\n', Qt::SkipEmptyParts)
                  : QStringList("no " + fileName);
}
