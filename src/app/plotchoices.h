#pragma once

#include <memory>

class ChoiceMenu;
class QWidget;
class QwtNOX;

// The menus that change the plot for the main channel of the main instrument. Each ticks what is in
// effect when it opens.

std::unique_ptr<ChoiceMenu> scaleXChoices(QwtNOX *plot, QWidget *parent);
std::unique_ptr<ChoiceMenu> scaleYChoices(QwtNOX *plot, QWidget *parent);
/** Whether the plot chooses its scales itself or follows the data with the steps chosen. */
std::unique_ptr<ChoiceMenu> modeChoices(QwtNOX *plot, QWidget *parent);
/** How the X axis is labelled. */
std::unique_ptr<ChoiceMenu> modeXChoices(QwtNOX *plot, QWidget *parent);
/** Values, averages or both. */
std::unique_ptr<ChoiceMenu> curveChoices(QwtNOX *plot, QWidget *parent);
/** Which limits raise an alarm. */
std::unique_ptr<ChoiceMenu> limitChoices(QwtNOX *plot, QWidget *parent);
