#pragma once

#include <QColor>
#include <QWidget>

/** Marks where the keyboard acts and what is going on; that of the style sheet. */
QColor accentColor();

/** Paints the quiet sign that something differs from the instrument: a corner at the top left. */
void paintChange(QPainter *painter, const QRect &place);

/** That sign over a field, which it follows. Shown or hidden, it takes no space and no click. */
class ChangeMark : public QWidget
{
    Q_OBJECT
public:
    /** The field becomes the parent. */
    explicit ChangeMark(QWidget *field);

    /** Shows the sign, or not, and says the same to who cannot see it. */
    void setChanged(bool isChanged);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    const QString m_description; ///< of the field, for who cannot see it
};
