#include "app/plotbuttons.h"

#include "app/choicemenu.h"
#include "plot/qwtnox.h"
#include "plot/scaletables.h"

#include <QPushButton>
#include <QToolButton>

namespace
{

template<typename Table>
void addScales(ChoiceMenu *menu, const Table &scales)
{
    for (int row = 0; row < scales.size(); ++row)
        menu->addChoice(scales.at(row).label, row);
}

} // namespace

PlotButtons::PlotButtons(const Buttons &buttons, QwtNOX *plot, QObject *parent)
    : QObject(parent)
    , m_buttons(buttons)
    , m_plot(plot)
{
    buildScaleMenus();
    connect(m_buttons.modeX, &QPushButton::clicked, m_plot,
            [plot] { plot->setChModeX(nextModeX(plot->getChModeX())); });
    connect(m_buttons.mode, &QPushButton::clicked, this, &PlotButtons::switchMode);
    refresh();
}

PlotButtons::~PlotButtons() = default;

void PlotButtons::buildScaleMenus()
{
    const QwtNOX *plot = m_plot;
    auto *menuX = new ChoiceMenu([plot] { return plot->getChScaleX(); }, m_buttons.scaleX);
    addScales(menuX, scalesX());
    connect(menuX, &ChoiceMenu::chosen, m_plot, &QwtNOX::changeScaleX);
    m_buttons.scaleX->setMenu(menuX);

    auto *menuY = new ChoiceMenu([plot] { return plot->getChScaleY(); }, m_buttons.scaleY);
    addScales(menuY, scalesY());
    connect(menuY, &ChoiceMenu::chosen, m_plot, &QwtNOX::changeScaleY);
    m_buttons.scaleY->setMenu(menuY);
}

void PlotButtons::refresh()
{
    m_buttons.scaleX->setText(tr("X: ") + m_plot->getScaleXLabel());
    m_buttons.scaleY->setText(tr("Y: ") + m_plot->getScaleYLabel());
    m_buttons.modeX->setText(m_plot->getChModeXLabel());
    m_buttons.mode->setText(m_plot->getChModeLabel());

    const TmcMode mode = m_plot->getChMode();
    m_buttons.zoom->setChecked(mode == ModeZoom);
    m_buttons.scroll->setChecked(mode == ModeScroll);
    m_buttons.measure->setChecked(mode == ModeMeasure);
    m_buttons.track->setChecked(m_plot->getModeTrack() != TrackOff);
}

TmcModeX PlotButtons::nextModeX(TmcModeX mode)
{
    switch (mode) {
    case ModeXSeconds:
        return ModeXAbsolute;
    case ModeXAbsolute:
        return ModeXRelative;
    case ModeXRelative:
        break;
    }
    return ModeXSeconds;
}

TmcMode PlotButtons::nextMode(TmcMode mode, bool fixedScale)
{
    return mode != ModeFollow && fixedScale ? ModeFollow : ModeAuto;
}

void PlotButtons::switchMode()
{
    const TmcMode mode = m_plot->getChMode();
    const bool fixedScale = m_plot->getChScaleX() != 0 || m_plot->getChScaleY() != 0;
    const TmcMode next = nextMode(mode, fixedScale);
    if (next != mode)
        m_plot->setChMode(next);
}
