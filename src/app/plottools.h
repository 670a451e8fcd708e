#pragma once

#include "plot/plotmodes.h"

#include <QObject>

#include <memory>

class ChoiceMenu;
class QPushButton;
class QToolButton;
class QwtNOX;

/** The buttons beside and below the plot that show its scales and modes and change them. */
class PlotButtons : public QObject
{
    Q_OBJECT
public:
    /** The buttons of the form; all are needed. */
    struct Buttons {
        QPushButton *scaleX;
        QPushButton *scaleY;
        QPushButton *modeX;
        QPushButton *mode;
        QToolButton *zoom;
        QToolButton *scroll;
        QToolButton *measure;
        QToolButton *track;
    };

    PlotButtons(const Buttons &buttons, QwtNOX *plot, QObject *parent = nullptr);
    ~PlotButtons() override;

    /** Brings captions and check states up to date with the main channel of the plot. */
    void refresh();

    /** A click on the button of ModeZoom, ModeScroll or ModeMeasure has checked or unchecked it. */
    void applyTool(TmcMode tool);

    /** The labelling of the X axis that follows at a click. */
    static TmcModeX nextModeX(TmcModeX mode);
    /** The mode that follows at a click; `fixedScale`: a step of X or Y has been chosen. */
    static TmcMode nextMode(TmcMode mode, bool fixedScale);

private:
    void buildScaleMenus();
    void switchMode();
    const QToolButton *toolButton(TmcMode tool) const;

    Buttons m_buttons;
    QwtNOX *m_plot;
    std::unique_ptr<ChoiceMenu> m_scaleXMenu;
    std::unique_ptr<ChoiceMenu> m_scaleYMenu;
};
