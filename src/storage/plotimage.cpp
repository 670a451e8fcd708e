#include "storage/plotimage.h"

#include "device/filereplacement.h"

#include <QBuffer>
#include <QPixmap>
#include <qwt_plot.h>
#include <qwt_plot_renderer.h>

bool savePlotImage(QwtPlot *plot, const QString &fileName)
{
    plot->replot();
    QPixmap picture(plot->size());
    picture.fill(Qt::white);
    QwtPlotRenderer().renderTo(plot, picture);
    QBuffer file;
    file.open(QIODevice::WriteOnly);
    return picture.save(&file, "PNG") && replaceFile(fileName, file.data());
}
