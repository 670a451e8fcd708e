#include "app/clearmenu.h"

#include "dialogs/settingscontent.h"
#include "registry/noxlist.h"

ClearMenu::ClearMenu(const noxList *registry, QWidget *parent)
    : QMenu(parent)
    , m_registry(registry)
{
    connect(this, &QMenu::aboutToShow, this, &ClearMenu::refill);
    connect(this, &QMenu::triggered, this,
            [this](QAction *action) { emit chosen(action->data().toInt()); });
}

void ClearMenu::refill()
{
    clear();
    addInstrument(tr("Все приборы"), -1);
    addSeparator();
    const auto indices = m_registry->indices();
    for (const int index : indices) {
        const noxList::_nox *nox = m_registry->getNoxByIndex(index);
        addInstrument(instrumentTitle(*nox->opt), nox->qwtIndex);
    }
}

void ClearMenu::addInstrument(const QString &title, int qwtIndex)
{
    addAction(title)->setData(qwtIndex);
}
