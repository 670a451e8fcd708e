#pragma once

#include <QMenu>

class noxList;

/** The menu that offers to clear the plot of one instrument or of all. */
class ClearMenu : public QMenu
{
    Q_OBJECT
public:
    explicit ClearMenu(const noxList *registry, QWidget *parent = nullptr);

signals:
    /** The user chose an instrument by its plot index; -1: all, or one that is not on the plot. */
    void chosen(int qwtIndex);

private:
    void refill();
    void addInstrument(const QString &title, int qwtIndex);

    const noxList *m_registry;
};
