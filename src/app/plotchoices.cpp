#include "app/plotchoices.h"

#include "app/choicemenu.h"
#include "plot/qwtnox.h"

#include <QCoreApplication>

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
    for (int row = 0; row < scales.size(); ++row)
        menu->addChoice(scales.at(row).label, row);
}

} // namespace

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

std::unique_ptr<ChoiceMenu> modeChoices(QwtNOX *plot, QWidget *parent)
{
    auto menu = std::make_unique<ChoiceMenu>([plot] { return plot->getChMode(); }, parent);
    menu->setTitle(ChoiceTexts::tr("Режим масштабирования"));
    menu->addChoice(ChoiceTexts::tr("Авто"), ModeAuto);
    menu->addChoice(ChoiceTexts::tr("Слежение"), ModeFollow);
    QObject::connect(menu.get(), &ChoiceMenu::chosen, plot, &QwtNOX::changeMode);
    return menu;
}

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
