#include "app/plotmenu.h"

#include "app/choicemenu.h"
#include "app/plotchoices.h"
#include "app/swatch.h"
#include "plot/qwtnox.h"

PlotMenu::PlotMenu(QwtNOX *plot, QWidget *parent)
    : QMenu(parent)
{
    QAction *const color = addAction(tr("Цвет графика основного канала"));
    connect(color, &QAction::triggered, this, &PlotMenu::colorWanted);
    connect(this, &QMenu::aboutToShow, color,
            [plot, color] { color->setIcon(swatchIcon(plot->getChColor())); });

    for (const auto makeChoices :
         {scaleXChoices, scaleYChoices, modeChoices, modeXChoices, curveChoices}) {
        m_choices.push_back(makeChoices(plot, this));
        addMenu(m_choices.back().get());
    }
}

PlotMenu::~PlotMenu() = default;
