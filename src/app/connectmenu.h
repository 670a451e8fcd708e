#pragma once

#include <QMenu>

/** The menu of manual connection: every port that is free when the menu opens, or none at all. */
class ConnectMenu : public QMenu
{
    Q_OBJECT
public:
    explicit ConnectMenu(QWidget *parent = nullptr);

signals:
    /** The user chose a port by its name. */
    void portChosen(const QString &portName);
    /** The user wants an instrument without a port. */
    void noPortChosen();

private:
    void refill();
};
