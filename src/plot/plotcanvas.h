#pragma once

#include <QPixmap>
#include <qwt_plot_canvas.h>

/**
 * The canvas of a plot, which keeps its picture: where only a stretch of it has changed, that
 * stretch alone is painted anew, whatever it costs to paint the rest.
 */
class PlotCanvas : public QwtPlotCanvas
{
    Q_OBJECT
public:
    explicit PlotCanvas(QwtPlot *plot);

    /** Paints the picture now if it is old and somebody sees it. */
    void bringUpToDate();
    /** Paints the stretch between two places of the time axis, with what the strokes of points
     * there reach beyond it; an old picture is painted whole. */
    void repaintStretch(double first, double last);

public slots:
    /** The picture is old. The plot calls this by its name. */
    void replot();

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    bool isOld() const
    {
        return m_isOld || m_picture.size() != size() * devicePixelRatioF() ||
               m_picture.devicePixelRatio() != devicePixelRatioF();
    }
    void paintAll();
    void paint(const QRect &part);

    QPixmap m_picture; ///< in device pixels
    bool m_isOld = true;
};
