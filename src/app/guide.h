#pragma once

#include <QObject>

class QWidget;

/** Opens a page of the user's guide, by its name, in the user's browser; tells him over `window`
 *  where it lies when that cannot be. */
void openGuide(QWidget *window, const QString &page);

/** Listens for F1 in all windows and opens the guide where it tells of the window. */
class GuideKey : public QObject
{
    Q_OBJECT
public:
    explicit GuideKey(QObject *parent = nullptr);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
};
