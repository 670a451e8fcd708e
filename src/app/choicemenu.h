#pragma once

#include <QMenu>

#include <functional>

/** A menu of choices of which one is in effect; it is ticked whenever the menu opens. */
class ChoiceMenu : public QMenu
{
    Q_OBJECT
public:
    /** `current` tells the number of the choice in effect. */
    explicit ChoiceMenu(std::function<int()> current, QWidget *parent = nullptr);

    void addChoice(const QString &title, int number);

signals:
    void chosen(int number);

private:
    void tickCurrent();

    std::function<int()> m_current;
};
