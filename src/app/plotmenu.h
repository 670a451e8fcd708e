#pragma once

#include <QMenu>

#include <memory>
#include <vector>

class ChoiceMenu;
class QwtNOX;

/** The menu of everything that can be set on the plot for the main channel. */
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
