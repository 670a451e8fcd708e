#include "app/plotbuttons.h"

#include "app/choicemenu.h"
#include "app/plotchoices.h"
#include "plot/qwtnox.h"

#include <QPushButton>
#include <QToolButton>

PlotButtons::PlotButtons(const Buttons &buttons, QwtNOX *plot, QObject *parent)
    : QObject(parent)
    , m_buttons(buttons)
    , m_plot(plot)
{
    buildScaleMenus();
    connect(m_buttons.modeX, &QPushButton::clicked, m_plot,
            [plot] { plot->setChModeX(nextModeX(plot->getChModeX())); });
    connect(m_buttons.mode, &QPushButton::clicked, this, &PlotButtons::switchMode);
    // its check mark tells of the limits: a click, which opens a menu, does not change it
    connect(m_buttons.track, &QToolButton::toggled, this, &PlotButtons::refresh);
    refresh();
}

PlotButtons::~PlotButtons() = default;

void PlotButtons::buildScaleMenus()
{
    m_scaleXMenu = scaleXChoices(m_plot, m_buttons.scaleX);
    m_buttons.scaleX->setMenu(m_scaleXMenu.get());
    m_scaleYMenu = scaleYChoices(m_plot, m_buttons.scaleY);
    m_buttons.scaleY->setMenu(m_scaleYMenu.get());
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

const QToolButton *PlotButtons::toolButton(TmcMode tool) const
{
    switch (tool) {
    case ModeZoom:
        return m_buttons.zoom;
    case ModeScroll:
        return m_buttons.scroll;
    default:
        return m_buttons.measure;
    }
}

void PlotButtons::applyTool(TmcMode tool)
{
    m_plot->setChMode(toolButton(tool)->isChecked() ? tool : ModeFollow);
    refresh(); // without a main instrument the click was in vain
}
