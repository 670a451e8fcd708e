#pragma once

#include <QLabel>

/** A label that says when it is pressed: by the mouse, and by keys where it can have the focus. */
class QLabelClick : public QLabel
{
    Q_OBJECT
public:
    using QLabel::QLabel;

signals:
    /** A mouse button, Space or Return went down on the label. */
    void clicked();

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
};

/** A clickable label that writes its text as large as its width allows, up to a given size. */
class FittedLabel : public QLabelClick
{
    Q_OBJECT
public:
    /** Sizes of the font, in points: below the smallest one the text is cut rather. */
    FittedLabel(int smallestPoints, int largestPoints, QWidget *parent = nullptr);

    /** Shows a text; an equal one changes nothing. */
    void showText(const QString &text);

    /** Wide enough for nothing, high enough for the largest font. */
    QSize minimumSizeHint() const override;
    QSize sizeHint() const override { return minimumSizeHint(); }

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    QFont fontOf(int points) const;
    void fit();

    int m_smallestPoints;
    int m_largestPoints;
};
