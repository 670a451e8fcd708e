#include "app/plottools.h"

#include "app/windowtables.h"
#include "plot/qwtnox.h"

#include <QCoreApplication>
#include <QPushButton>
#include <QToolButton>

#include <utility>

// The menus of choices

namespace
{

struct ChoiceTexts {
    Q_DECLARE_TR_FUNCTIONS(MainWindow)
};

enum CurveChoice : int { BothKinds = 0, ValuesOnly = 1, AveragesOnly = 2, NoKind = -1 };

int shownCurves(const QwtNOX &plot)
{
    if (plot.getMeasShow())
        return plot.getAverShow() ? BothKinds : ValuesOnly;
    return plot.getAverShow() ? AveragesOnly : NoKind;
}

template<typename Table>
void addScales(ChoiceMenu *menu, const Table &scales)
{
    for (int number = 0; number < scales.size(); ++number)
        menu->addChoice(scales.at(number).label, number);
}

std::unique_ptr<ChoiceMenu> scaleXChoices(QwtNOX *plot, QWidget *parent)
{
    auto menu = std::make_unique<ChoiceMenu>([plot] { return plot->getChScaleX(); }, parent);
    menu->setTitle(ChoiceTexts::tr("Масштаб по X"));
    addScales(menu.get(), scalesX());
    QObject::connect(menu.get(), &ChoiceMenu::chosen, plot, &QwtNOX::changeScaleX);
    return menu;
}

std::unique_ptr<ChoiceMenu> scaleYChoices(QwtNOX *plot, QWidget *parent)
{
    auto menu = std::make_unique<ChoiceMenu>([plot] { return plot->getChScaleY(); }, parent);
    menu->setTitle(ChoiceTexts::tr("Масштаб по Y"));
    addScales(menu.get(), scalesY());
    QObject::connect(menu.get(), &ChoiceMenu::chosen, plot, &QwtNOX::changeScaleY);
    return menu;
}

/** Whether the plot chooses its scales itself or follows the data with the steps chosen. */
std::unique_ptr<ChoiceMenu> modeChoices(QwtNOX *plot, QWidget *parent)
{
    auto menu = std::make_unique<ChoiceMenu>([plot] { return plot->getChMode(); }, parent);
    menu->setTitle(ChoiceTexts::tr("Режим масштабирования"));
    menu->addChoice(ChoiceTexts::tr("Авто"), ModeAuto);
    menu->addChoice(ChoiceTexts::tr("Слежение"), ModeFollow);
    QObject::connect(menu.get(), &ChoiceMenu::chosen, plot, &QwtNOX::changeMode);
    return menu;
}

/** How the X axis is labelled. */
std::unique_ptr<ChoiceMenu> modeXChoices(QwtNOX *plot, QWidget *parent)
{
    auto menu = std::make_unique<ChoiceMenu>([plot] { return plot->getChModeX(); }, parent);
    menu->setTitle(ChoiceTexts::tr("Размерность шкалы по оси X"));
    menu->addChoice(ChoiceTexts::tr("Секунды"), ModeXSeconds);
    menu->addChoice(ChoiceTexts::tr("Относительное время"), ModeXRelative);
    menu->addChoice(ChoiceTexts::tr("Абсолютное время"), ModeXAbsolute);
    QObject::connect(menu.get(), &ChoiceMenu::chosen, plot, &QwtNOX::changeModeX);
    return menu;
}

std::unique_ptr<ChoiceMenu> curveChoices(QwtNOX *plot, QWidget *parent)
{
    auto menu = std::make_unique<ChoiceMenu>([plot] { return shownCurves(*plot); }, parent);
    menu->setTitle(ChoiceTexts::tr("Показывать на графике"));
    menu->addChoice(ChoiceTexts::tr("Значения и скользящее среднее"), BothKinds);
    menu->addChoice(ChoiceTexts::tr("Только значения"), ValuesOnly);
    menu->addChoice(ChoiceTexts::tr("Только скользящее среднее"), AveragesOnly);
    QObject::connect(menu.get(), &ChoiceMenu::chosen, plot, [plot](int choice) {
        plot->setMeasShow(choice != AveragesOnly);
        plot->setAverShow(choice != ValuesOnly);
    });
    return menu;
}

/** Which limits raise an alarm. */
std::unique_ptr<ChoiceMenu> limitChoices(QwtNOX *plot, QWidget *parent)
{
    auto menu = std::make_unique<ChoiceMenu>([plot] { return plot->getModeTrack(); }, parent);
    menu->addChoice(ChoiceTexts::tr("Выкл."), TrackOff);
    menu->addSeparator();
    menu->addChoice(ChoiceTexts::tr("Диапазон"), TrackRange);
    menu->addChoice(ChoiceTexts::tr("Верхний предел"), TrackUpper);
    menu->addChoice(ChoiceTexts::tr("Нижний предел"), TrackLower);
    QObject::connect(menu.get(), &ChoiceMenu::chosen, plot,
                     [plot](int choice) { plot->setModeTrack(TmcTrackingMode(choice)); });
    return menu;
}

/** The labelling of the X axis that follows at a click. */
TmcModeX nextModeX(TmcModeX mode)
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

/** The mode that follows at a click; `fixedScale`: a step of X or Y has been chosen. */
TmcMode nextMode(TmcMode mode, bool fixedScale)
{
    return mode != ModeFollow && fixedScale ? ModeFollow : ModeAuto;
}

/** Makes a caption a little smaller than the window's: four of them stand side by side. */
void makeSmaller(QPushButton *button)
{
    constexpr double share = 0.92;
    QFont font = button->font();
    font.setPointSizeF(font.pointSizeF() * share);
    button->setFont(font);
    button->setSizePolicy(QSizePolicy::Minimum, QSizePolicy::Preferred); // as high as its row
}

/** Shows a caption whole. A button that was wide enough for a longer one stays so: those beside it
 *  keep their places. */
void showCaption(QPushButton *button, const QString &caption)
{
    if (button->text() == caption)
        return;
    button->setText(caption);
    button->setMinimumWidth(qMax(button->minimumWidth(), button->sizeHint().width()));
}

} // namespace

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

