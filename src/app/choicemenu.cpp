#include "app/choicemenu.h"

#include <utility>

ChoiceMenu::ChoiceMenu(std::function<int()> current, QWidget *parent)
    : QMenu(parent)
    , m_current(std::move(current))
{
    connect(this, &QMenu::aboutToShow, this, &ChoiceMenu::tickCurrent);
    connect(this, &QMenu::triggered, this,
            [this](QAction *action) { emit chosen(action->data().toInt()); });
}

void ChoiceMenu::addChoice(const QString &title, int number)
{
    QAction *action = addAction(title);
    action->setCheckable(true);
    action->setData(number);
}

void ChoiceMenu::tickCurrent()
{
    const int current = m_current();
    const auto all = actions();
    for (QAction *action : all)
        action->setChecked(action->data().toInt() == current);
}
