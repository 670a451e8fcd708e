#pragma once

#include "plot/plotmodes.h"

#include <QLabel>

class QwtNOX;

/** What the mouse does on the plot in a mode, in one line, the most usual first. */
QString mouseHint(TmcMode mode);
/** What the keys do there in a mode. */
QString keyHint(TmcMode mode);

/**
 * The line below the plot that tells what can be done there at present: by the keys while they lead
 * to it, else by the mouse. What has no room at its end is left to the tool tip.
 */
class PlotHint : public QLabel
{
    Q_OBJECT
public:
    explicit PlotHint(QwtNOX *plot, QWidget *parent = nullptr);

    QSize minimumSizeHint() const override;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void refresh();
    void showForKeys(bool forKeys);
    void elide();

    QwtNOX *m_plot;
    QString m_whole;
    bool m_isForKeys = false;
};
