#pragma once

#include "plot/plotmodes.h"

#include <QMenu>

#include <functional>
#include <memory>
#include <vector>

class QPushButton;
class QToolButton;
class QwtNOX;

// What shows and changes how the plot is set: the buttons around it, and the menus behind them. All
// of it is about the main channel of the main instrument.

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

/** The menu of everything that can be set on the plot. */
class PlotMenu : public QMenu
{
    Q_OBJECT
public:
    explicit PlotMenu(QwtNOX *plot, QWidget *parent = nullptr);
    ~PlotMenu() override;

signals:
    /** The user wants to choose the colour of the main channel. */
    void colorWanted();

private:
    std::vector<std::unique_ptr<ChoiceMenu>> m_choices;
};

/** The buttons beside and below the plot that show its scales, modes and limits and change them. */
class PlotButtons : public QObject
{
    Q_OBJECT
public:
    /** The buttons of the form; all are needed. */
    struct Buttons {
        QPushButton *scaleX = nullptr;
        QPushButton *scaleY = nullptr;
        QPushButton *modeX = nullptr;
        QPushButton *mode = nullptr;
        QToolButton *zoom = nullptr;
        QToolButton *scroll = nullptr;
        QToolButton *measure = nullptr;
        QToolButton *limits = nullptr;
    };

    PlotButtons(const Buttons &buttons, QwtNOX *plot, QObject *parent = nullptr);
    ~PlotButtons() override;

    /** Brings captions and check states up to date with the plot. */
    void refresh();

    /** A click on the button of ModeZoom, ModeScroll or ModeMeasure has checked or unchecked it. */
    void applyTool(TmcMode tool);

private:
    void switchMode();
    const QToolButton *toolButton(TmcMode tool) const;

    Buttons m_buttons;
    QwtNOX *m_plot;
    std::vector<std::unique_ptr<ChoiceMenu>> m_menus;
};