// The buttons

PlotButtons::PlotButtons(const Buttons &buttons, QwtNOX *plot, QObject *parent)
    : QObject(parent)
    , m_buttons(buttons)
    , m_plot(plot)
{
    const auto giveMenu = [this](auto *button, auto makeChoices, QWidget *menuParent) {
        m_menus.push_back(makeChoices(m_plot, menuParent));
        button->setMenu(m_menus.back().get());
    };
    for (QPushButton *button : {buttons.scaleX, buttons.scaleY, buttons.modeX, buttons.mode})
        makeSmaller(button);
    giveMenu(m_buttons.scaleX, scaleXChoices, m_buttons.scaleX);
    giveMenu(m_buttons.scaleY, scaleYChoices, m_buttons.scaleY);
    giveMenu(m_buttons.limits, limitChoices, m_buttons.limits->window());
    connect(m_buttons.modeX, &QPushButton::clicked, m_plot,
            [plot] { plot->setChModeX(nextModeX(plot->getChModeX())); });
    connect(m_buttons.mode, &QPushButton::clicked, this, &PlotButtons::switchMode);
    // its check mark tells of the limits: a click, which opens a menu, does not change it
    connect(m_buttons.limits, &QToolButton::toggled, this, &PlotButtons::refresh);
    refresh();
}

PlotButtons::~PlotButtons() = default;

void PlotButtons::refresh()
{
    showCaption(m_buttons.scaleX, tr("X: ") + m_plot->getScaleXLabel());
    showCaption(m_buttons.scaleY, tr("Y: ") + m_plot->getScaleYLabel());
    showCaption(m_buttons.modeX, m_plot->getChModeXLabel());
    showCaption(m_buttons.mode, m_plot->getChModeLabel());

    const TmcMode mode = m_plot->getChMode();
    m_buttons.zoom->setChecked(mode == ModeZoom);
    m_buttons.scroll->setChecked(mode == ModeScroll);
    m_buttons.measure->setChecked(mode == ModeMeasure);
    m_buttons.limits->setChecked(m_plot->getModeTrack() != TrackOff);
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
